"""How words become subtitle cards and entries, by tables that were worked out by hand."""

import os
import tempfile
import unittest
from pathlib import Path
from unittest import mock

from cards_fixture import Walked, cards, numbered, position, printed_by, seconds_of_words, spoken, walked


class Timecodes(unittest.TestCase):
    def test_times_are_cut_off_and_not_rounded(self) -> None:
        for seconds, text in (
                (0.0, "00:00:00,000"), (0, "00:00:00,000"), (0.5, "00:00:00,500"), (1.9999, "00:00:01,999"),
                (59.9999, "00:00:59,999"), (60.25, "00:01:00,250"), (3599.5, "00:59:59,500"),
                (3661.125, "01:01:01,125"), (360000.0, "100:00:00,000")):
            self.assertEqual(text, cards.srt_tc(seconds))

    def test_a_thousandth_that_a_double_falls_short_of_is_cut_off(self) -> None:
        self.assertEqual("00:00:01,000", cards.srt_tc(1.001))


class NoText(unittest.TestCase):
    def test_a_segment_without_text_is_one_blank_entry(self) -> None:
        for translation in ("", " ", " \t\n\u00a0", None):
            told = walked(2.5, translation, seconds_of_words(3))
            self.assertEqual(["1", "00:00:00,000 --> 00:00:02,500", " ", ""], told.lines)
            self.assertEqual(["LOG:Seg 0: no translation, blank spacer 2.50s"], told.printed)
            self.assertEqual((2, 2.5, 0, []), (told.walk.sub_idx, told.walk.running_time, told.walk.sub_count,
                                               told.walk.sub_cards_for_markers))

    def test_the_next_segment_starts_behind_it(self) -> None:
        told = Walked(position(0.0, 2.5, ""), position(2.5, 5.5, "one"))
        self.assertEqual([("00:00:00,000 --> 00:00:02,500", " "), ("00:00:02,500 --> 00:00:05,500", "one")],
                         told.entries)


class SharingWords(unittest.TestCase):
    def test_translated_words_are_shared_out_by_a_pointer_that_is_cut_off(self) -> None:
        for trans, spoken_words, counts, left in (
                (10, 4, [2, 3, 2, 3], 0),
                (12, 12, [1] * 12, 0),
                (3, 6, [1, 1, 1, 0, 0, 0], 0),
                (7, 2, [3, 4], 0),
                (5, 1, [5], 0),
                # Six times 8/6 fall short of 8 by a hair: the last word is left over.
                (8, 6, [1, 1, 2, 1, 1, 1], 1)):
            shares, left_over = cards.shared_out(numbered(trans).split(), spoken_words)
            self.assertEqual((counts, left), ([len(share) for share in shares], len(left_over)))
            self.assertEqual(numbered(trans).split(), [word for share in shares for word in share] + left_over)


