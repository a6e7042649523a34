"""What becomes of the subtitles: files, the import into Resolve, markers."""

import os
import re
import tempfile
import unittest
from pathlib import Path
from unittest import mock

from cards_fixture import cards, printed_by
from script_fixture import Outcome, ScriptTest, clip, segment
from srt_reader import read_srt


class Files(unittest.TestCase):
    """The copies of the SRT text, in a home folder of their own."""

    NOW = 1700000000.9

    def setUp(self) -> None:
        holder = tempfile.TemporaryDirectory(prefix="zuvo srt ")
        self.addCleanup(holder.cleanup)
        self.home = Path(holder.name)
        self.cache = self.home / "Library/Caches/ZuvoManager"
        self.desktop = self.home / "Desktop"
        self.exports = self.home / "Library/Application Support/ZuvoManager/exports"
        self.cache.mkdir(parents=True)
        self.desktop.mkdir()
        for patch in (mock.patch.dict(os.environ, {"HOME": holder.name}), mock.patch("time.time", lambda: self.NOW)):
            patch.start()
            self.addCleanup(patch.stop)

    @property
    def srt(self) -> Path:
        return self.cache / "subs_1700000000.srt"

    def save(self, text: str = "1\ntimes\né\n") -> list[str]:
        path, lines = printed_by(cards.save_srt, text)
        self.assertEqual(str(self.srt), path)
        return lines

    def test_the_file_is_named_by_whole_seconds_and_copied_to_the_desktop(self) -> None:
        self.assertEqual([f"LOG:Wrote SRT cache: {self.srt} (10 bytes)", "LOG:SRT copied to Desktop"], self.save())
        self.assertEqual("1\ntimes\né\n".encode(), self.srt.read_bytes())
        self.assertEqual(self.srt.read_bytes(), (self.desktop / "Zuvo_subtitles.srt").read_bytes())

    def test_the_length_told_is_that_in_characters(self) -> None:
        self.assertEqual(f"LOG:Wrote SRT cache: {self.srt} (2 bytes)", self.save("é🎬")[0])
        self.assertEqual(6, self.srt.stat().st_size)

    def test_the_copy_on_the_desktop_is_overwritten(self) -> None:
        (self.desktop / "Zuvo_subtitles.srt").write_text("from before")
        self.save("new")
        self.assertEqual("new", (self.desktop / "Zuvo_subtitles.srt").read_text())

    def test_no_desktop_is_told_and_stops_nothing(self) -> None:
        self.desktop.rmdir()
        (self.exports / "1").mkdir(parents=True)
        lines = self.save()
        self.assertEqual(3, len(lines))
        self.assertTrue(lines[1].startswith("LOG:Desktop copy failed: "), lines)
        self.assertEqual("LOG:Updated export SRT: 1/subtitles.srt", lines[2])

    def test_a_cache_that_cannot_be_written_is_told_and_the_export_written_all_the_same(self) -> None:
        self.cache.rmdir()
        (self.exports / "1").mkdir(parents=True)
        lines = self.save("text")
        self.assertTrue(lines[0].startswith("LOG:SRT cache write failed: "), lines)
        self.assertTrue(lines[1].startswith("LOG:Desktop copy failed: "), lines)
        self.assertEqual("text", (self.exports / "1/subtitles.srt").read_text())

    def test_only_the_export_with_the_last_name_is_updated(self) -> None:
        for name in ("2024-01-01 A", "2024-03-01 C", "2024-02-01 B"):
            (self.exports / name).mkdir(parents=True)
            (self.exports / name / "subtitles.srt").write_text("old")
        self.assertEqual("LOG:Updated export SRT: 2024-03-01 C/subtitles.srt", self.save("new")[-1])
        self.assertEqual(["old", "old", "new"], [(folder / "subtitles.srt").read_text()
                                                 for folder in sorted(self.exports.iterdir())])

    def test_an_export_that_cannot_be_written_is_passed_over_in_silence_and_no_other_one_tried(self) -> None:
        (self.exports / "1").mkdir(parents=True)
        (self.exports / "2").write_text("a file")
        self.assertEqual(2, len(self.save()))
        self.assertEqual([], list((self.exports / "1").iterdir()))

    def test_no_exports_are_no_line(self) -> None:
        self.assertEqual(2, len(self.save()))
        self.exports.mkdir(parents=True)
        self.assertEqual(2, len(self.save()))
        self.exports.rmdir()
        self.exports.write_text("a file")
        self.assertEqual(2, len(self.save()))

    def test_a_text_that_utf_8_cannot_hold_leaves_the_old_files_alone(self) -> None:
        (self.exports / "1").mkdir(parents=True)
        (self.exports / "1/subtitles.srt").write_text("old")
        lines = self.save("half a pair: \ud83c")
        self.assertTrue(lines[0].startswith("LOG:SRT cache write failed: "), lines)
        self.assertEqual((False, "old"), (self.srt.exists(), (self.exports / "1/subtitles.srt").read_text()))

    def test_an_empty_text_is_an_empty_file(self) -> None:
        self.assertEqual(f"LOG:Wrote SRT cache: {self.srt} (0 bytes)", self.save("")[0])
        self.assertEqual((0, 0), (self.srt.stat().st_size, (self.desktop / "Zuvo_subtitles.srt").stat().st_size))


