# Builds the timeline of the reviewed story: one clip per segment, chapter markers, subtitles. A clip is cut by its In
# and Out and appended whole, since ranges of frames work from frame 0 only. The segments' times count on the sources
# laid end to end without gaps:
#
#     sources    |---- A ----|-- B --|------ C ------|
#     seconds    0          20      31              60
import sys
import json
import os
from datetime import datetime

__SUBTITLE_CARDS__

sys.path.append('__RESOLVE_SCRIPT_LIB__')
import DaVinciResolveScript as dvr  # noqa: E402

DEFAULT_FPS = 24.0
NO_TIMECODE = "00:00:00:00"
# Where a clip is taken to end if Resolve does not tell.
NO_END_TIMECODE = "01:00:00:00"
AUDIO_ENDINGS = (".wav", ".mp3", ".aiff", ".flac")
# A clip found without a name to go by counts as interview audio above this length.
SHORTEST_FOUND_SECONDS = 60
# A shorter clip is no part of the transcript.
SHORTEST_CLIP_SECONDS = 10
# The frame number of 01:00:00:00 at 24 frames a second, whatever the rate is.
TL_START_OFFSET = 86400
MARKER_COLORS = ["Orange", "Green", "Purple", "Red", "Cream", "Cyan", "Lavender", "Yellow", "Pink", "Blue"]
NOTE_CHARACTERS = 50

fps = DEFAULT_FPS


def load_probe_data():
    """What is known of the media files, by base name. A null in the file is as good as no value."""
    path = os.path.expanduser("~/Library/Caches/ZuvoManager/probe_results.json")
    if not os.path.exists(path):
        print("LOG:No probe cache found, using media pool discovery")
        return {}
    with open(path, encoding="utf-8") as file:
        probe_data = json.load(file) or {}
    print(f"LOG:Loaded probe data for {len(probe_data)} files")
    return {name: probe or {} for name, probe in probe_data.items()}


def paths_by_timecode(probe_data):
    """The paths of the probed files in recording order."""
    probes = sorted(probe_data.values(), key=lambda probe: probe.get("startTimecodeSeconds") or 0)
    return [probe["path"] for probe in probes if probe.get("path")]


def scan_media_pool(root):
    """(path, item, properties) of every clip, depth first."""
    clips = []
    waiting = [root]
    while waiting:
        folder = waiting.pop()
        for item in folder.GetClipList() or []:
            props = item.GetClipProperty()
            clips.append((props.get("File Path") or "", item, props))
        waiting.extend(reversed(folder.GetSubFolderList() or []))
    return clips


def take_clip_fps(props):
    """Lets the clip's frame rate hold from here on; True if it has one that can be read and counted by."""
    global fps
    try:
        clip_fps = float(props.get("FPS") or "")
    except (TypeError, ValueError):
        return False
    if not 0 < clip_fps < float("inf"):
        return False
    fps = clip_fps
    return True


def match_by_name(clips, media_paths):
    """(item, properties) by base name of the clips of `media_paths`; the last of several with one name."""
    basenames = {os.path.basename(path) for path in media_paths}
    source = {}
    for path, item, props in clips:
        name = os.path.basename(path)
        if name in basenames:
            source[name] = (item, props)
            if take_clip_fps(props):
                print(f"LOG:Clip fps={fps}")
    print(f"LOG:Matched {len(source)} source clips")
    return source


def find_audio_clips(clips):
    """(item, properties) by base name of every clip that is long enough and sounds like a recording."""
    print("LOG:No exact match — auto-discovering audio clips in media pool...")
    source = {}
    for path, item, props in clips:
        seconds = whole_seconds(props.get("Duration") or NO_TIMECODE)
        is_audio = "audio" in (props.get("Type") or "").lower() or path.lower().endswith(AUDIO_ENDINGS)
        if seconds > SHORTEST_FOUND_SECONDS and is_audio:
            name = os.path.basename(path)
            source[name] = (item, props)
            take_clip_fps(props)
            print(f"LOG:Auto-discovered: {name} ({seconds}s)")
    print(f"LOG:Auto-discovered {len(source)} audio clips")
    return source


def split_timecode(tc):
    """The four whole numbers of a timecode, or None if it has another count of fields."""
    parts = tc.replace(";", ":").split(":")
    return [int(part) for part in parts] if len(parts) == 4 else None


def whole_seconds(tc):
    """Seconds of a timecode without its frames."""
    parts = split_timecode(tc)
    return parts[0] * 3600 + parts[1] * 60 + parts[2] if parts else 0


def tc_to_sec(tc):
    parts = split_timecode(tc)
    if not parts:
        return 0.0
    h, m, s, f = parts
    return h * 3600 + m * 60 + s + f / fps