class WordCards(unittest.TestCase):
    """Cards of spoken words, as (start, end, text)."""

    def made(self, translation: str, words: list, duration: float) -> list[tuple]:
        return cards.word_cards(translation.split(), words, duration)

    def test_ten_words_over_four_close_at_seven(self) -> None:
        self.assertEqual([(0.0, 3.0, "w1 w2 w3 w4 w5 w6 w7"), (3.0, 4.0, "w8 w9 w10")],
                         self.made(numbered(10), seconds_of_words(4), 4.0))

    def test_a_card_closes_at_seven_words_and_not_at_six(self) -> None:
        self.assertEqual([(0.0, 7.0, "w1 w2 w3 w4 w5 w6 w7"), (7.0, 8.0, "w8")],
                         self.made(numbered(8), seconds_of_words(8), 8.0))
        self.assertEqual([(0.0, 6.0, "w1 w2 w3 w4 w5 w6")], self.made(numbered(6), seconds_of_words(6), 6.0))

    def test_a_card_may_have_more_than_seven_words_when_one_spoken_word_brings_them(self) -> None:
        self.assertEqual([(0.0, 1.0, numbered(10)), (1.0, 2.0, " ".join(f"w{i}" for i in range(11, 21)))],
                         self.made(numbered(20), seconds_of_words(2), 2.0))

    def test_three_words_and_a_mark_close_a_card(self) -> None:
        for mark in ".!?,;:":
            self.assertEqual([(0.0, 3.0, f"w1 w2 w3{mark}"), (3.0, 5.0, "w4 w5")],
                             self.made(f"w1 w2 w3{mark} w4 w5", seconds_of_words(5), 5.0))

    def test_other_signs_close_nothing(self) -> None:
        for sign in "…-)\"'¿。":
            self.assertEqual(1, len(self.made(f"w1 w2 w3{sign} w4 w5", seconds_of_words(5), 5.0)), sign)

    def test_two_words_and_a_mark_stay_open(self) -> None:
        self.assertEqual([(0.0, 4.0, "w1 w2. w3 w4,"), (4.0, 5.0, "w5")],
                         self.made("w1 w2. w3 w4, w5", seconds_of_words(5), 5.0))

    def test_four_words_close_before_a_pause_longer_than_three_tenths(self) -> None:
        for pause, count in ((0.25, 1), (0.375, 2), (0.3, 1)):
            # All words at 0.0, so that the pause is this very number.
            words = spoken((0.0, 0.0), (0.0, 0.0), (0.0, 0.0), (0.0, 0.0), (pause, 2.0))
            self.assertEqual(count, len(self.made(numbered(5), words, 2.0)), pause)

    def test_three_words_stay_open_before_any_pause(self) -> None:
        words = spoken((0.0, 1.0), (1.0, 2.0), (2.0, 3.0), (5.0, 6.0))
        self.assertEqual([(0.0, 6.0, "w1 w2 w3 w4")], self.made(numbered(4), words, 6.0))

    def test_the_pause_counts_from_the_word_s_own_end_and_not_from_the_clip_s(self) -> None:
        words = spoken((0.0, 0.5), (0.5, 1.0), (1.0, 1.5), (1.5, 2.6), (2.7, 2.9))
        # The fourth word is cut at 2.0, 0.7 before the fifth; but it ends at 2.6.
        self.assertEqual([(0.0, 2.0, "w1 w2 w3 w4 w5")], self.made(numbered(5), words, 2.0))

    def test_a_word_that_ends_late_by_up_to_a_second_is_kept_and_cut(self) -> None:
        for end in (2.5, 3.0):
            words = spoken((0.0, 1.0), (1.0, end))
            self.assertEqual([(0.0, 2.0, "w1 w2")], self.made("w1 w2", words, 2.0))

    def test_a_word_that_ends_later_is_dropped(self) -> None:
        words = spoken((0.0, 1.0), (1.0, 3.01))
        self.assertEqual([(0.0, 1.0, "w1 w2")], self.made("w1 w2", words, 2.0))

    def test_words_that_all_end_late_are_all_kept(self) -> None:
        words = spoken((0.0, 9.0), (9.0, 10.0))
        self.assertEqual([(0.0, 2.0, "w1 w2")], self.made("w1 w2", words, 2.0))

    def test_a_shorter_translation_closes_at_the_last_word_that_brought_text(self) -> None:
        self.assertEqual([(0.0, 3.0, "w1 w2 w3.")], self.made("w1 w2 w3.", seconds_of_words(6), 6.0))

    def test_or_at_the_end_of_the_speech(self) -> None:
        self.assertEqual([(0.0, 6.0, "w1 w2 w3")], self.made("w1 w2 w3", seconds_of_words(6), 6.5))

    def test_words_left_over_follow_the_last_card_to_the_end(self) -> None:
        self.assertEqual([(0.0, 6.0, "w1 w2 w3 w4 w5 w6 w7"), (6.0, 7.5, "w8")],
                         self.made(numbered(8), seconds_of_words(6), 7.5))