class Timeline:
    """Records markers; raises for the texts it is told."""

    def __init__(self, *refused: str) -> None:
        self.refused = refused
        self.markers: list[tuple] = []

    def AddMarker(self, *arguments: object) -> bool:
        if arguments[3] in self.refused:
            raise RuntimeError("refused")
        self.markers.append(arguments)
        return False


class Markers(unittest.TestCase):
    def added(self, count: int, timeline: Timeline, sleep=None) -> tuple[list[str], list[float]]:
        """The lines printed and the pauses made for so many cards."""
        pauses = []
        with mock.patch("time.sleep", sleep or pauses.append):
            _, lines = printed_by(cards.add_subtitle_markers, timeline,
                                  [(10 * i, i + 1, f"card {i}") for i in range(count)])
        return lines, pauses

    def test_each_card_gets_a_cyan_marker_with_its_text_as_the_note(self) -> None:
        timeline = Timeline()
        lines, _ = self.added(2, timeline)
        self.assertEqual([(0, "Cyan", "", "card 0", 1), (10, "Cyan", "", "card 1", 2)], timeline.markers)
        # Resolve said no to both; what counts is that it was asked.
        self.assertEqual(["LOG:Added 2 subtitle markers (Cyan) to timeline"], lines)

    def test_there_is_a_pause_between_batches_of_15_and_none_behind_the_last(self) -> None:
        for count, pauses in ((0, 0), (1, 0), (15, 0), (16, 1), (30, 1), (31, 2)):
            timeline = Timeline()
            self.assertEqual([0.05] * pauses, self.added(count, timeline)[1])
            self.assertEqual(count, len(timeline.markers))

    def test_no_cards_are_no_line(self) -> None:
        self.assertEqual([], self.added(0, Timeline())[0])

    def test_an_exception_costs_its_own_marker_alone(self) -> None:
        timeline = Timeline("card 0", "card 2")
        self.assertEqual(["LOG:Added 2 subtitle markers (Cyan) to timeline"], self.added(4, timeline)[0])
        self.assertEqual(["card 1", "card 3"], [marker[3] for marker in timeline.markers])

    def test_exceptions_for_all_of_them_are_no_line(self) -> None:
        self.assertEqual([], self.added(1, Timeline("card 0"))[0])

    def test_a_failure_between_the_batches_is_told_with_what_was_done(self) -> None:
        sleep = mock.Mock(side_effect=OSError("interrupted"))
        self.assertEqual(["LOG:Subtitle markers failed (interrupted)",
                          "LOG:Added 15 subtitle markers (Cyan) to timeline"], self.added(20, Timeline(), sleep)[0])

    def test_a_note_holds_80_characters(self) -> None:
        timeline = Timeline()
        printed_by(cards.add_subtitle_markers, timeline, [(0, 1, "é" * 81), (1, 1, "é" * 80)])
        self.assertEqual(["é" * 80] * 2, [marker[3] for marker in timeline.markers])


