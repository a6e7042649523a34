"""The first timeline build: ranges of frames, clips placed by their recorded timecode."""

import unittest

from script_fixture import Outcome, ScriptTest, clip, filled, quoted_paths, segment


class FirstBuildTest(ScriptTest):
    def build(self, *media_paths: str, timeline: str = "Cut") -> Outcome:
        return self.run_script("first_build", timeline, media_paths)

    def well_built(self, *media_paths: str) -> Outcome:
        outcome = self.build(*media_paths)
        self.then_ended_well(outcome)
        self.assertEqual([], outcome.starting_with("ERROR:"), outcome.stdout)
        self.assertTrue(outcome.lines[-1].startswith("SUCCESS:"), outcome.stdout)
        return outcome

    def ranges(self) -> list[tuple[str, int, int]]:
        """(clip, start frame, end frame) of each attempt to append."""
        found = []
        for call in self.calls("AppendToTimeline"):
            [each] = call["arguments"][0]
            name = each["mediaPoolItem"].removeprefix("<MediaPoolItem ").removesuffix(">")
            found.append((name, each["startFrame"], each["endFrame"]))
        return found

    def markers(self) -> list[tuple]:
        return [tuple(call["arguments"]) for call in self.calls("AddMarker")]


class WholeRun(FirstBuildTest):
    def test_a_whole_build_tells_its_steps_in_order(self) -> None:
        self.world.update(timelines=[{"name": "Old", "frameRate": "25"}], currentTimeline="Old", frameRate="25")
        self.given_clips(clip("/f/B.wav", 100), clip("/f/A.wav", 200))
        self.given_segments(segment(5, 10.5), segment(210, 212))
        outcome = self.well_built("/f/A.wav", "/f/B.wav")
        self.assertEqual([
            "LOG:Loaded 2 segments",
            "LOG:FPS=25.0",
            "LOG:Found 2 clips in media pool",
            "LOG:0/2 source clips matched",
            "LOG:No exact match — scanning media pool for audio clips...",
            "LOG:Auto-matched audio clip: B.wav (100s)",
            "LOG:Auto-matched audio clip: A.wav (200s)",
            "LOG:Timeline created",
            "LOG:Clip A.wav: dur=200s transcript=0-200s fps=25.0",
            "LOG:Clip B.wav: dur=100s transcript=200-300s fps=25.0",
            "LOG:Seg 0: 5.0-10.5s -> frames 125-262",
            "LOG:Seg 1: 210.0-212.0s -> frames 250-300",
            "SUCCESS:2 clips appended, 0 failed",
        ], outcome.lines)
        self.assertEqual("Cut", self.world_after()["currentTimeline"])
        self.assertEqual([{"clip": "/f/A.wav", "start": 90000, "end": 90137},
                          {"clip": "/f/B.wav", "start": 90137, "end": 90187}], self.audio_items_after())

    def test_no_segments_make_a_timeline_without_clips(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments()
        outcome = self.well_built()
        self.assertEqual("LOG:Loaded 0 segments", outcome.lines[0])
        self.assertEqual("SUCCESS:0 clips appended, 0 failed", outcome.lines[-1])
        self.assertEqual([], self.audio_items_after())

    def test_segments_may_lack_their_chapter_or_have_none(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        without = segment(1, 2)
        del without["chapter"]
        self.given_segments(without, segment(2, 3, chapter=None), segment(3, 4, chapter=""))
        self.assertEqual("SUCCESS:3 clips appended, 0 failed", self.well_built().lines[-1])
        self.assertEqual([], self.markers())

    def test_a_name_with_quotes_and_signs_arrives_as_it_is(self) -> None:
        for name in ('The "Cut"', "été — 🎬", "__MEDIA_PATHS__"):
            self.world = {}
            self.given_clips(clip("/f/A.wav"))
            self.given_segments()
            self.build(timeline=name)
            self.assertEqual(name, self.timeline_after()["name"])


class FatalEnds(FirstBuildTest):
    def then_failed(self, outcome: Outcome, reason: str) -> None:
        self.then_ended_well(outcome)
        self.assertEqual(["ERROR:" + reason], outcome.starting_with("ERROR:"))
        self.assertEqual([], outcome.starting_with("SUCCESS:"))

    def test_a_resolve_that_does_not_run(self) -> None:
        self.world["running"] = False
        outcome = self.build()
        self.assertEqual("ERROR:Resolve not connected\n", outcome.stdout)
        self.then_ended_well(outcome)

    def test_no_source_clips_make_no_timeline(self) -> None:
        self.given_clips(clip("/f/A.wav", 60))
        self.given_segments(segment(1, 2))
        self.then_failed(self.build(), "No source clips found in media pool")
        self.assertEqual([], self.world_after()["timelines"])

    def test_a_taken_name_is_not_tried_again(self) -> None:
        self.world["timelines"] = [{"name": "Cut"}]
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 2))
        self.then_failed(self.build(), "Could not create timeline")
        self.assertEqual(1, len(self.calls("CreateEmptyTimeline")))

    def test_an_exception_is_an_error_line_with_the_traceback_behind_it(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 2))
        self.given_failure("GetRootFolder", raises="pool locked")
        outcome = self.build()
        self.then_failed(outcome, "pool locked")
        self.assertEqual(["LOG:Loaded 1 segments", "LOG:FPS=23.976", "ERROR:pool locked",
                          "Traceback (most recent call last):"], outcome.lines[:4])
        self.assertEqual("RuntimeError: pool locked", outcome.lines[-1])

    def test_no_open_project(self) -> None:
        self.world["project"] = None
        self.then_failed(self.build(), "'NoneType' object has no attribute 'GetMediaPool'")

    def test_a_missing_segments_file(self) -> None:
        [error] = self.build().starting_with("ERROR:")
        self.assertIn("segments.json", error)

    def test_a_segments_file_that_is_no_json(self) -> None:
        (self.cache / "segments.json").write_text("[{")
        outcome = self.build()
        self.then_ended_well(outcome)
        self.assertTrue(outcome.lines[0].startswith("ERROR:"), outcome.stdout)

    def test_a_segment_without_times_leaves_an_error_behind_what_was_done(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 2), {**segment(2, 3), "startTime": None})
        outcome = self.build()
        self.then_ended_well(outcome)
        self.assertEqual(1, len(outcome.starting_with("ERROR:")))
        self.assertEqual(1, len(self.audio_items_after()))


