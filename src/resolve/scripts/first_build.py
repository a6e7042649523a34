# Builds a timeline from the moments of a mine: each moment is appended as a range of frames of its clip, counted from
# the start of the file. Clips are placed by their recorded timecode, with the gaps between the recordings.
import sys
import json
import os

sys.path.append('__RESOLVE_SCRIPT_LIB__')

DEFAULT_FPS = 23.976
NO_TIMECODE = "00:00:00:00"
AUDIO_ENDINGS = (".wav", ".mp3", ".aiff", ".flac")
# A clip found without a name to go by counts as interview audio above this length.
SHORTEST_FOUND_SECONDS = 60
# A shorter clip is no part of the transcript.
SHORTEST_CLIP_SECONDS = 10
# The length of a clip whose probe could not tell one.
UNKNOWN_CLIP_SECONDS = 300
# The end of the one clip that has to serve for all moments.
SINGLE_CLIP_END_SECONDS = 999999
# Moments, and failures, that are told of one by one.
DETAILED_LINES = 3

fps = DEFAULT_FPS


def split_timecode(tc):
    """The four whole numbers of a timecode, or None if it has another count of fields."""
    parts = tc.replace(";", ":").split(":")
    return [int(part) for part in parts] if len(parts) == 4 else None


def tc_to_frames(tc):
    parts = split_timecode(tc)
    if not parts:
        return 0
    h, m, s, f = parts
    return h * 3600 * fps + m * 60 * fps + s * fps + f


def tc_to_sec(tc):
    parts = split_timecode(tc)
    if not parts:
        return 0.0
    h, m, s, f = parts
    return h * 3600 + m * 60 + s + f / fps


def whole_seconds(tc):
    """Seconds of a timecode without its frames."""
    parts = split_timecode(tc)
    return parts[0] * 3600 + parts[1] * 60 + parts[2] if parts else 0


def scan_media_pool(root):
    """(path, name, item) of every clip, depth first."""
    clips = []
    waiting = [root]
    while waiting:
        folder = waiting.pop()
        for item in folder.GetClipList() or []:
            props = item.GetClipProperty()
            clips.append((props.get("File Path") or "", props.get("Clip Name") or "", item))
        waiting.extend(reversed(folder.GetSubFolderList() or []))
    return clips


def match_by_name(clips, media_paths):
    """The first clip for each base name of `media_paths`."""
    first_of_name = {}
    for path, _, item in clips:
        first_of_name.setdefault(os.path.basename(path), item)
    source_clips = {}
    media_basenames = [os.path.basename(path) for path in media_paths]
    for name in media_basenames:
        if name in first_of_name:
            source_clips[name] = first_of_name[name]
            print(f"LOG:Matched: {name}")
    print(f"LOG:{len(source_clips)}/{len(media_paths)} source clips matched")
    return source_clips


def find_audio_clips(clips):
    """Every clip that is long enough and sounds like a recording; the last of several with one base name."""
    source_clips = {}
    for path, _, item in clips:
        props = item.GetClipProperty()
        seconds = whole_seconds(props.get("Duration") or NO_TIMECODE)
        is_audio = "audio" in (props.get("Type") or "").lower() or path.lower().endswith(AUDIO_ENDINGS)
        if seconds > SHORTEST_FOUND_SECONDS and is_audio:
            name = os.path.basename(path)
            source_clips[name] = item
            print(f"LOG:Auto-matched audio clip: {name} ({seconds}s)")
    return source_clips


def load_probe_data():
    """What is known of the media files, by base name. A null in the file is as good as no value."""
    path = os.path.expanduser("~/Library/Caches/ZuvoManager/probe_results.json")
    if not os.path.exists(path):
        return {}
    with open(path, encoding="utf-8") as file:
        probe_data = json.load(file) or {}
    print(f"LOG:Loaded probe data for {len(probe_data)} files")
    return probe_data


def offsets_by_timecode(source_clips, clip_order, probe_data):
    """(item, start, end, name) of each clip, by its recorded timecode. The last known frame rate holds from then on."""
    global fps
    clips_with_tc = []
    for name in clip_order:
        probe = probe_data.get(name) or {}
        start_tc_sec = probe.get("startTimecodeSeconds") or 0
        duration = probe.get("duration") or 0
        if duration > 0 and probe.get("fps"):
            fps = probe["fps"]
        length = duration if duration > 0 else UNKNOWN_CLIP_SECONDS
        clips_with_tc.append((name, source_clips[name], start_tc_sec, length))
    clips_with_tc.sort(key=lambda clip: clip[2])

    offset_map = []
    first_tc = clips_with_tc[0][2]
    for name, item, start_tc_sec, duration in clips_with_tc:
        if duration < SHORTEST_CLIP_SECONDS:
            continue
        transcript_start = start_tc_sec - first_tc
        transcript_end = transcript_start + duration
        offset_map.append((item, transcript_start, transcript_end, name))
        print(f"LOG:{name}: TC={start_tc_sec:.0f}s, dur={duration:.0f}s, "
              f"transcript={transcript_start:.0f}-{transcript_end:.0f}s")
    return offset_map


