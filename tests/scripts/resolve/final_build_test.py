"""The final timeline build: clips cut by In and Out, positions read back, chapters laid over them."""

import re
import unittest

from final_build_fixture import FinalBuildTest
from script_fixture import Outcome, clip, filled, segment


class WholeRun(FinalBuildTest):
    def setUp(self) -> None:
        super().setUp()
        self.given_clips(clip("/f/A.wav", 100, Start_TC="01:00:00:00"), clip("/f/B.wav", 200, Start_TC="02:00:00:00"),
                         clip("/f/C.wav", 300))
        self.given_probe(B={"duration": 200.0, "startTimecodeSeconds": 3600.0},
                         A={"duration": 100.0, "startTimecodeSeconds": 7200.0, "fps": None})
        self.given_segments(segment(205, 208.5, "A.wav", "One", "one two three"),
                            segment(10, 12, "B.wav", "Two", "four"), segment(20, 21, "B.wav", "Two", ""))
        self.given_json("word_timestamps.json", [{"segmentIndex": 1, "words": [
            {"word": "x", "start": 0.5, "end": 2.0}]}])

    def test_a_whole_build_tells_its_steps_in_order(self) -> None:
        outcome = self.well_built()
        [srt] = self.cache.glob("subs_*.srt")
        self.assertEqual([
            "LOG:Using default fps=24.0",
            "LOG:Loaded 3 segments",
            "LOG:Loaded probe data for 2 files",
            "LOG:Clip fps=24.0",
            "LOG:Clip fps=24.0",
            "LOG:Matched 2 source clips",
            "LOG:B.wav: duration=200s, transcript=0-200s",
            "LOG:A.wav: duration=100s, transcript=200-300s",
            f"LOG:Created timeline: {self.timeline_after()['name']}",
            "LOG:Seg 0: seq 205.0-208.5s (3.5s) -> In=01:00:05:00 Out=01:00:08:12 (clip_tc=01:00:00:00, file_rel=5.0s)",
            "LOG:Seg 1: seq 10.0-12.0s (2.0s) -> In=02:00:10:00 Out=02:00:12:00 (clip_tc=02:00:00:00, file_rel=10.0s)",
            "LOG:Seg 2: seq 20.0-21.0s (1.0s) -> In=02:00:20:00 Out=02:00:21:00 (clip_tc=02:00:00:00, file_rel=20.0s)",
            "LOG:Read 3 clip positions from timeline",
            "LOG:Loaded word-level timestamps for 1 segments",
            "LOG:Seg 0: dur=3.50s, emitted=3.50s, words=0, running=3.50s",
            "LOG:Seg 1: dur=2.00s, emitted=2.00s, words=1, running=5.50s",
            "LOG:Seg 2: no translation, blank spacer 1.00s",
            "LOG:SRT lines=16, sub_count=2",
            f"LOG:Wrote SRT cache: {srt} (154 bytes)",
            "LOG:SRT copied to Desktop",
            "LOG:Attempting SRT import: exists=True, count=2",
            "LOG:Added subtitle track",
            f"LOG:ImportMedia returned: [<MediaPoolItem {srt}>]",
            f"LOG:AppendToTimeline returned: [<TimelineItem {srt} 86400-86556>]",
            "LOG:Imported 2 captions to subtitle track",
            "LOG:Added 2 subtitle markers (Cyan) to timeline",
            "LOG:Generated 2 subtitle cards",
            "SUCCESS:3/3 clips appended",
        ], outcome.lines)
        self.assertEqual(
            "1\n00:00:00,000 --> 00:00:03,500\none two three\n\n2\n00:00:03,500 --> 00:00:04,000\n \n\n"
            "3\n00:00:04,000 --> 00:00:05,500\nfour\n\n4\n00:00:05,500 --> 00:00:06,500\n \n",
            (self.home / "Desktop/Zuvo_subtitles.srt").read_text())

    def test_the_chapter_marker_of_a_segment_comes_before_its_cards(self) -> None:
        self.well_built()
        self.assertEqual([
            (0, "Orange", "One", "one two three", 84), (84, "Green", "Two", "four", 48),
            (0, "Cyan", "", "one two three", 84), (96, "Cyan", "", "four", 36),
        ], [tuple(call["arguments"]) for call in self.calls("AddMarker")])

    def test_the_timeline_is_the_current_one_and_holds_the_cuts(self) -> None:
        self.well_built()
        self.assertEqual(self.timeline_after()["name"], self.world_after()["currentTimeline"])
        self.assertEqual([{"clip": "/f/A.wav", "start": 86400, "end": 86484},
                          {"clip": "/f/B.wav", "start": 86484, "end": 86532},
                          {"clip": "/f/B.wav", "start": 86532, "end": 86556}], self.audio_items_after())

    def test_the_host_s_name_and_signs_of_any_kind_arrive(self) -> None:
        for name in ('Zuvo "Build" — 6:24 AM', "été 🎬", "__SEGMENTS_PATH__", "{name}"):
            self.world = {}
            self.build(name)
            self.assertTrue(self.timeline_after()["name"].startswith(name + " — "), self.timeline_after()["name"])