class Import(ScriptTest):
    """The end of a whole build, with the subtitles laid into the stand-in's Resolve."""

    def setUp(self) -> None:
        super().setUp()
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(0, 2, translation="one two"), segment(5, 7, translation="three"))
        (self.home / "Desktop").mkdir()

    def built(self) -> Outcome:
        outcome = self.run_script("final_build")
        self.then_ended_well(outcome)
        self.assertEqual("SUCCESS:2/2 clips appended", outcome.lines[-1])
        return outcome

    def lines_of_import(self) -> list[str]:
        lines = [re.sub(r"/\S.*?/subs_\d+\.srt", "SRT", line) for line in self.built().lines]
        first = next(i for i, line in enumerate(lines) if line.startswith("LOG:Attempting SRT import"))
        return lines[first:-2]

    MARKED = "LOG:Added 2 subtitle markers (Cyan) to timeline"
    SAVED = "LOG:SRT saved to Desktop — import via File > Import > Subtitle if needed"

    def test_the_file_lies_on_a_subtitle_track_in_the_end(self) -> None:
        self.assertEqual([
            "LOG:Attempting SRT import: exists=True, count=2", "LOG:Added subtitle track",
            "LOG:ImportMedia returned: [<MediaPoolItem SRT>]",
            "LOG:AppendToTimeline returned: [<TimelineItem SRT 86400-86496>]",
            "LOG:Imported 2 captions to subtitle track", self.MARKED], self.lines_of_import())
        [[item]] = self.timeline_after()["tracks"]["subtitle"]
        self.assertEqual("1\n00:00:00,000 --> 00:00:02,000\none two\n\n2\n00:00:02,000 --> 00:00:04,000\nthree\n",
                         Path(item["clip"]).read_text(encoding="utf-8"))

    def test_all_lines_behind_the_walk_stand_in_order(self) -> None:
        (self.home / "Library/Application Support/ZuvoManager/exports/1").mkdir(parents=True)
        lines = self.built().lines
        starts = [line.split(":")[1].split(" ")[:2] for line in lines[lines.index("LOG:SRT lines=8, sub_count=2"):]]
        self.assertEqual([["SRT", "lines=8,"], ["Wrote", "SRT"], ["SRT", "copied"], ["Updated", "export"],
                          ["Attempting", "SRT"], ["Added", "subtitle"], ["ImportMedia", "returned"],
                          ["AppendToTimeline", "returned"], ["Imported", "2"], ["Added", "2"], ["Generated", "2"],
                          ["2/2", "clips"]], starts)

    def test_a_track_that_cannot_be_added_is_told_and_the_import_goes_on(self) -> None:
        self.given_failure("AddTrack", raises="no room")
        self.assertEqual(["LOG:AddTrack subtitle: no room", "LOG:ImportMedia returned: [<MediaPoolItem SRT>]"],
                         self.lines_of_import()[1:3])

    def test_a_track_that_resolve_says_no_to_counts_as_added(self) -> None:
        self.given_failure("AddTrack", gives=False)
        self.assertEqual("LOG:Added subtitle track", self.lines_of_import()[1])

    def test_an_import_that_gives_nothing(self) -> None:
        self.given_failure("ImportMedia", gives=[])
        self.assertEqual(["LOG:ImportMedia returned: []", "LOG:ImportMedia returned empty", self.SAVED, self.MARKED],
                         self.lines_of_import()[2:])

    def test_an_import_that_raises(self) -> None:
        self.given_failure("ImportMedia", raises="bad file")
        self.assertEqual(["LOG:SRT import error: bad file", self.SAVED, self.MARKED], self.lines_of_import()[2:])

    def test_subtitles_that_cannot_be_appended(self) -> None:
        self.given_failure("AppendToTimeline", call=3, gives=[])
        self.assertEqual(["LOG:AppendToTimeline returned: []", "LOG:AppendToTimeline failed", self.SAVED, self.MARKED],
                         self.lines_of_import()[3:])

    def test_an_append_that_raises(self) -> None:
        self.given_failure("AppendToTimeline", call=3, raises="busy")
        self.assertEqual(["LOG:SRT import error: busy", self.SAVED, self.MARKED], self.lines_of_import()[3:])

    def test_without_any_caption_nothing_is_imported_and_the_file_written_all_the_same(self) -> None:
        self.given_segments(segment(0, 2), segment(5, 7))
        self.assertEqual(["LOG:Attempting SRT import: exists=True, count=0", self.SAVED], self.lines_of_import())
        self.assertEqual([], self.timeline_after()["tracks"]["subtitle"])
        [written] = self.cache.glob("subs_*.srt")
        self.assertEqual([" ", " "], [entry.text for entry in read_srt(written.read_text())])

    def test_a_file_that_could_not_be_written_is_not_imported(self) -> None:
        self.given_segments(segment(0, 2, translation="\ud83c half a pair"), segment(5, 7, translation="three"))
        self.assertEqual(["LOG:Attempting SRT import: exists=False, count=2", self.SAVED, self.MARKED],
                         self.lines_of_import())
        self.assertEqual([], self.timeline_after()["tracks"]["subtitle"])


if __name__ == "__main__":
    unittest.main()
