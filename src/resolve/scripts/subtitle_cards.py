# The subtitles of a build. Audio clips and SRT entries are both laid down one after the other, so the entries of each
# segment last as long as its clip, and silence is an entry of one blank:
#
#     clips    |------ segment 0 ------|---- segment 1 ----|
#     entries  | card |   card   |blank|blank|    card     |
#
# Times in a segment count from its start; `running_time` is where the segment starts on the SRT clock.
import json
import os
import shutil
import time

# A card closes when it has this many words,
CARD_WORDS = 7
# or this many before a pause in the speech longer than PAUSE_SECONDS,
CARD_WORDS_BEFORE_PAUSE = 4
PAUSE_SECONDS = 0.3
# or this many when the last of them ends in one of these.
CARD_WORDS_AT_A_MARK = 3
MARKS = (".", "!", "?", ",", ";", ":")
# What stands for the pause behind the last word.
NO_NEXT_WORD_SECONDS = 999
# A word that ends later than this after the clip's end was not meant for it.
LATE_WORD_SECONDS = 1.0
# Neither a gap nor a card of this length or less is worth an entry.
SMALLEST_ENTRY_SECONDS = 0.04

# Without word times: the length a card aims at, the length below which a card is too short and the one it gets then,
# the fewest words a card takes, and the shortest card that is shown.
AIM_SECONDS = 3.5
SHORT_SECONDS = 2.0
LENGTHENED_SECONDS = 2.5
FEWEST_WORDS = 3
SHORTEST_CARD_SECONDS = 0.5

# Markers go to Resolve in small batches, with a rest between them, so that it is not flooded.
SUBTITLE_BATCH = 15
BATCH_PAUSE_SECONDS = 0.05
MARKER_CHARACTERS = 80


def load_word_timestamps():
    """The spoken words of each segment, by segment index. What can be read before a failure counts."""
    word_data = {}
    path = os.path.expanduser("~/Library/Caches/ZuvoManager/word_timestamps.json")
    if not os.path.exists(path):
        return word_data
    try:
        with open(path, encoding="utf-8") as file:
            for ws in json.load(file):
                word_data[ws["segmentIndex"]] = ws["words"]
        print(f"LOG:Loaded word-level timestamps for {len(word_data)} segments")
    except Exception as e:
        print(f"LOG:Could not load word timestamps: {e}")
    return word_data


