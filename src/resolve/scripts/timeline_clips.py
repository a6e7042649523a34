# Prints the clips of a timeline as JSON: first those on the audio tracks, then those on the video tracks, so that a
# clip with picture and sound stands there twice. The current timeline stays as it is.
import sys
import json

sys.path.append('__RESOLVE_SCRIPT_LIB__')

DEFAULT_FPS = 24.0


def find_timeline(proj, name):
    """The first timeline of that name, or None."""
    for i in range(1, proj.GetTimelineCount() + 1):
        tl = proj.GetTimelineByIndex(i)
        if tl.GetName() == name:
            return tl
    return None


def clips_on_tracks(tl, kind, fps):
    """The clips with a file on all tracks of one kind. Frames are those of the timeline, `duration` is in seconds."""
    clips = []
    for t in range(1, tl.GetTrackCount(kind) + 1):
        for item in tl.GetItemListInTrack(kind, t) or []:
            clip = item.GetMediaPoolItem()
            path = clip.GetClipProperty().get("File Path") if clip else None
            if not path:
                continue
            start = item.GetStart()
            end = item.GetEnd()
            clips.append({
                "sourceFile": path,
                "startFrame": start,
                "endFrame": end,
                "duration": (end - start) / fps,
            })
    return clips


try:
    import DaVinciResolveScript as dvr

    resolve = dvr.scriptapp("Resolve")
    if not resolve:
        print("ERROR:Resolve not connected")
        sys.exit(0)
    proj = resolve.GetProjectManager().GetCurrentProject()
    tl = find_timeline(proj, "__TIMELINE_NAME__")
    if not tl:
        print("ERROR:Timeline not found")
        sys.exit(0)

    fps = DEFAULT_FPS
    fps_setting = tl.GetSetting("timelineFrameRate")
    if fps_setting:
        fps = float(fps_setting)

    clips = clips_on_tracks(tl, "audio", fps) + clips_on_tracks(tl, "video", fps)
    print("SUCCESS:" + json.dumps(clips))
except Exception as e:
    import traceback

    print(f"ERROR:{str(e)}")
    traceback.print_exc(file=sys.stdout)
    sys.exit(0)