class FatalEnds(FinalBuildTest):
    def test_a_resolve_that_does_not_run(self) -> None:
        self.world["running"] = False
        outcome = self.build()
        self.assertEqual("ERROR:Resolve not connected\n", outcome.stdout)
        self.then_ended_well(outcome)

    def test_a_timeline_that_cannot_be_made(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 2))
        self.given_failure("CreateEmptyTimeline", gives=None)
        outcome = self.build()
        self.then_ended_well(outcome)
        self.assertEqual("ERROR:Could not create timeline — try deleting existing Zuvo Build timelines in Resolve",
                         outcome.lines[-1])
        self.assertEqual((2, []), (len(self.calls("CreateEmptyTimeline")), self.calls("AppendToTimeline")))

    def then_broke(self, outcome: Outcome, error: str, last_line: str | None) -> None:
        """An unforeseen failure: a traceback on standard error behind the lines that were printed before."""
        self.assertEqual(1, outcome.status)
        self.assertIn("Traceback", outcome.stderr)
        self.assertIn(error, outcome.stderr)
        self.assertEqual([], outcome.starting_with("ERROR:") + outcome.starting_with("SUCCESS:"))
        self.assertEqual(last_line, outcome.lines[-1] if outcome.lines else None)

    def test_a_missing_module_is_a_traceback_without_a_line(self) -> None:
        environment = self.environment()
        del environment["PYTHONPATH"]
        program = filled("final_build", TIMELINE_NAME="Cut", SEGMENTS_PATH="")
        self.then_broke(self.run_program(program, environment), "No module named 'DaVinciResolveScript'", None)

    def test_no_open_project_is_a_traceback_without_a_line(self) -> None:
        self.world["project"] = None
        self.then_broke(self.build(), "AttributeError", None)

    def test_a_missing_segments_file_is_a_traceback(self) -> None:
        self.then_broke(self.build(), "FileNotFoundError", "LOG:Using default fps=24.0")

    def test_a_segments_file_that_is_no_list_is_a_traceback(self) -> None:
        self.given_json("segments.json", None)
        self.then_broke(self.build(), "TypeError", "LOG:Using default fps=24.0")

    def test_a_probe_file_that_is_no_json_is_a_traceback(self) -> None:
        self.given_segments()
        (self.cache / "probe_results.json").write_text("{")
        self.then_broke(self.build(), "JSONDecodeError", "LOG:Loaded 0 segments")

    def test_an_exception_in_the_middle_leaves_the_lines_before_it(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 2), segment(3, 4))
        self.given_failure("AppendToTimeline", call=2, raises="Resolve closed")
        self.then_broke(self.build(), "RuntimeError: Resolve closed",
                        "LOG:Seg 1: seq 3.0-4.0s (1.0s) -> In=00:00:03:00 Out=00:00:04:00 "
                        "(clip_tc=00:00:00:00, file_rel=3.0s)")

    def test_a_segment_without_a_start_is_a_traceback_behind_the_ones_before(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 2), {**segment(3, 4), "startTime": None})
        outcome = self.build()
        self.then_broke(outcome, "TypeError", "LOG:Seg 0: seq 1.0-2.0s (1.0s) -> In=00:00:01:00 Out=00:00:02:00 "
                                              "(clip_tc=00:00:00:00, file_rel=1.0s)")
        self.assertEqual(1, len(self.audio_items_after()))


