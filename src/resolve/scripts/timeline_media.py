# Prints the media files behind a timeline, sorted, one a line, and makes that timeline the current one.
# A name that no timeline has prints nothing.
import sys

sys.path.append('__RESOLVE_SCRIPT_LIB__')


def find_timeline(proj, name):
    """The first timeline of that name, or None."""
    for i in range(1, proj.GetTimelineCount() + 1):
        tl = proj.GetTimelineByIndex(i)
        if tl.GetName() == name:
            return tl
    return None


def paths_on_tracks(tl, kind):
    """The file paths of the clips on all tracks of one kind."""
    paths = set()
    for t in range(1, tl.GetTrackCount(kind) + 1):
        for item in tl.GetItemListInTrack(kind, t) or []:
            clip = item.GetMediaPoolItem()
            path = clip.GetClipProperty().get("File Path") if clip else None
            if path:
                paths.add(path)
    return paths


try:
    import DaVinciResolveScript as dvr

    resolve = dvr.scriptapp("Resolve")
    if not resolve:
        print("ERROR:NOT_CONNECTED")
        sys.exit(0)
    proj = resolve.GetProjectManager().GetCurrentProject()
    tl = find_timeline(proj, "__TIMELINE_NAME__")
    if tl:
        proj.SetCurrentTimeline(tl)
        # Pictures count as well: a video clip can carry the audio.
        for path in sorted(paths_on_tracks(tl, "audio") | paths_on_tracks(tl, "video")):
            print(path)
except Exception as e:
    print(f"ERROR:{str(e)}")
    sys.exit(0)