class FrameRate(FirstBuildTest):
    def told(self) -> str:
        self.given_segments()
        self.given_clips(clip("/f/A.wav"))
        return self.well_built().starting_with("LOG:FPS=")[0]

    def test_without_a_current_timeline_it_is_23_976(self) -> None:
        self.assertEqual("LOG:FPS=23.976", self.told())

    def test_it_is_the_current_timeline_s(self) -> None:
        for rate, told in (("25", "25.0"), (29.97, "29.97"), (50, "50.0"), ("", "23.976"), (None, "23.976")):
            self.world = {"timelines": [{"name": "Old", "frameRate": rate}], "currentTimeline": "Old"}
            self.assertEqual("LOG:FPS=" + told, self.told())

    def test_without_probe_data_the_last_clip_s_rate_holds(self) -> None:
        self.given_clips(clip("/f/A.wav", 100, FPS="25"), clip("/f/B.wav", 100, FPS="50"),
                         clip("/f/C.wav", 100, FPS=""))
        self.given_segments(segment(1, 2))
        outcome = self.well_built()
        self.assertEqual(["LOG:Clip A.wav: dur=100s transcript=0-100s fps=25.0",
                          "LOG:Clip B.wav: dur=100s transcript=100-200s fps=50.0",
                          "LOG:Clip C.wav: dur=100s transcript=200-300s fps=50.0"], outcome.starting_with("LOG:Clip"))
        self.assertEqual([("/f/A.wav", 50, 100)], self.ranges())

    def test_with_probe_data_the_last_file_s_rate_by_name_holds(self) -> None:
        self.given_clips(clip("/f/A.wav"), clip("/f/B.wav"), clip("/f/C.wav"))
        self.given_json("probe_results.json", {
            "C.wav": {"duration": 0, "fps": 50.0, "startTimecodeSeconds": 900.0},
            "B.wav": {"duration": 100.0, "fps": 30.0, "startTimecodeSeconds": 0},
            "A.wav": {"duration": 100.0, "fps": 25.0, "startTimecodeSeconds": 500.0}})
        self.given_segments(segment(1, 2))
        self.well_built()
        # C.wav has no length and so no say; B.wav comes behind A.wav by name, though it was recorded first.
        self.assertEqual([("/f/B.wav", 30, 60)], self.ranges())


