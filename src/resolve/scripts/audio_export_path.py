# Makes a timeline current and prints where its audio would be exported to. Nothing is rendered.
import sys
import os

sys.path.append('__RESOLVE_SCRIPT_LIB__')

try:
    import DaVinciResolveScript as dvr

    resolve = dvr.scriptapp("Resolve")
    pm = resolve.GetProjectManager()
    proj = pm.GetCurrentProject()

    target_tl = None
    for i in range(1, proj.GetTimelineCount() + 1):
        tl = proj.GetTimelineByIndex(i)
        if tl.GetName() == "__TIMELINE_NAME__":
            target_tl = tl
            break
    if not target_tl:
        print("ERROR:TIMELINE_NOT_FOUND")
        sys.exit(0)

    proj.SetCurrentTimeline(target_tl)
    output_path = os.path.expanduser("~/Library/Caches/ZuvoManager/audio_export.wav")
    os.makedirs(os.path.dirname(output_path), exist_ok=True)
    print(output_path)
except Exception as e:
    print(f"ERROR:{str(e)}")
    sys.exit(0)