class Naming(FinalBuildTest):
    TWICE = re.compile(r"Zuvo Build — 6:24 AM — (0[1-9]|1[0-2]):[0-5]\d [AP]M")
    SECONDS = re.compile(r"Zuvo Build — 6:24 AM — (0[1-9]|1[0-2]):[0-5]\d:[0-5]\d [AP]M")

    def setUp(self) -> None:
        super().setUp()
        self.given_segments()

    def test_the_name_holds_the_time_twice(self) -> None:
        outcome = self.build("Zuvo Build — 6:24 AM")
        name = self.timeline_after()["name"]
        self.assertTrue(self.TWICE.fullmatch(name), name)
        self.assertIn(f"LOG:Created timeline: {name}", outcome.lines)

    def test_a_second_build_within_the_minute_gets_the_name_with_seconds(self) -> None:
        self.given_failure("CreateEmptyTimeline", call=1, gives=None)
        outcome = self.build("Zuvo Build — 6:24 AM")
        tried = [call["arguments"][0] for call in self.calls("CreateEmptyTimeline")]
        self.assertEqual(2, len(tried))
        self.assertTrue(self.TWICE.fullmatch(tried[0]), tried)
        self.assertTrue(self.SECONDS.fullmatch(tried[1]), tried)
        self.assertIn(f"LOG:Created timeline: {tried[1]}", outcome.lines)
        self.assertEqual(tried[1], self.world_after()["currentTimeline"])

    def test_two_builds_in_a_row_make_two_timelines(self) -> None:
        self.build()
        self.build()
        names = [timeline["name"] for timeline in self.world_after()["timelines"]]
        self.assertEqual(2, len(set(names)))


class Cutting(FinalBuildTest):
    def test_in_and_out_are_absolute_and_cut_off(self) -> None:
        self.given_clips(clip("/f/A.wav", 4000, Start_TC="23:59:58:12"))
        self.given_segments(segment(1.75, 3599.99))
        # 86398.5 s + 1.75 s = 86400.25 s; 24 hours are not folded. 0.49 s are 11.76 frames.
        self.assertIn("In=24:00:00:06 Out=24:59:58:11 (clip_tc=23:59:58:12, file_rel=1.8s)",
                      self.well_built().starting_with("LOG:Seg 0: seq")[0])
        self.assertEqual([("/f/A.wav", "24:00:00:06", "24:59:58:11")], self.cuts())

    def test_a_clip_without_a_start_timecode_starts_at_zero(self) -> None:
        for start in (None, "", "01:00:00", "00:00:00:00"):
            self.world = {}
            self.given_clips(clip("/f/A.wav", Start_TC=start))
            self.given_segments(segment(1, 2))
            outcome = self.well_built()
            told = start or "00:00:00:00"
            self.assertIn(f"In=00:00:01:00 Out=00:00:02:00 (clip_tc={told}, file_rel=1.0s)",
                          outcome.starting_with("LOG:Seg 0: seq")[0])

    def test_the_properties_are_read_again_for_each_segment(self) -> None:
        self.given_clips(clip("/f/A.wav", 100))
        self.given_segments(segment(1, 2), segment(3, 4))
        self.given_failure("GetClipProperty", call=3, gives={"Start TC": "00:00:10:00"})
        outcome = self.well_built()
        self.assertEqual(["00:00:00:00", "00:00:10:00"],
                         [re.search("clip_tc=(.*),", line).group(1) for line in outcome.starting_with("LOG:Seg")[:2]])

    def test_the_whole_item_is_appended(self) -> None:
        self.given_clips(clip("/f/A.wav", 100))
        self.given_segments(segment(1, 2))
        self.well_built()
        self.assertEqual([["<MediaPoolItem /f/A.wav>"]], self.calls("AppendToTimeline")[0]["arguments"])

    def test_an_append_that_fails_is_told_and_not_counted(self) -> None:
        self.given_clips(clip("/f/A.wav", 100))
        self.given_segments(segment(1, 2), segment(3, 4), segment(5, 6))
        self.given_failure("AppendToTimeline", call=2, gives=[])
        outcome = self.well_built()
        self.assertEqual(["LOG:WARN: AppendToTimeline returned falsy for seg 1"], outcome.starting_with("LOG:WARN"))
        self.assertEqual("SUCCESS:2/3 clips appended", outcome.lines[-1])