class EmittedWordCards(unittest.TestCase):
    def test_entries_fill_the_segment(self) -> None:
        words = spoken((0.5, 1.0), (1.0, 1.5), (1.5, 2.0), (3.0, 4.0))
        told = walked(5.0, "one two three, four", words)
        self.assertEqual([
            "1", "00:00:00,000 --> 00:00:00,500", " ", "",
            "2", "00:00:00,500 --> 00:00:02,000", "one two three,", "",
            "3", "00:00:02,000 --> 00:00:03,000", " ", "",
            "4", "00:00:03,000 --> 00:00:04,000", "four", "",
            "5", "00:00:04,000 --> 00:00:05,000", " ", ""], told.lines)
        self.assertEqual(["LOG:Seg 0: dur=5.00s, emitted=5.00s, words=4, running=5.00s"], told.printed)
        self.assertEqual([(12, 36, "one two three,"), (72, 24, "four")], told.walk.sub_cards_for_markers)
        self.assertEqual((2, 6), (told.walk.sub_count, told.walk.sub_idx))

    def test_a_gap_of_up_to_four_hundredths_is_left_out_and_the_caption_keeps_its_start(self) -> None:
        for start, first in ((0.03, "00:00:00,030 --> 00:00:02,000"), (0.04, "00:00:00,040 --> 00:00:02,000")):
            told = walked(2.0, "one", spoken((start, 2.0)))
            self.assertEqual([(first, "one")], told.entries)

    def test_a_greater_gap_is_a_blank_entry(self) -> None:
        told = walked(2.0, "one", spoken((0.0625, 2.0)))
        self.assertEqual([("00:00:00,000 --> 00:00:00,062", " "), ("00:00:00,062 --> 00:00:02,000", "one")],
                         told.entries)

    def test_a_rest_of_up_to_four_hundredths_is_left_out(self) -> None:
        told = walked(2.0, "one", spoken((0.0, 1.96875)))
        self.assertEqual([("00:00:00,000 --> 00:00:01,968", "one")], told.entries)
        self.assertEqual(["LOG:Seg 0: dur=2.00s, emitted=1.97s, words=1, running=2.00s"], told.printed)
        self.assertEqual(2.0, told.walk.running_time)

    def test_a_card_of_up_to_four_hundredths_is_dropped_and_its_place_becomes_silence(self) -> None:
        told = walked(2.0, "a b c. d", spoken((0.0, 0.5), (0.5, 1.0), (1.0, 1.5), (1.5, 1.53125)))
        self.assertEqual([("00:00:00,000 --> 00:00:01,500", "a b c."), ("00:00:01,500 --> 00:00:02,000", " ")],
                         told.entries)

    def test_a_card_and_a_rest_of_exactly_four_hundredths_are_nothing(self) -> None:
        walk = cards.SubtitleWalk(24.0)
        self.assertEqual(0.0, walk.emit_word_cards([(0.0, 0.04, "x")], position(0.0, 0.04, ""), 0.04))
        self.assertEqual([], walk.srt_lines)

    def test_a_hole_of_a_dropped_card_is_filled_before_the_next_one(self) -> None:
        told = Walked(position(0.0, 4.0, "x"))
        walk = told.walk
        emitted = walk.emit_word_cards([(0.0, 1.0, "kept"), (1.0, 1.03125, "dropped"), (1.25, 2.0, "last")],
                                       position(10.0, 14.0, ""), 4.0)
        self.assertEqual(4.0, emitted)
        self.assertEqual([
            "00:00:04,000 --> 00:00:05,000", "kept", "", "3", "00:00:05,000 --> 00:00:05,250", " ", "", "4",
            "00:00:05,250 --> 00:00:06,000", "last", "", "5", "00:00:06,000 --> 00:00:08,000", " ", ""],
            walk.srt_lines[5:])
        self.assertEqual([(240, 24, "kept"), (270, 18, "last")], walk.sub_cards_for_markers[1:])

    def test_words_left_over_at_the_very_end_are_dropped_with_their_card(self) -> None:
        told = walked(6.0, numbered(8), seconds_of_words(6))
        self.assertEqual([("00:00:00,000 --> 00:00:06,000", "w1 w2 w3 w4 w5 w6 w7")], told.entries)

    def test_a_word_that_starts_past_the_end_takes_the_silence_past_it(self) -> None:
        told = Walked(position(0.0, 2.0, numbered(10)), position(2.0, 3.0, "next"),
                      words={0: spoken((0.0, 1.0), (2.5, 2.9))})
        self.assertEqual([("00:00:00,000 --> 00:00:01,000", "w1 w2 w3 w4 w5"), ("00:00:01,000 --> 00:00:02,500", " "),
                          ("00:00:02,000 --> 00:00:03,000", "next")], told.entries)
        self.assertEqual("LOG:Seg 0: dur=2.00s, emitted=2.50s, words=2, running=2.00s", told.printed[0])

    def test_a_marker_is_at_least_one_frame_long_and_cut_off(self) -> None:
        words = spoken((0.0, 0.1), (0.1, 0.2), (0.2, 0.99), (1.0, 1.0625))
        told = Walked(position(10.5625, 12.5, "a b c. d"), words={0: words}, fps=10.0)
        # 10.5625 s at 10 frames a second are frame 105.625, and 115.625 with the 1.0 s of the second card, whose
        # 0.0625 s are no whole frame.
        self.assertEqual([(105, 9, "a b c."), (115, 1, "d")], told.walk.sub_cards_for_markers)
        self.assertTrue(all(type(frame) is int for frame, _, _ in told.walk.sub_cards_for_markers))

    def test_the_log_counts_all_words_of_the_segment(self) -> None:
        told = walked(2.0, "one", spoken((0.0, 2.0), (2.0, 9.0)))
        self.assertEqual(["LOG:Seg 0: dur=2.00s, emitted=2.00s, words=2, running=2.00s"], told.printed)

    def test_words_are_looked_up_by_the_place_on_the_track(self) -> None:
        told = Walked(position(0.0, 2.0, "one", seg_idx=0), position(2.0, 4.0, "two", seg_idx=1),
                      words={1: spoken((0.5, 2.0))})
        self.assertEqual(["one", " ", "two"], [text for _, text in told.entries])

    def test_text_is_split_at_any_white_space_and_joined_by_one_blank(self) -> None:
        told = walked(2.0, "  one\n\ttwo\u3000three ", spoken((0.0, 2.0)))
        self.assertEqual(["one two three"], told.captions)


