# Makes an empty timeline and lets it be the current one.
import sys

sys.path.append('__RESOLVE_SCRIPT_LIB__')

try:
    import DaVinciResolveScript as dvr

    resolve = dvr.scriptapp("Resolve")
    pm = resolve.GetProjectManager()
    proj = pm.GetCurrentProject()
    mp = proj.GetMediaPool()
    new_timeline = mp.CreateEmptyTimeline("__TIMELINE_NAME__")
    if not new_timeline:
        print("ERROR:TIMELINE_CREATE_FAILED")
        sys.exit(0)
    proj.SetCurrentTimeline(new_timeline)
    print("SUCCESS:Timeline created")
except Exception as e:
    print(f"ERROR:{str(e)}")
    sys.exit(0)