def offsets_by_duration(source_clips, clip_order):
    """(item, start, end, name) of each clip, one after the other."""
    global fps
    offset_map = []
    cumulative = 0.0
    for name in clip_order:
        props = source_clips[name].GetClipProperty()
        dur_sec = tc_to_sec(props.get("Duration") or NO_TIMECODE)
        if dur_sec < SHORTEST_CLIP_SECONDS:
            print(f"LOG:Skipping short clip {name} ({dur_sec:.1f}s)")
            continue
        if props.get("FPS"):
            fps = float(props["FPS"])
        end = cumulative + dur_sec
        offset_map.append((source_clips[name], cumulative, end, name))
        print(f"LOG:Clip {name}: dur={dur_sec:.0f}s transcript={cumulative:.0f}-{end:.0f}s fps={fps}")
        cumulative = end
    return offset_map


def clip_at(offset_map, seconds):
    """The clip that holds this moment (its end is not part of it), with its start; else the last clip."""
    for clip_item, c_start, c_end, _ in offset_map:
        if c_start <= seconds < c_end:
            return clip_item, c_start
    return offset_map[-1][0], offset_map[-1][1]


def append_segments(mp, segments, offset_map):
    """Appends each segment; gives how many succeeded and how many failed."""
    appended = 0
    failed = 0
    for i, seg in enumerate(segments):
        start, end = seg["startTime"], seg["endTime"]
        clip_item, c_start = clip_at(offset_map, start)
        start_frame = int((start - c_start) * fps)
        end_frame = int((end - c_start) * fps)
        if i < DETAILED_LINES:
            print(f"LOG:Seg {i}: {start:.1f}-{end:.1f}s -> frames {start_frame}-{end_frame}")
        try:
            result = mp.AppendToTimeline([
                {"mediaPoolItem": clip_item, "startFrame": start_frame, "endFrame": end_frame},
            ])
        except Exception as e:
            result = None
            if i < DETAILED_LINES:
                print(f"LOG:Append error seg {i}: {e}")
        if result:
            appended += 1
        else:
            failed += 1
            if failed <= DETAILED_LINES:
                print(f"LOG:Failed seg {i}: {start:.1f}-{end:.1f}s (frames {start_frame}-{end_frame})")
    return appended, failed


def add_chapter_markers(new_tl, segments):
    """A marker for each segment whose chapter is not that of the first one, at the frames of the segments before it."""
    marker_offset = 0
    for seg in segments:
        chapter = seg.get("chapter")
        if chapter and chapter != segments[0].get("chapter"):
            try:
                new_tl.AddMarker(marker_offset, "Blue", chapter, "", 1)
            except Exception:
                pass  # A chapter without its marker is no reason to stop.
        marker_offset += int((seg["endTime"] - seg["startTime"]) * fps)


try:
    import DaVinciResolveScript as dvr

    resolve = dvr.scriptapp("Resolve")
    if not resolve:
        print("ERROR:Resolve not connected")
        sys.exit(0)
    pm = resolve.GetProjectManager()
    proj = pm.GetCurrentProject()
    mp = proj.GetMediaPool()

    with open("__SEGMENTS_PATH__", encoding="utf-8") as segments_file:
        segments = json.load(segments_file)
    print(f"LOG:Loaded {len(segments)} segments")

    curr_tl = proj.GetCurrentTimeline()
    fps_setting = curr_tl.GetSetting("timelineFrameRate") if curr_tl else None
    if fps_setting:
        fps = float(fps_setting)
    print(f"LOG:FPS={fps}")

    clips = scan_media_pool(mp.GetRootFolder())
    print(f"LOG:Found {len(clips)} clips in media pool")

    media_paths = __MEDIA_PATHS__
    source_clips = match_by_name(clips, media_paths)
    if not source_clips:
        print("LOG:No exact match — scanning media pool for audio clips...")
        source_clips = find_audio_clips(clips)
    if not source_clips:
        print("ERROR:No source clips found in media pool")
        sys.exit(0)

    new_tl = mp.CreateEmptyTimeline("__TIMELINE_NAME__")
    if not new_tl:
        print("ERROR:Could not create timeline")
        sys.exit(0)
    proj.SetCurrentTimeline(new_tl)
    print("LOG:Timeline created")

    clip_order = sorted(source_clips)
    probe_data = load_probe_data()
    if probe_data:
        offset_map = offsets_by_timecode(source_clips, clip_order, probe_data)
    else:
        offset_map = offsets_by_duration(source_clips, clip_order)
    if not offset_map:
        offset_map = [(next(iter(source_clips.values())), 0, SINGLE_CLIP_END_SECONDS, "fallback")]
        print("LOG:Warning: using fallback single-clip mode")

    appended, failed = append_segments(mp, segments, offset_map)
    add_chapter_markers(new_tl, segments)
    print(f"SUCCESS:{appended} clips appended, {failed} failed")
except Exception as e:
    import traceback

    print(f"ERROR:{str(e)}")
    traceback.print_exc(file=sys.stdout)
    sys.exit(0)