def tc_to_frames(tc):
    parts = split_timecode(tc)
    if not parts:
        return 0
    h, m, s, f = parts
    return h * 3600 * fps + m * 60 * fps + s * fps + f


def sec_to_tc(seconds):
    """HH:MM:SS:FF, cut off and not rounded."""
    h = int(seconds // 3600)
    m = int((seconds % 3600) // 60)
    s = int(seconds % 60)
    f = int((seconds % 1) * fps)
    return f"{h:02d}:{m:02d}:{s:02d}:{f:02d}"


def offsets_in_recording_order(source, probe_data):
    """(item, start, end, name) of each clip, one after the other by start timecode."""
    global fps
    clips_with_tc = []
    for name in sorted(source):
        item, props = source[name]
        probe = probe_data.get(name, {})
        start_tc_sec = probe.get("startTimecodeSeconds") or 0
        duration = probe.get("duration") or tc_to_sec(props.get("Duration") or NO_TIMECODE)
        if probe.get("fps"):
            fps = probe["fps"]
        clips_with_tc.append((name, item, start_tc_sec, duration))
    clips_with_tc.sort(key=lambda clip: clip[2])

    offset_map = []
    cumulative = 0.0
    for name, item, _, duration in clips_with_tc:
        if duration < SHORTEST_CLIP_SECONDS:
            print(f"LOG:Skipping short clip {name} ({duration:.1f}s)")
            continue
        end = cumulative + duration
        offset_map.append((item, cumulative, end, name))
        print(f"LOG:{name}: duration={duration:.0f}s, transcript={cumulative:.0f}-{end:.0f}s")
        cumulative = end
    return offset_map


def offsets_in_name_order(source):
    """(item, start, end, name) of each clip, one after the other by name."""
    offset_map = []
    cumulative = 0.0
    for name in sorted(source):
        item, props = source[name]
        dur_sec = tc_to_sec(props.get("Duration") or NO_TIMECODE)
        if dur_sec < SHORTEST_CLIP_SECONDS:
            continue
        end = cumulative + dur_sec
        offset_map.append((item, cumulative, end, name))
        print(f"LOG:{name}: transcript {cumulative:.0f}-{end:.0f}s ({dur_sec:.0f}s)")
        cumulative = end
    return offset_map


def create_timeline(mp):
    """The new timeline, with the time behind its name, and that name. The program ends if both names are taken."""
    time_suffix = datetime.now().strftime("%I:%M %p")
    tl_name_full = "__TIMELINE_NAME__" + " — " + time_suffix
    tl = mp.CreateEmptyTimeline(tl_name_full)
    if not tl:
        # Built twice within one minute.
        tl_name_full = "__TIMELINE_NAME__" + " — " + datetime.now().strftime("%I:%M:%S %p")
        tl = mp.CreateEmptyTimeline(tl_name_full)
    if not tl:
        print("ERROR:Could not create timeline — try deleting existing Zuvo Build timelines in Resolve")
        sys.exit(0)
    return tl, tl_name_full


def clip_for(seg_clip, st, offset_map):
    """The clip of a segment and where it starts: by name, else by time, else the last one; None without any clip."""
    if seg_clip != "source":
        stem = os.path.splitext(seg_clip)[0]
        for clip_item, c_start, _, name in offset_map:
            if name == seg_clip or os.path.splitext(name)[0] == stem:
                return clip_item, c_start
    for clip_item, c_start, c_end, _ in offset_map:
        if c_start <= st < c_end:
            return clip_item, c_start
    return offset_map[-1][:2] if offset_map else None


def current_properties(clip_item, seg_clip, source):
    """The clip's properties as they are now, else those that were read at the beginning."""
    if hasattr(clip_item, "GetClipProperty"):
        return clip_item.GetClipProperty()
    return source[seg_clip][1] if seg_clip in source else {}


def append_segments(mp, segments, offset_map, source):
    """Cuts and appends the clip of each segment; gives how many Resolve took."""
    appended = 0
    # Where the clips should come to lie; the read-back tells where they do.
    clip_positions = []
    for seg_idx, seg in enumerate(segments):
        st, et = seg["startTime"], seg["endTime"]
        seg_clip = seg.get("sourceClip") or "source"
        found = clip_for(seg_clip, st, offset_map)
        if not found:
            print(f"LOG:SKIP seg {seg_idx}: no matching clip for t={st:.1f}s clip={seg_clip}")
            continue
        clip_item, clip_offset = found
        file_rel_start = st - clip_offset
        file_rel_end = et - clip_offset
        clip_start_tc = current_properties(clip_item, seg_clip, source).get("Start TC") or NO_TIMECODE
        # In and Out are absolute: they count from the timecode at which the recording starts.
        clip_tc_sec = tc_to_sec(clip_start_tc)
        in_sec = clip_tc_sec + file_rel_start
        out_sec = clip_tc_sec + file_rel_end
        in_tc, out_tc = sec_to_tc(in_sec), sec_to_tc(out_sec)
        dur = et - st
        print(f"LOG:Seg {seg_idx}: seq {st:.1f}-{et:.1f}s ({dur:.1f}s) -> In={in_tc} Out={out_tc} "
              f"(clip_tc={clip_start_tc}, file_rel={file_rel_start:.1f}s)")
        clip_item.SetClipProperty("In", in_tc)
        clip_item.SetClipProperty("Out", out_tc)
        result = mp.AppendToTimeline([clip_item])
        if result:
            appended += 1
            clip_positions.append((seg_idx, int((file_rel_end - file_rel_start) * fps)))
        else:
            print(f"LOG:WARN: AppendToTimeline returned falsy for seg {seg_idx}")
    return appended


def restore_marks(source):
    """Lets each clip be whole again, as far as Resolve allows."""
    for item, props in source.values():
        for mark, tc in (("In", props.get("Start TC") or NO_TIMECODE), ("Out", props.get("End TC") or NO_END_TIMECODE)):
            try:
                item.SetClipProperty(mark, tc)
            except Exception:
                pass  # The timeline stands; a mark left behind is no reason to give it up.


def read_positions(tl, segments):
    """Where the clips really lie, in seconds from the timeline's start. The i-th clip is taken for the i-th segment."""
    actual_positions = []
    audio_items = tl.GetItemListInTrack("audio", 1) or []
    for i, (item, seg) in enumerate(zip(audio_items, segments)):
        tl_start = item.GetStart() - TL_START_OFFSET
        tl_end = item.GetEnd() - TL_START_OFFSET
        actual_positions.append({
            "seg_idx": i,
            "start_sec": tl_start / fps,
            "end_sec": tl_end / fps,
            "translation": seg.get("translation") or "",
            "chapter": seg.get("chapter") or "",
        })
    print(f"LOG:Read {len(actual_positions)} clip positions from timeline")
    return actual_positions


def add_chapter_marker(tl, position, color):
    """Marks the first segment of a chapter, as long as that segment."""
    frame_pos = int(position["start_sec"] * fps)
    dur_frames = max(1, int((position["end_sec"] - position["start_sec"]) * fps))
    try:
        tl.AddMarker(frame_pos, color, position["chapter"], position["translation"][:NOTE_CHARACTERS], dur_frames)
    except Exception:
        pass  # A chapter without its marker is no reason to stop.


resolve = dvr.scriptapp("Resolve")
if not resolve:
    print("ERROR:Resolve not connected")
    sys.exit(0)
pm = resolve.GetProjectManager()
proj = pm.GetCurrentProject()
mp = proj.GetMediaPool()

curr_tl = proj.GetCurrentTimeline()
fps_setting = curr_tl.GetSetting("timelineFrameRate") if curr_tl else None
if fps_setting:
    fps = float(fps_setting)
print(f"LOG:Using default fps={fps}")

with open("__SEGMENTS_PATH__", encoding="utf-8") as segments_file:
    segments = json.load(segments_file)
print(f"LOG:Loaded {len(segments)} segments")

probe_data = load_probe_data()
media_paths = paths_by_timecode(probe_data)
clips = scan_media_pool(mp.GetRootFolder())
source = match_by_name(clips, media_paths)
if not source:
    source = find_audio_clips(clips)
offset_map = offsets_in_recording_order(source, probe_data) if probe_data else offsets_in_name_order(source)

tl, tl_name_full = create_timeline(mp)
proj.SetCurrentTimeline(tl)
print(f"LOG:Created timeline: {tl_name_full}")

appended = append_segments(mp, segments, offset_map, source)
restore_marks(source)
actual_positions = read_positions(tl, segments)

prev_chapter = None
chapter_idx = 0
word_data = load_word_timestamps()
walk = SubtitleWalk(fps)
for pos_i, position in enumerate(actual_positions):
    if position["chapter"] and position["chapter"] != prev_chapter:
        add_chapter_marker(tl, position, MARKER_COLORS[chapter_idx % len(MARKER_COLORS)])
        prev_chapter = position["chapter"]
        chapter_idx += 1
    walk.add_segment(pos_i, position, word_data)
finish_subtitles(walk, tl, mp)

print(f"LOG:Generated {walk.sub_count} subtitle cards")
print(f"SUCCESS:{appended}/{len(segments)} clips appended")