def srt_tc(seconds):
    """HH:MM:SS,mmm, cut off and not rounded."""
    hours = int(seconds // 3600)
    minutes = int((seconds % 3600) // 60)
    whole_seconds_left = int(seconds % 60)
    milliseconds = int((seconds % 1) * 1000)
    return f"{hours:02d}:{minutes:02d}:{whole_seconds_left:02d},{milliseconds:03d}"


def shared_out(trans_words, count):
    """For each of `count` spoken words the translated words that go with it, and then the words left over.

    Each spoken word gets at least one, so a translation shorter than the speech runs out early.
    """
    ratio = max(1.0, len(trans_words) / max(1, count))
    trans_ptr = 0.0
    shares = []
    for _ in range(count):
        next_trans = min(len(trans_words), trans_ptr + ratio)
        shares.append(trans_words[int(trans_ptr):int(next_trans)])
        trans_ptr = next_trans
    return shares, trans_words[int(trans_ptr):]


def card_closes(card_words, next_gap, is_last):
    """True if the card ends behind the spoken word that brought its last words."""
    if is_last or len(card_words) >= CARD_WORDS:
        return True
    if len(card_words) >= CARD_WORDS_BEFORE_PAUSE and next_gap > PAUSE_SECONDS:
        return True
    return len(card_words) >= CARD_WORDS_AT_A_MARK and card_words[-1].endswith(MARKS)


def word_cards(trans_words, wl, seg_duration):
    """(start, end, text) of the cards of a segment whose spoken words are known, in order."""
    src_words = [sw for sw in wl if sw["end"] <= seg_duration + LATE_WORD_SECONDS] or wl
    shares, left_over = shared_out(trans_words, len(src_words))
    cards = []
    card_words = []
    card_start_rel = None
    last_flushed_end = 0.0
    for si, sw in enumerate(src_words):
        if card_start_rel is None:
            card_start_rel = sw["start"]
        card_end_rel = min(sw["end"], seg_duration)
        card_words += shares[si]
        is_last = si == len(src_words) - 1
        next_gap = NO_NEXT_WORD_SECONDS if is_last else src_words[si + 1]["start"] - sw["end"]
        # A card without words stays open and keeps its start.
        if card_words and card_closes(card_words, next_gap, is_last):
            cards.append((card_start_rel, card_end_rel, " ".join(card_words)))
            last_flushed_end = card_end_rel
            card_words = []
            card_start_rel = None
    if left_over:
        cards.append((last_flushed_end, seg_duration, " ".join(left_over)))
    return cards


def fallback_plan(word_count, seg_duration):
    """Length of a card and words per card for a segment without word times."""
    num_cards = max(1, round(seg_duration / AIM_SECONDS))
    card_dur = seg_duration / num_cards
    if card_dur < SHORT_SECONDS:
        card_dur = LENGTHENED_SECONDS
        num_cards = max(1, int(seg_duration / LENGTHENED_SECONDS))
    wpc = max(FEWEST_WORDS, word_count // num_cards)
    return card_dur, wpc


def batch_end(trans_words, widx, eidx):
    """Where a batch of words from `widx` up to `eidx` ends: behind its last mark, but never behind its first word."""
    for chk in range(eidx - 1, widx, -1):
        if trans_words[chk].endswith(MARKS):
            return chk + 1
    return eidx


def fallback_cards(trans_words, seg_duration):
    """(start, end, text) of cards of equal length; the last one runs to the segment's end."""
    card_dur, wpc = fallback_plan(len(trans_words), seg_duration)
    cards = []
    widx = 0
    while widx < len(trans_words):
        eidx = batch_end(trans_words, widx, min(widx + wpc, len(trans_words)))
        cnum = len(cards)
        cs_rel = cnum * card_dur
        ce_rel = seg_duration if eidx >= len(trans_words) else min((cnum + 1) * card_dur, seg_duration)
        cards.append((cs_rel, ce_rel, " ".join(trans_words[widx:eidx])))
        widx = eidx
    return cards


class SubtitleWalk:
    """The SRT lines and markers made so far, segment by segment, and the SRT clock.

    The clock moves on by exactly the length of each clip, whatever was emitted for it: so the entries of the next
    segment start with its audio, even where a card was dropped in this one.
    """

    def __init__(self, fps):
        self.fps = fps
        self.srt_lines = []
        self.sub_idx = 1
        self.running_time = 0.0
        self.sub_count = 0
        # (frame position, frames, text) of each caption card.
        self.sub_cards_for_markers = []

    def add_segment(self, pos_i, position, word_data):
        """Emits the entries of one clip of the timeline, `pos_i` being its place there."""
        seg_duration = position["end_sec"] - position["start_sec"]
        translation = position["translation"]
        if not translation or not translation.strip():
            self.emit_blank(0.0, seg_duration)
            self.running_time += seg_duration
            print(f"LOG:Seg {pos_i}: no translation, blank spacer {seg_duration:.2f}s")
            return

        trans_words = translation.split()
        wl = word_data.get(position["seg_idx"]) or []
        if wl:
            seg_emitted = self.emit_word_cards(word_cards(trans_words, wl, seg_duration), position, seg_duration)
        else:
            seg_emitted = self.emit_fallback_cards(fallback_cards(trans_words, seg_duration), position, seg_duration)
        self.running_time += seg_duration
        print(f"LOG:Seg {pos_i}: dur={seg_duration:.2f}s, emitted={seg_emitted:.2f}s, "
              f"words={len(wl)}, running={self.running_time:.2f}s")

    def emit_word_cards(self, cards, position, seg_duration):
        """Emits the cards with blanks between and behind them; gives the seconds emitted."""
        seg_emitted = 0.0
        cursor_in_seg = 0.0
        for rel_start, rel_end, text in cards:
            gap = rel_start - cursor_in_seg
            if gap > SMALLEST_ENTRY_SECONDS:
                self.emit_blank(cursor_in_seg, rel_start)
                seg_emitted += gap
                cursor_in_seg = rel_start
            card_dur = rel_end - rel_start
            if card_dur > SMALLEST_ENTRY_SECONDS:
                self.emit_card(rel_start, rel_end, text, position["start_sec"])
                seg_emitted += card_dur
                cursor_in_seg = rel_end
        return seg_emitted + self.emit_rest(cursor_in_seg, seg_duration)

    def emit_fallback_cards(self, cards, position, seg_duration):
        """Emits the cards that are long enough and a blank behind them; gives the seconds emitted."""
        seg_emitted = 0.0
        cursor_in_seg = 0.0
        for cs_rel, ce_rel, text in cards:
            actual_dur = ce_rel - cs_rel
            if actual_dur >= SHORTEST_CARD_SECONDS:
                self.emit_card(cs_rel, ce_rel, text, position["start_sec"])
                seg_emitted += actual_dur
                cursor_in_seg = ce_rel
        return seg_emitted + self.emit_rest(cursor_in_seg, seg_duration)

    def emit_rest(self, cursor_in_seg, seg_duration):
        """Fills what is left of the segment with a blank; gives the seconds emitted."""
        trail = seg_duration - cursor_in_seg
        if trail <= SMALLEST_ENTRY_SECONDS:
            return 0.0
        self.emit_blank(cursor_in_seg, seg_duration)
        return trail

    def emit_card(self, rel_start, rel_end, text, start_sec):
        """A caption, which also gets a marker at its place on the timeline."""
        self.emit_entry(rel_start, rel_end, text)
        frame_pos = int(start_sec * self.fps + rel_start * self.fps)
        dur_frames = max(1, int((rel_end - rel_start) * self.fps))
        self.sub_cards_for_markers.append((frame_pos, dur_frames, text))
        self.sub_count += 1

    def emit_blank(self, rel_start, rel_end):
        """Silence. Its single blank is what keeps it an entry."""
        self.emit_entry(rel_start, rel_end, " ")

    def emit_entry(self, rel_start, rel_end, text):
        start = srt_tc(self.running_time + rel_start)
        end = srt_tc(self.running_time + rel_end)
        self.srt_lines += [str(self.sub_idx), f"{start} --> {end}", text, ""]
        self.sub_idx += 1


def write_text(path, text):
    """Writes a file whole. A text that UTF-8 cannot hold fails before the old file is lost."""
    data = text.encode("utf-8")
    with open(path, "wb") as file:
        file.write(data)


def save_srt(srt_content):
    """Writes the SRT file to the cache, the Desktop and the latest export; gives the path in the cache."""
    srt_path = os.path.expanduser(f"~/Library/Caches/ZuvoManager/subs_{int(time.time())}.srt")
    try:
        write_text(srt_path, srt_content)
        print(f"LOG:Wrote SRT cache: {srt_path} ({len(srt_content)} bytes)")
    except Exception as e:
        print(f"LOG:SRT cache write failed: {e}")
    try:
        shutil.copy2(srt_path, os.path.expanduser("~/Desktop/Zuvo_subtitles.srt"))
        print("LOG:SRT copied to Desktop")
    except Exception as e:
        print(f"LOG:Desktop copy failed: {e}")
    update_latest_export(srt_content)
    return srt_path


def update_latest_export(srt_content):
    """Writes the subtitles over those of the export with the last name, if it can be done."""
    export_base = os.path.expanduser("~/Library/Application Support/ZuvoManager/exports")
    if not os.path.isdir(export_base):
        return
    try:
        for entry in sorted(os.listdir(export_base), reverse=True)[:1]:
            write_text(os.path.join(export_base, entry, "subtitles.srt"), srt_content)
            print(f"LOG:Updated export SRT: {entry}/subtitles.srt")
    except Exception:
        pass  # The export is a copy; the file in the cache is the one that is imported.


def import_srt(tl, mp, srt_path, sub_count):
    """Lays the SRT file on a new subtitle track; True if Resolve took it."""
    exists = os.path.exists(srt_path)
    print(f"LOG:Attempting SRT import: exists={exists}, count={sub_count}")
    if not exists or sub_count == 0:
        return False
    try:
        tl.AddTrack("subtitle")
        print("LOG:Added subtitle track")
    except Exception as e:
        print(f"LOG:AddTrack subtitle: {e}")
    try:
        imported = mp.ImportMedia([srt_path])
        print(f"LOG:ImportMedia returned: {imported}")
        if not imported:
            print("LOG:ImportMedia returned empty")
            return False
        result = mp.AppendToTimeline(imported)
        print(f"LOG:AppendToTimeline returned: {result}")
        if not result:
            print("LOG:AppendToTimeline failed")
            return False
        print(f"LOG:Imported {sub_count} captions to subtitle track")
        return True
    except Exception as e:
        print(f"LOG:SRT import error: {e}")
        return False


def add_subtitle_markers(tl, sub_cards_for_markers):
    """A Cyan marker for each caption, the visible reference when the import failed."""
    marker_count = 0
    try:
        for i in range(0, len(sub_cards_for_markers), SUBTITLE_BATCH):
            for frame_pos, dur_frames, text in sub_cards_for_markers[i:i + SUBTITLE_BATCH]:
                try:
                    tl.AddMarker(frame_pos, "Cyan", "", text[:MARKER_CHARACTERS], dur_frames)
                    marker_count += 1
                except Exception:
                    pass  # One marker less; the others go on.
            if i + SUBTITLE_BATCH < len(sub_cards_for_markers):
                time.sleep(BATCH_PAUSE_SECONDS)
    except Exception as e:
        print(f"LOG:Subtitle markers failed ({e})")
    if marker_count:
        print(f"LOG:Added {marker_count} subtitle markers (Cyan) to timeline")


def finish_subtitles(walk, tl, mp):
    """Saves, imports and marks what the walk over the segments has made."""
    print(f"LOG:SRT lines={len(walk.srt_lines)}, sub_count={walk.sub_count}")
    srt_path = save_srt("\n".join(walk.srt_lines))
    if not import_srt(tl, mp, srt_path, walk.sub_count):
        print("LOG:SRT saved to Desktop — import via File > Import > Subtitle if needed")
    add_subtitle_markers(tl, walk.sub_cards_for_markers)
