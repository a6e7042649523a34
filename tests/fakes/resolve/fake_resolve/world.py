"""The world of the stand-in: read from its file when the application is first asked for, written back at the end."""

import atexit
import json
import os

from .calls import Calls, ResolveObject, api
from .media import PROPERTIES, Folder, MediaPool, MediaPoolItem
from .timecode import frames_of, rate_of
from .timeline import KINDS, Timeline, is_whole

MARKER = {"color": "Blue", "name": "", "note": "", "duration": 1}


class WorldError(Exception):
    """The world's file is missing or makes no sense."""


def need(condition, complaint):
    if not condition:
        raise WorldError(f"FAKE_RESOLVE_WORLD: {complaint}")


def is_list_of(kind, value):
    return isinstance(value, list) and all(isinstance(element, kind) for element in value)


def object_with(value, known, what):
    need(isinstance(value, dict), f"{what} is no object: {value!r}")
    strange = sorted(set(value) - set(known))
    need(not strange, f"{what} has no {', '.join(strange)}")
    return value


class World:
    def __init__(self, data, log_path):
        keys = ("running", "project", "frameRate", "startTimecode", "mediaPool", "timelines", "currentTimeline",
                "failures")
        object_with(data, keys, "the world")
        self.running = data.get("running", True)
        need(isinstance(self.running, bool), "running is neither true nor false")
        self.project = data.get("project", "Documentary")
        need(self.project is None or isinstance(self.project, str), "project is no text")
        self.frame_rate = data.get("frameRate", "24")
        self.start_timecode = self.checked_start(data.get("startTimecode", "01:00:00:00"), self.frame_rate)
        self.failures = data.get("failures", [])
        for failure in self.failures if is_list_of(dict, self.failures) else [None]:
            self.check_failure(failure)
        self.calls = Calls(self.failures, log_path)

        self.clips = {}
        self.root = self.folder(data.get("mediaPool", {}))
        self.timelines = []
        timelines = data.get("timelines", [])
        need(isinstance(timelines, list), "timelines are no list")
        for timeline in timelines:
            self.add_timeline(timeline)
        current = data.get("currentTimeline")
        named = [timeline for timeline in self.timelines if timeline._name == current]
        need(current is None or named, f"there is no timeline {current!r} to be the current one")
        self.current_timeline = named[0] if named else None

    def checked_start(self, timecode, frame_rate):
        need(isinstance(frame_rate, (str, int, float)) or frame_rate is None, f"frameRate is {frame_rate!r}")
        need(frames_of(timecode, rate_of(frame_rate)) is not None, f"{timecode!r} is no start timecode")
        return timecode

    def check_failure(self, failure):
        object_with(failure, ("method", "call", "gives", "raises"), "a failure")
        need(isinstance(failure.get("method"), str), f"a failure of no method: {failure}")
        need(is_whole(failure.get("call", 1)), f"call is no number: {failure}")
        need(("gives" in failure) != ("raises" in failure), f"a failure gives something or raises: {failure}")

    def folder(self, data):
        object_with(data, ("name", "clips", "folders"), "a folder")
        clips, folders = data.get("clips", []), data.get("folders", [])
        need(clips is None or isinstance(clips, list), "a folder's clips are no list")
        need(folders is None or isinstance(folders, list), "a folder's folders are no list")
        return Folder(
            self,
            data.get("name", ""),
            None if clips is None else [self.clip(clip) for clip in clips],
            None if folders is None else [self.folder(folder) for folder in folders],
        )

    def clip(self, data):
        properties = dict(object_with(data, ["id", *PROPERTIES], "a clip"))
        wanted = properties.pop("id", None) or properties.get("File Path") or properties.get("Clip Name") or "clip"
        id, count = wanted, 1
        while id in self.clips:
            count += 1
            id = f"{wanted}#{count}"
        self.clips[id] = MediaPoolItem(self, id, properties)
        return self.clips[id]

    def add_timeline(self, data):
        object_with(data, ("name", "frameRate", "startTimecode", "tracks", "markers"), "a timeline")
        frame_rate = data.get("frameRate", self.frame_rate)
        start = self.checked_start(data.get("startTimecode", self.start_timecode), frame_rate)
        timeline = Timeline(self, data.get("name", f"Timeline {len(self.timelines) + 1}"), frame_rate, start)
        for kind, tracks in object_with(data.get("tracks", {}), KINDS, "a timeline's tracks").items():
            need(is_list_of(list, tracks), f"the {kind} tracks are no lists")
            timeline._tracks[kind] = [[] for _ in tracks]
            for number, items in enumerate(tracks):
                self.fill_track(timeline, kind, number, items)
        markers = data.get("markers", {})
        need(isinstance(markers, dict), "the markers are no object")
        for frame, marker in markers.items():
            need(frame.isdecimal(), f"a marker at {frame!r}")
            timeline._markers[int(frame)] = {**MARKER, **object_with(marker, MARKER, "a marker")}
        self.timelines.append(timeline)

    def fill_track(self, timeline, kind, number, items):
        next_frame = timeline._start_frame
        for item in items:
            item = {"clip": item} if isinstance(item, str) else object_with(item, ("clip", "start", "end"), "an item")
            need(item.get("clip") is None or item["clip"] in self.clips, f"there is no clip {item.get('clip')!r}")
            clip = self.clips[item["clip"]] if item.get("clip") else None
            start = item.get("start", next_frame)
            length = clip._frames_at(clip._length(), timeline._rate) if clip else 1
            next_frame = item.get("end", start + length)
            need(is_whole(start) and is_whole(next_frame), f"an item's frames are no numbers: {item}")
            timeline._put(kind, number, clip, start, next_frame)

    def new_timeline(self, name):
        """A new, empty timeline; None if the name is empty or taken."""
        if not name or any(timeline._name == name for timeline in self.timelines):
            return None
        self.timelines.append(Timeline(self, name, self.frame_rate, self.start_timecode))
        return self.timelines[-1]

    def imported(self, path):
        clip = self.clip({"File Path": path})
        self.root._clips = [*(self.root._clips or []), clip]
        return clip

    def as_json(self):
        return {
            "running": self.running,
            "project": self.project,
            "frameRate": self.frame_rate,
            "startTimecode": self.start_timecode,
            "mediaPool": self.root._as_json(),
            "timelines": [timeline._as_json() for timeline in self.timelines],
            "currentTimeline": self.current_timeline._name if self.current_timeline else None,
            "failures": self.failures,
        }

    def save(self, path):
        new_path = f"{path}.{os.getpid()}.new"
        with open(new_path, "w", encoding="utf-8") as file:
            json.dump(self.as_json(), file, indent=1)
        os.replace(new_path, path)


