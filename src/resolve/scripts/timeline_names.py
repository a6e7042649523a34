# Prints the names of the project's timelines, one a line, in Resolve's order.
import sys

sys.path.append('__RESOLVE_SCRIPT_LIB__')

try:
    import DaVinciResolveScript as dvr

    resolve = dvr.scriptapp("Resolve")
    pm = resolve.GetProjectManager()
    proj = pm.GetCurrentProject()
    count = proj.GetTimelineCount()
    for i in range(1, count + 1):
        print(proj.GetTimelineByIndex(i).GetName())
except Exception as e:
    print(f"ERROR:{str(e)}")
    sys.exit(0)