class FallbackCards(unittest.TestCase):
    """Cards of segments without word times."""

    def test_cards_aim_at_three_and_a_half_seconds(self) -> None:
        for duration, word_count, card_dur, wpc in (
                (3.5, 10, 3.5, 10), (7.0, 10, 3.5, 5), (10.0, 30, 10.0 / 3, 10), (35.0, 101, 3.5, 10),
                # Halves are rounded to the even number: 1.5 to 2, 2.5 to 2.
                (5.25, 8, 2.625, 4), (8.75, 8, 4.375, 4),
                # Never fewer than three words.
                (10.0, 4, 10.0 / 3, 3), (35.0, 1, 3.5, 3),
                # Too short for two seconds: 2.5 s and as many cards as fit, at least one.
                (1.0, 20, 2.5, 20), (1.9, 7, 2.5, 7), (0.0, 7, 2.5, 7), (2.0, 7, 2.0, 7)):
            self.assertEqual((card_dur, wpc), cards.fallback_plan(word_count, duration), (duration, word_count))

    def test_twenty_words_in_one_second_are_a_single_card(self) -> None:
        told = walked(1.0, numbered(20))
        self.assertEqual([("00:00:00,000 --> 00:00:01,000", numbered(20))], told.entries)
        self.assertEqual(["LOG:Seg 0: dur=1.00s, emitted=1.00s, words=0, running=1.00s"], told.printed)

    def test_five_and_a_quarter_seconds_are_two_cards(self) -> None:
        told = walked(5.25, numbered(8))
        self.assertEqual([("00:00:00,000 --> 00:00:02,625", "w1 w2 w3 w4"),
                          ("00:00:02,625 --> 00:00:05,250", "w5 w6 w7 w8")], told.entries)
        self.assertEqual([(0, 63, "w1 w2 w3 w4"), (63, 63, "w5 w6 w7 w8")], told.walk.sub_cards_for_markers)

    def test_eight_and_three_quarter_seconds_are_two_cards_and_not_three(self) -> None:
        told = walked(8.75, numbered(8))
        self.assertEqual([("00:00:00,000 --> 00:00:04,375", "w1 w2 w3 w4"),
                          ("00:00:04,375 --> 00:00:08,750", "w5 w6 w7 w8")], told.entries)

    def test_the_last_batch_runs_to_the_segment_s_end(self) -> None:
        told = walked(10.0, numbered(4))
        self.assertEqual([("00:00:00,000 --> 00:00:03,333", "w1 w2 w3"), ("00:00:03,333 --> 00:00:10,000", "w4")],
                         told.entries)

    def test_a_batch_ends_behind_its_last_mark(self) -> None:
        for mark in ".!?,;:":
            told = walked(7.0, f"w1, w2{mark} w3 w4 w5{mark} w6 w7 w8 w9")
            # Four words a card; the second batch goes to its end, since its mark stands behind its first word.
            self.assertEqual([f"w1, w2{mark}", f"w3 w4 w5{mark}"], told.captions[:2])

    def test_a_batch_does_not_end_behind_its_first_word(self) -> None:
        told = walked(7.0, "w1. w2 w3 w4 w5 w6 w7 w8")
        self.assertEqual(["w1. w2 w3 w4", "w5 w6 w7 w8"], told.captions)

    def test_a_mark_at_the_batch_s_end_keeps_it_whole(self) -> None:
        told = walked(7.0, "w1, w2, w3 w4. w5 w6 w7 w8")
        self.assertEqual(["w1, w2, w3 w4.", "w5 w6 w7 w8"], told.captions)

    def test_words_for_which_no_time_is_left_are_dropped(self) -> None:
        told = walked(7.0, "a b, c d e f, g h")
        self.assertEqual([("00:00:00,000 --> 00:00:03,500", "a b,"), ("00:00:03,500 --> 00:00:07,000", "c d e f,")],
                         told.entries)
        self.assertEqual(2, told.walk.sub_count)

    def test_the_last_batch_may_be_cut_short_by_the_segment_s_end(self) -> None:
        told = walked(1.8, "a b. c d e f")
        self.assertEqual([("00:00:00,000 --> 00:00:01,800", "a b.")], told.entries)

    def test_a_card_of_less_than_half_a_second_is_dropped_for_silence(self) -> None:
        told = walked(0.46875, "one two")
        self.assertEqual([("00:00:00,000 --> 00:00:00,468", " ")], told.entries)
        self.assertEqual(["LOG:Seg 0: dur=0.47s, emitted=0.47s, words=0, running=0.47s"], told.printed)
        self.assertEqual(0, told.walk.sub_count)

    def test_a_card_of_exactly_half_a_second_is_kept(self) -> None:
        self.assertEqual([("00:00:00,000 --> 00:00:00,500", "one")], walked(0.5, "one").entries)

    def test_a_segment_of_no_length_worth_an_entry_has_none(self) -> None:
        for duration in (0.0, 0.03125, 0.04, -1.0):
            told = walked(duration, "one")
            self.assertEqual(([], duration), (told.lines, told.walk.running_time))

    def test_an_empty_list_of_words_is_none(self) -> None:
        self.assertEqual(walked(7.0, numbered(8)).lines, walked(7.0, numbered(8), []).lines)
        self.assertEqual(walked(7.0, numbered(8)).lines, Walked(position(0.0, 7.0, numbered(8)), words={0: None}).lines)