class Restoring(FinalBuildTest):
    def marks(self) -> dict[str, tuple[str, str]]:
        clips = self.world_after()["mediaPool"]["clips"]
        return {each["Clip Name"]: (each["In"], each["Out"]) for each in clips if each["Type"] == "Audio"}

    def test_every_source_clip_is_whole_again(self) -> None:
        self.given_clips(clip("/f/A.wav", 100, Start_TC="10:00:00:00"), clip("/f/B.wav", 90, End_TC=None),
                         clip("/f/C.wav", 30))
        self.given_segments(segment(1, 2))
        self.well_built()
        self.assertEqual({"A.wav": ("10:00:00:00", "10:01:40:00"), "B.wav": ("00:00:00:00", "01:00:00:00"),
                          "C.wav": ("", "")}, self.marks())

    def test_exceptions_are_ignored_one_by_one(self) -> None:
        self.given_clips(clip("/f/A.wav", 100), clip("/f/B.wav", 90))
        self.given_segments(segment(1, 2))
        # The first two calls cut the segment; the third would give A.wav its In back.
        self.given_failure("SetClipProperty", call=3, raises="locked")
        self.assertEqual("SUCCESS:1/1 clips appended", self.well_built().lines[-1])
        self.assertEqual({"A.wav": ("00:00:01:00", "00:01:40:00"), "B.wav": ("00:00:00:00", "00:01:30:00")},
                         self.marks())


