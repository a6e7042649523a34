"""Timelines, their items and markers."""

from .calls import ResolveObject, api
from .timecode import frames_of, rate_of

KINDS = ("audio", "video", "subtitle")


def is_whole(value):
    return isinstance(value, int) and not isinstance(value, bool)


class TimelineItem(ResolveObject):
    """A clip, or a title if there is none, from frame `start` up to but without frame `end` of the time of day."""

    def __init__(self, world, clip, start, end):
        super().__init__(world)
        self._clip = clip
        self._start = start
        self._end = end

    def _label(self):
        return f"{self._clip._id if self._clip else 'title'} {self._start}-{self._end}"

    def _as_json(self):
        return {"clip": self._clip._id if self._clip else None, "start": self._start, "end": self._end}

    @api
    def GetName(self):
        return self._clip._properties.get("Clip Name", "") if self._clip else "Title"

    @api
    def GetStart(self):
        return self._start

    @api
    def GetEnd(self):
        return self._end

    @api
    def GetDuration(self):
        return self._end - self._start

    @api
    def GetMediaPoolItem(self):
        return self._clip


class Timeline(ResolveObject):
    def __init__(self, world, name, frame_rate, start_timecode):
        super().__init__(world)
        self._name = name
        self._frame_rate = frame_rate
        self._rate = rate_of(frame_rate)
        self._start_timecode = start_timecode
        self._start_frame = frames_of(start_timecode, self._rate)
        self._tracks = {"audio": [[]], "video": [[]], "subtitle": []}
        self._markers = {}
        # The frame after the last one that anything lies on.
        self._end_frame = self._start_frame

    def _label(self):
        return self._name

    def _as_json(self):
        tracks = {kind: [[item._as_json() for item in track] for track in self._tracks[kind]] for kind in KINDS}
        return {
            "name": self._name,
            "frameRate": self._frame_rate,
            "startTimecode": self._start_timecode,
            "tracks": tracks,
            "markers": {str(frame): marker for frame, marker in self._markers.items()},
        }

    def _put(self, kind, track, clip, start, end):
        item = TimelineItem(self._world, clip, start, end)
        self._tracks[kind][track].append(item)
        self._end_frame = max(self._end_frame, end)
        return item

    def _append(self, clip, first, end):
        """Places frames `first` up to `end` of the clip behind everything; the items on its tracks."""
        if clip._has("subtitle"):
            if not self._tracks["subtitle"]:
                self._tracks["subtitle"].append([])
            return [self._put("subtitle", 0, clip, self._start_frame, self._end_frame)]
        if not (is_whole(first) and is_whole(end)):
            return []
        first, end = max(0, first), min(end, clip._length())
        if first >= end:
            return []
        start = self._end_frame
        stop = start + clip._frames_at(end - first, self._rate)
        return [self._put(kind, 0, clip, start, stop) for kind in ("video", "audio") if clip._has(kind)]

    @api
    def GetName(self):
        return self._name

    @api
    def GetSetting(self, name):
        return self._frame_rate if name == "timelineFrameRate" else ""

    @api
    def GetStartFrame(self):
        return self._start_frame

    @api
    def GetEndFrame(self):
        return self._end_frame

    @api
    def GetStartTimecode(self):
        return self._start_timecode

    @api
    def GetTrackCount(self, kind):
        return len(self._tracks.get(kind, []))

    @api
    def AddTrack(self, kind):
        if kind not in KINDS:
            return False
        self._tracks[kind].append([])
        return True

    @api
    def GetItemListInTrack(self, kind, index):
        tracks = self._tracks.get(kind, [])
        return list(tracks[index - 1]) if is_whole(index) and 1 <= index <= len(tracks) else None

    @api
    def AddMarker(self, frame, color, name, note, duration):
        if not is_whole(frame) or frame < 0 or frame in self._markers:
            return False
        if not is_whole(duration) or duration < 1 or not all(isinstance(text, str) for text in (color, name, note)):
            return False
        self._markers[frame] = {"color": color, "name": name, "note": note, "duration": duration}
        return True

    @api
    def GetMarkers(self):
        return {frame: dict(marker) for frame, marker in self._markers.items()}