class Clock(unittest.TestCase):
    def test_the_next_segment_starts_with_its_audio_even_behind_a_hole(self) -> None:
        told = Walked(position(0.0, 7.0, "a b, c d e f, g h"), position(7.0, 7.25, "dropped"),
                      position(7.25, 9.25, "one"))
        self.assertEqual([
            ("00:00:00,000 --> 00:00:03,500", "a b,"), ("00:00:03,500 --> 00:00:07,000", "c d e f,"),
            ("00:00:07,000 --> 00:00:07,250", " "), ("00:00:07,250 --> 00:00:09,250", "one")], told.entries)
        self.assertEqual(["1", "2", "3", "4"], told.lines[::4])
        self.assertTrue(told.printed[2].endswith("running=9.25s"), told.printed)

    def test_the_clock_does_not_start_at_the_timeline_s_place(self) -> None:
        told = Walked(position(150.0, 152.0, "one"))
        self.assertEqual([("00:00:00,000 --> 00:00:02,000", "one")], told.entries)
        self.assertEqual([(3600, 48, "one")], told.walk.sub_cards_for_markers)


class LoadingWords(unittest.TestCase):
    def setUp(self) -> None:
        holder = tempfile.TemporaryDirectory(prefix="zuvo words ")
        self.addCleanup(holder.cleanup)
        self.file = Path(holder.name) / "Library/Caches/ZuvoManager/word_timestamps.json"
        self.file.parent.mkdir(parents=True)
        home = mock.patch.dict(os.environ, {"HOME": holder.name})
        home.start()
        self.addCleanup(home.stop)

    def loaded(self, text: str) -> tuple[dict, list[str]]:
        self.file.write_text(text, encoding="utf-8")
        return printed_by(cards.load_word_timestamps)

    def test_words_are_kept_by_segment_index(self) -> None:
        self.assertEqual(({7: [{"word": "día", "start": 0.1, "end": 0.5}], 3: []},
                          ["LOG:Loaded word-level timestamps for 2 segments"]),
                         self.loaded('[{"segmentIndex": 7, "words": [{"word": "día", "start": 0.1, "end": 0.5}]}, '
                                     '{"segmentIndex": 3, "words": []}]'))

    def test_the_last_of_two_with_one_index_counts(self) -> None:
        self.assertEqual(({1: [2]}, ["LOG:Loaded word-level timestamps for 1 segments"]),
                         self.loaded('[{"segmentIndex": 1, "words": [1]}, {"segmentIndex": 1, "words": [2]}]'))

    def test_a_missing_file_is_no_words_and_no_line(self) -> None:
        self.assertEqual(({}, []), printed_by(cards.load_word_timestamps))

    def test_what_was_read_before_a_failure_counts(self) -> None:
        self.assertEqual(({1: [1]}, ["LOG:Could not load word timestamps: 'words'"]),
                         self.loaded('[{"segmentIndex": 1, "words": [1]}, {"segmentIndex": 2}, '
                                     '{"segmentIndex": 3, "words": [3]}]'))

    def test_a_file_that_makes_no_sense_is_no_words_and_a_line(self) -> None:
        for text in ("", "[", "null", "5", "[5]", '[{"segmentIndex": [], "words": []}]', '{"a": 1}'):
            words, lines = self.loaded(text)
            self.assertEqual(({}, 1), (words, len(lines)), text)
            self.assertTrue(lines[0].startswith("LOG:Could not load word timestamps: "), text)


if __name__ == "__main__":
    unittest.main()
