"""What holds for the subtitles of any story, on random ones. The seed is fixed, so that a failure stays."""

import random
import unittest

from cards_fixture import cards, printed_by
from srt_reader import read_srt

STORIES = 2500
SEED = 20240613
VOCABULARY = ["a", "the", "river", "house.", "never,", "why?", "go!", "so;", "this:", "été", "🎬", "-->", "1", "«"]
RATES = [23.976, 24.0, 25.0, 29.97, 30.0, 50.0, 59.94]
# A caption or silence of this length or less may be left out, once per gap.
LEFT_OUT = 0.04
ROUNDING = 1e-6


class RecordingWalk(cards.SubtitleWalk):
    """Keeps the exact times of the entries of the segment at hand."""

    def __init__(self, fps: float) -> None:
        super().__init__(fps)
        self.entries: list[tuple[float, float, str]] = []

    def emit_entry(self, rel_start: float, rel_end: float, text: str) -> None:
        self.entries.append((rel_start, rel_end, text))
        super().emit_entry(rel_start, rel_end, text)


def random_words(rng: random.Random, duration: float) -> list[dict]:
    """Words in order, without overlap, that start before the clip's end; the last may end behind it."""
    words = []
    at = rng.choice([0.0, rng.random(), rng.random() * 0.06])
    pause = rng.choice([0.0, 0.02, 0.1, 0.5])
    length = rng.choice([0.05, 0.3, 0.6])
    while at < duration:
        end = at + rng.random() * 2 * length
        words.append({"word": "x", "start": at, "end": end})
        at = end + rng.choice([0.0, pause, rng.random() * pause])
    return words


class Story:
    """Clips that lie one behind the other, with or without words."""

    def __init__(self, rng: random.Random) -> None:
        self.fps = rng.choice(RATES)
        self.positions = []
        self.words = {}
        at = rng.choice([0.0, 150.0])
        for seg_idx in range(rng.randrange(1, 7)):
            duration = rng.choice([rng.random() * 2, rng.random() * 30, rng.randrange(1, 500) / self.fps])
            text = " ".join(rng.choice(VOCABULARY) for _ in range(rng.choice([0, 1, 3, rng.randrange(120)])))
            self.positions.append({"seg_idx": seg_idx, "start_sec": at, "end_sec": at + duration, "translation": text,
                                   "chapter": ""})
            if rng.random() < 0.7:
                self.words[seg_idx] = random_words(rng, duration)
            at += duration


class SubtitleStories(unittest.TestCase):
    def check_segment(self, walk: RecordingWalk, pos_i: int, story: Story) -> bool:
        """Walks over one clip and looks at its entries; True if none of its words was dropped."""
        clip = story.positions[pos_i]
        duration = clip["end_sec"] - clip["start_sec"]
        before = walk.running_time
        walk.entries = []
        printed_by(walk.add_segment, pos_i, clip, story.words)

        self.assertEqual(before + duration, walk.running_time)
        cursor = 0.0
        for start, end, _ in walk.entries:
            self.assertLessEqual(cursor, start)
            self.assertLess(start, end)
            cursor = end
        self.assertLessEqual(cursor, duration)

        shown = [word for _, _, text in walk.entries if text != " " for word in text.split(" ")]
        spoken_text = clip["translation"].split()
        rest = iter(spoken_text)
        self.assertTrue(all(word in rest for word in shown), "captions are out of order")
        if shown != spoken_text:
            return False
        emitted = sum(end - start for start, end, _ in walk.entries)
        gaps = len([text for _, _, text in walk.entries if text != " "]) + 1
        self.assertLessEqual(emitted, duration + ROUNDING)
        self.assertGreaterEqual(emitted, duration - gaps * LEFT_OUT - ROUNDING)
        return True

    def check_file(self, walk: RecordingWalk, story: Story) -> int:
        """Reads the SRT text of a whole story; how many entries it has."""
        entries = read_srt("\n".join(walk.srt_lines))
        captions = [entry for entry in entries if entry.text != " "]
        self.assertEqual(walk.sub_count, len(captions))
        self.assertEqual([entry.text for entry in captions], [text for _, _, text in walk.sub_cards_for_markers])
        self.assertEqual(len(entries) + 1, walk.sub_idx)
        total = sum(clip["end_sec"] - clip["start_sec"] for clip in story.positions)
        self.assertAlmostEqual(total, walk.running_time)
        for entry in entries:
            self.assertLessEqual(entry.start, entry.end)
            self.assertLessEqual(entry.end, total * 1000 + 1)
        for (frame, frames, _), position in zip(walk.sub_cards_for_markers, walk.sub_cards_for_markers[1:]):
            self.assertLessEqual(frame, position[0])
            self.assertGreaterEqual(frames, 1)
        return len(entries)

    def test_entries_keep_to_their_clip_whatever_the_story(self) -> None:
        rng = random.Random(SEED)
        segments = complete = entries = 0
        for _ in range(STORIES):
            story = Story(rng)
            walk = RecordingWalk(story.fps)
            for pos_i in range(len(story.positions)):
                segments += 1
                complete += self.check_segment(walk, pos_i, story)
            entries += self.check_file(walk, story)
        # The stories are worth the name: most of their segments show all their words.
        self.assertGreater(complete, segments // 2)
        self.assertGreater(entries, 10 * STORIES)


class StrictReader(unittest.TestCase):
    GOOD = "1\n00:00:00,000 --> 00:00:01,000\n \n\n2\n00:00:01,000 --> 100:00:02,500\none two\n"

    def test_a_good_file_is_read(self) -> None:
        self.assertEqual([(1, 0, 1000, " "), (2, 1000, 360002500, "one two")], read_srt(self.GOOD))
        self.assertEqual([], read_srt(""))

    def test_whatever_is_wrong_is_refused(self) -> None:
        for old, new in (("1\n00:00:00", "0\n00:00:00"), ("2\n", "3\n"), (",000 -->", ".000 -->"),
                         ("01,000\n", "61,000\n"), ("0,000 -->", "0,0 -->"), (" \n\n", "\n\n"),
                         (" \n\n", "  \n\n"), (" \n\n", " \nx\n"), ("one two", "one\n\ntwo"),
                         ("one two\n", "one two"), ("one two", "one two ")):
            self.assertIn(old, self.GOOD)
            with self.assertRaises(ValueError):
                read_srt(self.GOOD.replace(old, new, 1))


if __name__ == "__main__":
    unittest.main()