class ReadingBack(FinalBuildTest):
    def test_at_25_frames_positions_are_shifted_by_the_true_start(self) -> None:
        self.world.update(frameRate="25", timelines=[{"name": "Old"}], currentTimeline="Old")
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 3, chapter="One", translation="text"))
        outcome = self.well_built()
        # The timeline starts at frame 90000: (90000 - 86400) / 25 = 144 s.
        self.assertEqual([(3600, "Orange", "One", "text", 50)], self.chapter_markers())
        self.assertIn("LOG:Seg 0: dur=2.00s, emitted=2.00s, words=0, running=2.00s", outcome.lines)

    def test_a_timeline_that_starts_elsewhere_is_shifted_too(self) -> None:
        self.world["startTimecode"] = "00:00:00:00"
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 3, chapter="One", translation="text"))
        self.well_built()
        self.assertEqual([(-86400, "Orange", "One", "text", 48)], self.chapter_markers())
        self.assertEqual({}, self.timeline_after()["markers"])

    def test_behind_a_missing_clip_items_pair_with_the_wrong_segments(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 2, chapter="One", translation="one"),
                            segment(3, 5, chapter="Two", translation="two"),
                            segment(6, 9, chapter="Three", translation="three"))
        self.given_failure("AppendToTimeline", call=1, gives=[])
        outcome = self.well_built()
        self.assertIn("LOG:Read 2 clip positions from timeline", outcome.lines)
        self.assertEqual([(0, "Orange", "One", "one", 48), (48, "Green", "Two", "two", 72)], self.chapter_markers())

    def test_a_track_that_gives_no_items_gives_no_positions(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 2, chapter="One", translation="one"))
        self.given_failure("GetItemListInTrack", gives=None)
        outcome = self.well_built()
        self.assertIn("LOG:Read 0 clip positions from timeline", outcome.lines)
        self.assertEqual("SUCCESS:1/1 clips appended", outcome.lines[-1])
        self.assertEqual([], self.calls("AddMarker"))

    def test_items_beyond_the_segments_are_passed_over(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 2, translation="one"))
        everything_twice = ("from fake_resolve.timeline import Timeline\nplace = Timeline._append\n"
                            "Timeline._append = lambda *range: place(*range) + place(*range)\n")
        program = filled("final_build", TIMELINE_NAME="Cut", SEGMENTS_PATH=str(self.cache / "segments.json"))
        outcome = self.run_program(everything_twice + program)
        self.then_ended_well(outcome)
        self.assertIn("LOG:Read 1 clip positions from timeline", outcome.lines)
        self.assertEqual(2, len(self.audio_items_after()))

    def test_a_null_translation_or_chapter_is_an_empty_one(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        without = segment(3, 4)
        del without["translation"], without["chapter"]
        self.given_segments({**segment(1, 2, chapter="One"), "translation": None}, without)
        outcome = self.well_built()
        self.assertEqual(2, len([line for line in outcome.lines if "no translation" in line]))
        self.assertEqual([(0, "Orange", "One", "", 24)], self.chapter_markers())


class ChapterMarkers(FinalBuildTest):
    def given_chapters(self, *chapters: str | None) -> None:
        """Segments of one second each."""
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(*[segment(i, i + 1, chapter=chapter) for i, chapter in enumerate(chapters)])

    def test_a_marker_stands_wherever_the_chapter_changes(self) -> None:
        self.given_chapters(None, "One", "One", "Two", None, "Two", "One", "")
        self.well_built()
        self.assertEqual([(24, "Orange", "One", "", 24), (72, "Green", "Two", "", 24), (144, "Purple", "One", "", 24)],
                         self.chapter_markers())

    def test_ten_colours_go_round(self) -> None:
        self.given_chapters(*[f"Chapter {i}" for i in range(12)])
        self.well_built()
        self.assertEqual(["Orange", "Green", "Purple", "Red", "Cream", "Cyan", "Lavender", "Yellow", "Pink", "Blue",
                          "Orange", "Green"], [marker[1] for marker in self.chapter_markers()])

    def test_the_note_holds_50_characters_of_the_translation(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(0, 2, chapter="One", translation="é" * 51))
        self.well_built()
        self.assertEqual("é" * 50, self.chapter_markers()[0][3])

    def test_a_marker_is_at_least_one_frame_long(self) -> None:
        self.given_clips(clip("/f/A.wav", FPS=23.976))
        self.given_segments(segment(1.0, 1.05, chapter="One"))
        self.well_built()
        # One frame at 24, the timeline's rate, is less than one of 23.976.
        self.assertEqual([(0, "Orange", "One", "", 1)], self.chapter_markers())

    def test_one_that_fails_stops_nothing_and_its_colour_is_used_up(self) -> None:
        self.given_chapters("One", "Two")
        self.given_failure("AddMarker", call=1, raises="no")
        self.assertEqual("SUCCESS:2/2 clips appended", self.well_built().lines[-1])
        self.assertEqual([(24, "Green")], [(int(frame), marker["color"]) for frame, marker in
                                           self.timeline_after()["markers"].items()])


if __name__ == "__main__":
    unittest.main()