class Project(ResolveObject):
    def _label(self):
        return self._world.project

    @api
    def GetName(self):
        return self._world.project

    @api
    def GetMediaPool(self):
        return MediaPool(self._world)

    @api
    def GetTimelineCount(self):
        return len(self._world.timelines)

    @api
    def GetTimelineByIndex(self, index):
        timelines = self._world.timelines
        return timelines[index - 1] if 1 <= index <= len(timelines) else None

    @api
    def GetCurrentTimeline(self):
        return self._world.current_timeline

    @api
    def SetCurrentTimeline(self, timeline):
        if timeline not in self._world.timelines:
            return False
        self._world.current_timeline = timeline
        return True


class ProjectManager(ResolveObject):
    @api
    def GetCurrentProject(self):
        return None if self._world.project is None else Project(self._world)


class Resolve(ResolveObject):
    @api
    def GetProjectManager(self):
        return ProjectManager(self._world)


_world = None


def application():
    """The application of the world named by the environment; None if it is not running."""
    global _world
    if _world is None:
        path = os.environ.get("FAKE_RESOLVE_WORLD", "")
        need(path, "the variable is not set")
        try:
            with open(path, encoding="utf-8") as file:
                data = json.load(file)
        except (OSError, ValueError) as error:
            raise WorldError(f"FAKE_RESOLVE_WORLD cannot be read: {error}") from error
        _world = World(data, os.environ.get("FAKE_RESOLVE_LOG"))
        atexit.register(_world.save, path)
    return Resolve(_world) if _world.running else None
