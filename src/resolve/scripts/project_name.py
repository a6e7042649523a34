# Prints the name of the project that is open in Resolve.
import sys

sys.path.append('__RESOLVE_SCRIPT_LIB__')

try:
    import DaVinciResolveScript as dvr

    resolve = dvr.scriptapp("Resolve")
    if not resolve:
        print("ERROR:NOT_CONNECTED")
        sys.exit(0)
    pm = resolve.GetProjectManager()
    proj = pm.GetCurrentProject()
    if not proj:
        print("ERROR:NO_PROJECT")
        sys.exit(0)
    print(proj.GetName())
except Exception as e:
    print(f"ERROR:{str(e)}")
    sys.exit(0)