class MatchingClips(FirstBuildTest):
    def found(self, *media_paths: str) -> list[str]:
        self.given_segments()
        outcome = self.build(*media_paths)
        self.then_ended_well(outcome)
        return outcome.lines[2:outcome.lines.index("LOG:Timeline created")]

    def test_the_quotes_around_the_paths_keep_real_files_from_matching(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.assertEqual(["LOG:Found 1 clips in media pool", "LOG:0/1 source clips matched",
                          "LOG:No exact match — scanning media pool for audio clips...",
                          "LOG:Auto-matched audio clip: A.wav (120s)"], self.found("/f/A.wav"))

    def test_a_file_whose_name_ends_in_a_quote_does_match(self) -> None:
        self.given_clips(clip("/g/A.wav'", 20, id="first"), clip("/f/A.wav'", 20, id="second"), clip("/f/B.wav", 90))
        self.assertEqual(["LOG:Found 3 clips in media pool", "LOG:Matched: A.wav'", "LOG:1/2 source clips matched"],
                         self.found("/f/B.wav", "/f/A.wav"))

    def test_the_first_scanned_clip_of_a_matched_name_is_taken(self) -> None:
        self.given_clips(clip("/g/A.wav'", 20, id="first"), clip("/f/A.wav'", 20, id="second"))
        self.given_segments(segment(1, 2))
        self.well_built("/f/A.wav")
        self.assertEqual(["first"], [name for name, _, _ in self.ranges()])

    def test_matches_are_told_in_the_order_of_the_paths(self) -> None:
        self.given_clips(clip("/f/A.wav'", 20), clip("/f/B.wav'", 20))
        self.assertEqual(["LOG:Matched: B.wav'", "LOG:Matched: A.wav'", "LOG:2/2 source clips matched"],
                         self.found("/f/B.wav", "/f/A.wav")[1:])

    def test_the_media_pool_is_scanned_depth_first(self) -> None:
        self.world["mediaPool"] = {"clips": [clip("/1.wav")], "folders": [
            {"clips": [clip("/2.wav")], "folders": [{"clips": [clip("/3.wav")]}]},
            {"clips": None, "folders": None},
            {"clips": [clip("/4.wav")]}]}
        self.assertEqual([f"LOG:Auto-matched audio clip: {number}.wav (120s)" for number in (1, 2, 3, 4)],
                         self.found()[-4:])

    def test_a_clip_without_a_match_must_be_longer_than_60_seconds(self) -> None:
        self.given_clips(clip("/sixty.wav", 60), clip("/frames.wav", Duration="00:01:00:23"), clip("/more.wav", 61))
        self.assertEqual("LOG:Auto-matched audio clip: more.wav (61s)", self.found()[-1])
        self.assertEqual(1, len(self.calls("SetCurrentTimeline")))

    def test_a_clip_without_a_match_must_sound_like_a_recording(self) -> None:
        self.given_clips(
            clip("/1.mov", Type="Video"), clip("/2.mov", Type="Video + AUDIO"), clip("/3.WAV", Type=None),
            clip("/4.Mp3", Type=""), clip("/5.aiff", Type="x"), clip("/6.flac", Type="x"), clip("/7.aif", Type="x"),
            clip("/8.wav.txt", Type="Still"))
        self.assertEqual([f"LOG:Auto-matched audio clip: {name} (120s)" for name in
                          ("2.mov", "3.WAV", "4.Mp3", "5.aiff", "6.flac")], self.found()[3:])

    def test_lengths_are_read_with_semicolons_and_with_four_fields_alone(self) -> None:
        self.given_clips(clip("/1.wav", Duration="01:01:01;29"), clip("/2.wav", Duration="10:00:00"),
                         clip("/3.wav", Duration=""), clip("/4.wav", Duration=None),
                         clip("/5.wav", Duration="1:2:3:4:5"))
        self.assertEqual(["LOG:Auto-matched audio clip: 1.wav (3661s)"], self.found()[3:])

    def test_of_several_clips_of_one_name_without_a_match_the_last_is_taken(self) -> None:
        self.given_clips(clip("/g/A.wav", id="first"), clip("/f/A.wav", id="second"))
        self.given_segments(segment(1, 2))
        outcome = self.well_built()
        self.assertEqual(2, len(outcome.starting_with("LOG:Auto-matched")))
        self.assertEqual(["second"], [name for name, _, _ in self.ranges()])


class Offsets(FirstBuildTest):
    def given_probe(self, **probes: dict) -> None:
        self.given_json("probe_results.json", {f"{name}.wav": probe for name, probe in probes.items()})

    def test_with_probe_data_the_gaps_between_recordings_stay(self) -> None:
        self.given_clips(clip("/f/A.wav"), clip("/f/B.wav"))
        self.given_probe(A={"duration": 100.0, "startTimecodeSeconds": 7200.0},
                         B={"duration": 50.4, "startTimecodeSeconds": 3600.25})
        self.given_segments(segment(3599.75, 3600.75), segment(10, 11), segment(60, 61))
        outcome = self.well_built()
        self.assertEqual(["LOG:Loaded probe data for 2 files",
                          "LOG:B.wav: TC=3600s, dur=50s, transcript=0-50s",
                          "LOG:A.wav: TC=7200s, dur=100s, transcript=3600-3700s"],
                         outcome.lines[outcome.lines.index("LOG:Timeline created") + 1:][:3])
        # 23.976 frames a second. The first moment starts with A.wav; the last lies in the gap and falls to A.wav, the
        # last clip: (60 - 3599.75) * 23.976 = -84869.046.
        self.assertEqual([("/f/A.wav", 0, 23), ("/f/B.wav", 239, 263), ("/f/A.wav", -84869, -84845)], self.ranges())

    def test_a_file_that_the_probe_does_not_know_or_has_no_length_for_counts_300_seconds(self) -> None:
        self.given_clips(clip("/f/A.wav"), clip("/f/B.wav"), clip("/f/C.wav"), clip("/f/D.wav"))
        self.given_probe(A={"duration": 0, "startTimecodeSeconds": 1000}, B={"duration": None, "fps": None,
                         "startTimecodeSeconds": None}, C=None)
        self.given_segments()
        self.assertEqual([
            "LOG:B.wav: TC=0s, dur=300s, transcript=0-300s", "LOG:C.wav: TC=0s, dur=300s, transcript=0-300s",
            "LOG:D.wav: TC=0s, dur=300s, transcript=0-300s", "LOG:A.wav: TC=1000s, dur=300s, transcript=1000-1300s",
        ], self.well_built().lines[-5:-1])

    def test_any_probed_length_above_zero_counts_and_lets_the_file_s_rate_hold(self) -> None:
        self.given_clips(clip("/f/A.wav"), clip("/f/B.wav"))
        self.given_probe(A={"duration": 0.5, "fps": 50.0}, B={"duration": 100.0})
        self.given_segments(segment(1, 2))
        self.assertEqual([], self.well_built().starting_with("LOG:A.wav"))
        self.assertEqual([("/f/B.wav", 50, 100)], self.ranges())

    def test_a_probed_length_of_exactly_10_seconds_stays_and_less_goes_silently(self) -> None:
        self.given_clips(clip("/f/A.wav"), clip("/f/B.wav"))
        self.given_probe(A={"duration": 9.99, "startTimecodeSeconds": 5}, B={"duration": 10.0,
                                                                            "startTimecodeSeconds": 20})
        self.given_segments()
        # The short clip still sets the beginning.
        self.assertEqual(["LOG:Loaded probe data for 2 files", "LOG:B.wav: TC=20s, dur=10s, transcript=15-25s"],
                         self.well_built().lines[-3:-1])

    def test_without_probe_data_short_clips_are_told_and_left_out(self) -> None:
        # Clips of less than 60 seconds are matched by name alone.
        self.given_clips(clip("/f/A.wav'", 9, Duration="00:00:09:12"), clip("/f/B.wav'", 10), clip("/f/C.wav'", 20))
        self.given_segments(segment(10, 11))
        outcome = self.well_built("/f/A.wav", "/f/B.wav", "/f/C.wav")
        self.assertEqual(["LOG:Skipping short clip A.wav' (9.5s)",
                          "LOG:Clip B.wav': dur=10s transcript=0-10s fps=24.0",
                          "LOG:Clip C.wav': dur=20s transcript=10-30s fps=24.0"],
                         outcome.lines[outcome.lines.index("LOG:Timeline created") + 1:][:3])
        # A moment on the boundary belongs to the later clip.
        self.assertEqual([("/f/C.wav'", 0, 24)], self.ranges())

    def test_frames_count_in_a_clip_s_length_without_probe_data(self) -> None:
        self.given_clips(clip("/f/A.wav", Duration="00:01:40;12", FPS="25"), clip("/f/B.wav"))
        self.given_segments(segment(100.49, 101.49))
        self.well_built()
        # 12 frames at 23.976, the rate before the clip's own is taken, are 0.5005 s: the moment is in A.wav still.
        self.assertEqual([("/f/A.wav", 2411, 2435)], self.ranges())

    def test_an_empty_probe_file_is_no_probe_data(self) -> None:
        self.given_segments()
        for value in ({}, None):
            self.world = {}
            self.given_clips(clip("/f/A.wav", 90))
            self.given_json("probe_results.json", value)
            self.assertEqual(["LOG:Loaded probe data for 0 files", "LOG:Clip A.wav: dur=90s transcript=0-90s fps=24.0"],
                             self.well_built().lines[-3:-1])

    def test_without_any_offset_the_first_clip_serves_for_all(self) -> None:
        self.given_clips(clip("/f/B.wav'", 5), clip("/f/A.wav'", 5))
        self.given_segments(segment(2, 3), segment(4000, 4001))
        outcome = self.well_built("/f/B.wav", "/f/A.wav")
        self.assertIn("LOG:Warning: using fallback single-clip mode", outcome.lines)
        # Its frames are the moments' own times, at 23.976.
        self.assertEqual([("/f/B.wav'", 47, 71), ("/f/B.wav'", 95904, 95927)], self.ranges())


class Appending(FirstBuildTest):
    def setUp(self) -> None:
        super().setUp()
        self.given_clips(clip("/f/A.wav", 100), clip("/f/B.wav", 100))

    def test_the_source_clip_of_a_segment_is_not_looked_at(self) -> None:
        self.given_segments(segment(1, 2, "B.wav"))
        self.well_built()
        self.assertEqual([("/f/A.wav", 24, 48)], self.ranges())

    def test_frames_count_from_the_start_of_the_file_whatever_its_timecode(self) -> None:
        self.given_clips(clip("/f/A.wav", 100, Start_TC="10:00:00:00"))
        self.given_segments(segment(1, 2))
        self.well_built()
        self.assertEqual([("/f/A.wav", 24, 48)], self.ranges())
        self.assertEqual([], self.calls("SetClipProperty"))

    def test_a_moment_behind_all_clips_is_placed_against_the_last_one(self) -> None:
        self.given_segments(segment(200, 201))
        self.assertEqual("SUCCESS:0 clips appended, 1 failed", self.well_built().lines[-1])
        self.assertEqual([("/f/B.wav", 2400, 2424)], self.ranges())

    def test_only_the_first_three_moments_are_told(self) -> None:
        self.given_segments(*[segment(i, i + 1) for i in range(5)])
        self.assertEqual([f"LOG:Seg {i}: {i}.0-{i + 1}.0s -> frames {24 * i}-{24 * i + 24}" for i in range(3)],
                         self.well_built().starting_with("LOG:Seg"))

    def test_failures_are_counted_and_the_first_three_told(self) -> None:
        self.given_segments(*[segment(i, i + 1) for i in range(8)])
        for call in (3, 4, 6, 7, 8):
            self.given_failure("AppendToTimeline", call=call, gives=[])
        outcome = self.well_built()
        self.assertEqual(["LOG:Failed seg 2: 2.0-3.0s (frames 48-72)", "LOG:Failed seg 3: 3.0-4.0s (frames 72-96)",
                          "LOG:Failed seg 5: 5.0-6.0s (frames 120-144)"], outcome.starting_with("LOG:Failed"))
        self.assertEqual("SUCCESS:3 clips appended, 5 failed", outcome.lines[-1])

    def test_an_exception_is_a_failure_that_is_told_for_the_first_three_moments(self) -> None:
        self.given_segments(*[segment(i, i + 1) for i in range(5)])
        for call in (2, 4):
            self.given_failure("AppendToTimeline", call=call, raises="busy")
        outcome = self.well_built()
        self.assertEqual([
            "LOG:Seg 1: 1.0-2.0s -> frames 24-48", "LOG:Append error seg 1: busy",
            "LOG:Failed seg 1: 1.0-2.0s (frames 24-48)", "LOG:Seg 2: 2.0-3.0s -> frames 48-72",
            "LOG:Failed seg 3: 3.0-4.0s (frames 72-96)", "SUCCESS:3 clips appended, 2 failed"], outcome.lines[-6:])

    def test_nothing_appended_is_a_success_all_the_same(self) -> None:
        self.given_segments(segment(1, 2))
        self.given_failure("AppendToTimeline", gives=None)
        self.assertEqual("SUCCESS:0 clips appended, 1 failed", self.well_built().lines[-1])


class ChapterMarkers(FirstBuildTest):
    def setUp(self) -> None:
        super().setUp()
        self.given_clips(clip("/f/A.wav", 100))

    def given_chapters(self, *chapters: str | None) -> None:
        """Moments of one second each."""
        self.given_segments(*[segment(i, i + 1, chapter=chapter) for i, chapter in enumerate(chapters)])

    def test_every_moment_of_another_chapter_than_the_first_gets_one(self) -> None:
        self.given_chapters("One", "Two", "Two", None, "One", "Three")
        self.well_built()
        self.assertEqual([(24, "Blue", "Two", "", 1), (48, "Blue", "Two", "", 1), (120, "Blue", "Three", "", 1)],
                         self.markers())

    def test_a_first_moment_without_a_chapter_lets_all_others_have_one(self) -> None:
        self.given_chapters(None, "One")
        self.well_built()
        self.assertEqual([(24, "Blue", "One", "", 1)], self.markers())

    def test_they_lie_at_summed_frames_of_all_moments_appended_or_not(self) -> None:
        self.given_segments(segment(1, 2.99, chapter="One"), segment(5, 6.99, chapter="One"),
                            segment(8, 9, chapter="Two"))
        self.given_failure("AppendToTimeline", call=1, gives=[])
        self.well_built()
        # Each 1.99 s are 47.76 frames, cut off to 47 one by one.
        self.assertEqual([(94, "Blue", "Two", "", 1)], self.markers())

    def test_one_that_fails_stops_nothing(self) -> None:
        self.given_chapters("One", "Two", "Three")
        self.given_failure("AddMarker", call=1, raises="no")
        self.assertEqual("SUCCESS:3 clips appended, 0 failed", self.well_built().lines[-1])
        self.assertEqual(["48"], list(self.timeline_after()["markers"]))


class MediaPaths(FirstBuildTest):
    def test_paths_with_quotes_of_both_kinds_are_a_list_still(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments()
        program = filled("first_build", TIMELINE_NAME="Cut", SEGMENTS_PATH=str(self.cache / "segments.json"),
                         MEDIA_PATHS=quoted_paths(['/a "b".wav', "/c'd.wav", "/é 🎬.wav"]))
        self.assertIn("LOG:0/3 source clips matched", self.run_program(program).lines)


if __name__ == "__main__":
    unittest.main()
