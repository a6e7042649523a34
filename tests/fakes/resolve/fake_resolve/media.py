"""The media pool: its folders and clips."""

import os

from .calls import ResolveObject, api
from .timecode import frames_of, rate_of, timecode_of

TYPES = {
    ".wav": "Audio", ".mp3": "Audio", ".aiff": "Audio", ".flac": "Audio", ".m4a": "Audio",
    ".mov": "Video + Audio", ".mp4": "Video + Audio", ".mxf": "Video + Audio", ".mkv": "Video + Audio",
    ".srt": "Subtitle", "": "Timeline",
}
PROPERTIES = ["File Path", "Clip Name", "Type", "FPS", "Start TC", "Duration", "End TC", "In", "Out"]
DEFAULT_DURATION = "01:00:00:00"


def defaults_of(properties, frame_rate):
    """The properties that a clip with these few has besides them."""
    path = properties.get("File Path") or ""
    rate = rate_of(properties.get("FPS", frame_rate))
    start = frames_of(properties.get("Start TC"), rate) or 0
    length = frames_of(properties.get("Duration", DEFAULT_DURATION), rate) or 0
    return {
        "File Path": "",
        "Clip Name": os.path.basename(path),
        "Type": TYPES.get(os.path.splitext(path)[1].lower(), "Video"),
        "FPS": rate_of(frame_rate),
        "Start TC": timecode_of(0, rate),
        "Duration": DEFAULT_DURATION,
        "End TC": timecode_of(start + length, rate),
        "In": "",
        "Out": "",
    }


class MediaPoolItem(ResolveObject):
    """A clip. `id` is what timelines call it by in the world's file."""

    def __init__(self, world, id, properties):
        super().__init__(world)
        self._id = id
        known = {**defaults_of(properties, world.frame_rate), **properties}
        self._properties = {name: value for name, value in known.items() if value is not None}

    def _label(self):
        return self._id

    def _rate(self):
        return rate_of(self._properties.get("FPS", self._world.frame_rate))

    def _first_frame(self):
        return frames_of(self._properties.get("Start TC"), self._rate()) or 0

    def _length(self):
        """Frames of the whole clip."""
        length = frames_of(self._properties.get("Duration"), self._rate())
        if length is None:
            length = (frames_of(self._properties.get("End TC"), self._rate()) or 0) - self._first_frame()
        return max(0, length)

    def _marked_range(self):
        """First frame and the one after the last, counted from the file's start."""
        first = frames_of(self._properties.get("In"), self._rate())
        end = frames_of(self._properties.get("Out"), self._rate())
        start = self._first_frame()
        return (0 if first is None else first - start), (self._length() if end is None else end - start)

    def _frames_at(self, frame_count, timeline_rate):
        """How many frames of a timeline so many frames of this clip fill."""
        return max(1, round(frame_count * timeline_rate / self._rate()))

    def _has(self, kind):
        return kind in self._properties.get("Type", "").lower()

    def _as_json(self):
        return {"id": self._id, **{name: self._properties.get(name) for name in PROPERTIES}, **self._properties}

    @api
    def GetName(self):
        return self._properties.get("Clip Name", "")

    @api
    def GetClipProperty(self, name=None):
        return dict(self._properties) if name is None else self._properties.get(name, "")

    @api
    def SetClipProperty(self, name, value):
        if name in ("In", "Out") and frames_of(value, self._rate()) is None:
            return False
        if name not in PROPERTIES or not isinstance(value, str):
            return False
        self._properties[name] = value
        return True


class Folder(ResolveObject):
    def __init__(self, world, name, clips, folders):
        super().__init__(world)
        self._name = name
        self._clips = clips
        self._folders = folders

    def _label(self):
        return self._name

    def _as_json(self):
        clips, folders = self._clips, self._folders
        return {
            "name": self._name,
            "clips": None if clips is None else [clip._as_json() for clip in clips],
            "folders": None if folders is None else [folder._as_json() for folder in folders],
        }

    @api
    def GetName(self):
        return self._name

    @api
    def GetClipList(self):
        return None if self._clips is None else list(self._clips)

    @api
    def GetSubFolderList(self):
        return None if self._folders is None else list(self._folders)


class MediaPool(ResolveObject):
    @api
    def GetRootFolder(self):
        return self._world.root

    @api
    def CreateEmptyTimeline(self, name):
        return self._world.new_timeline(name)

    @api
    def ImportMedia(self, paths):
        return [self._world.imported(path) for path in paths if os.path.isfile(path)]

    @api
    def AppendToTimeline(self, clips):
        timeline = self._world.current_timeline
        if timeline is None:
            return []
        return [item for clip in clips for item in timeline._append(*self._range_of(clip))]

    def _range_of(self, clip):
        """A clip with the range of it that is meant, counted from the file's start."""
        if not isinstance(clip, dict):
            return (clip, *clip._marked_range())
        if set(clip) != {"mediaPoolItem", "startFrame", "endFrame"}:
            raise NotImplementedError(f"the stand-in cannot append by {sorted(clip)}")
        return clip["mediaPoolItem"], clip["startFrame"], clip["endFrame"]
