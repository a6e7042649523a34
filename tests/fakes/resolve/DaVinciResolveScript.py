"""A stand-in for DaVinci Resolve's scripting module, for the scripts that are generated and run by a real Python.

`scriptapp("Resolve")` gives the application or None, as the real one does. Its world is the JSON file named by the
environment variable FAKE_RESOLVE_WORLD; when the program ends, the file is replaced by the world as it is then, so
that a second program finds what the first one made. If FAKE_RESOLVE_LOG names a file, every call is appended to it as
a line of JSON: {"object": ..., "method": ..., "arguments": [...], "result": ...}, or "raises" with a text in place of
"result".

The world
---------
Every key has a default, so `{}` is a running Resolve with an open project and nothing in it. A key that is not listed
here, or a value of another type, is refused with a WorldError.

    running           true; false: scriptapp gives None
    project           "Documentary", the name of the open project; null: none is open
    frameRate         "24", of new timelines, and of clips that tell none
    startTimecode     "01:00:00:00", of new timelines
    mediaPool         {}, the root folder
    timelines         [], in Resolve's order
    currentTimeline   null, or the name of one of them
    failures          [], calls that go wrong (below)

A folder is {"name": "", "clips": [CLIP, ...], "folders": [FOLDER, ...]}. `null` in place of a list is what
GetClipList() or GetSubFolderList() gives then.

A clip is an object of properties by Resolve's own names, plus "id", by which timelines name it (default: its path, else
its name; from the second of that id on "#2", "#3" is appended). A property that is null is missing. Defaults:

    File Path   ""                           Start TC   "00:00:00:00"
    Clip Name   the path's base name         Duration   "01:00:00:00"
    FPS         the world's frameRate        End TC     Start TC + Duration
    Type        by the path's ending         In, Out    ""

A timeline is {"name": "Timeline 1", "frameRate": ..., "startTimecode": ..., "tracks": TRACKS, "markers": MARKERS},
with the world's rate and start as defaults. TRACKS is {"audio": [[ITEM, ...], ...], "video": ..., "subtitle": ...}, one
list a track; default are one empty audio and one empty video track. An item is the id of a clip, or {"clip": id or
null, "start": frame, "end": frame}: absolute frames, the end not being part of it; it starts where the item before it
ends and is as long as its clip unless told otherwise. MARKERS is {"frame from the timeline's start": {"color": "Blue",
"name": "", "note": "", "duration": 1}}.

A failure is {"method": "AppendToTimeline", "call": 2, "gives": []} or {"method": "Timeline.AddMarker", "raises":
"text"}: the call of that number in one run of a program, or every call if there is no number, is not made but gives
this value or raises a RuntimeError with this text. A class before the method's name leaves other classes' methods of
that name alone: Resolve, ProjectManager, Project, MediaPool, Folder, MediaPoolItem, Timeline, TimelineItem.

Manners
-------
- A method that Resolve does not have is an AttributeError.
- CreateEmptyTimeline gives None for a name that is taken. Resolve makes the new timeline current at once; this one
  does not, so that a script that relies on it without SetCurrentTimeline is found out.
- AppendToTimeline appends to the current timeline, behind everything on it, and gives the new items, or [] if nothing
  was placed. Of a media pool item the range from its In up to its Out is placed, counted from its Start TC; of
  {"mediaPoolItem", "startFrame", "endFrame"} that range, counted from the file's first frame. The end is not part of
  either. What lies outside of the clip is cut off. Sound goes to audio track 1, pictures to video track 1, a subtitle
  file to subtitle track 1, there as long as the timeline is.
- AddMarker takes whole frames from 0 on, counted from the timeline's start, once each; it gives False otherwise.
- SetClipProperty takes timecodes for In and Out (False for anything else) and any text for the other properties.
- ImportMedia passes over files that do not exist and puts the others into the root folder.
- Timecodes count frames with the rounded rate and drop none: at 23.976 as at 24, 01:00:00:00 is frame 86400. A range
  of a clip at another rate than the timeline's keeps its seconds.
"""

from fake_resolve.world import application


def scriptapp(name):
    """The running application of that name, or None."""
    return application() if name == "Resolve" else None
