"""The final timeline build: clips cut by In and Out, positions read back, chapters and subtitles laid over them."""

import re
import unittest

from script_fixture import Outcome, ScriptTest, clip, filled, segment


class FinalBuildTest(ScriptTest):
    def setUp(self) -> None:
        super().setUp()
        (self.home / "Desktop").mkdir()

    def given_probe(self, **probes: dict | None) -> None:
        """Probe results of {name}.wav, with a path unless told otherwise."""
        self.given_json("probe_results.json", {
            f"{name}.wav": None if probe is None else {"path": f"/f/{name}.wav", **probe}
            for name, probe in probes.items()})

    def build(self, timeline: str = "Cut") -> Outcome:
        return self.run_script("final_build", timeline)

    def well_built(self) -> Outcome:
        outcome = self.build()
        self.then_ended_well(outcome)
        self.assertEqual([], outcome.starting_with("ERROR:"), outcome.stdout)
        self.assertTrue(outcome.lines[-1].startswith("SUCCESS:"), outcome.stdout)
        return outcome

    def cuts(self) -> list[tuple[str, str, str]]:
        """(clip, In, Out) of each attempt to append a clip."""
        found = []
        marks = {}
        for call in self.all_calls():
            if call["method"] == "SetClipProperty":
                marks[call["object"], call["arguments"][0]] = call["arguments"][1]
            elif call["method"] == "AppendToTimeline" and ".srt" not in call["arguments"][0][0]:
                [label] = call["arguments"][0]
                name = label.removeprefix("<MediaPoolItem ").removesuffix(">")
                found.append((name, marks[label, "In"], marks[label, "Out"]))
        return found

    def chapter_markers(self) -> list[tuple]:
        arguments = [tuple(call["arguments"]) for call in self.calls("AddMarker")]
        return [each for each in arguments if each[2]]


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


class FrameRate(FinalBuildTest):
    def test_without_a_current_timeline_it_is_24(self) -> None:
        self.given_segments()
        self.assertEqual("LOG:Using default fps=24.0", self.well_built().lines[0])

    def test_it_is_the_current_timeline_s(self) -> None:
        self.given_segments()
        for rate, told in (("25", "25.0"), (29.97, "29.97"), ("23.976", "23.976"), ("", "24.0"), (None, "24.0")):
            self.world = {"timelines": [{"name": "Old", "frameRate": rate}], "currentTimeline": "Old"}
            self.assertEqual("LOG:Using default fps=" + told, self.well_built().lines[0])

    def test_a_matched_clip_s_own_rate_follows_if_it_can_be_read(self) -> None:
        self.given_probe(**{name: {} for name in "ABCDEFGH"})
        self.given_clips(clip("/f/A.wav", FPS="25"), clip("/f/B.wav", FPS=""), clip("/f/C.wav", FPS="n/a"),
                         clip("/f/D.wav", FPS="nan"), clip("/f/E.wav", FPS=None), clip("/f/F.wav", FPS=50),
                         clip("/f/G.wav", FPS="inf"), clip("/f/H.wav", FPS="0"))
        self.given_segments(segment(1, 1.5))
        outcome = self.well_built()
        self.assertEqual(["LOG:Clip fps=25.0", "LOG:Clip fps=50.0"], outcome.starting_with("LOG:Clip fps"))
        self.assertIn("In=00:00:01:00 Out=00:00:01:25", outcome.starting_with("LOG:Seg 0: seq")[0])

    def test_the_probe_s_rate_is_last_and_that_of_the_last_file_by_name(self) -> None:
        self.given_probe(A={"fps": 60.0, "startTimecodeSeconds": 9.0}, B={"fps": 30.0, "startTimecodeSeconds": 1.0},
                         C={"fps": None}, D={"fps": 0})
        self.given_clips(*[clip(f"/f/{name}.wav", FPS="25") for name in "ABCD"])
        # Three clips of two minutes come before A.wav.
        self.given_segments(segment(361, 361.5, "A.wav"))
        outcome = self.well_built()
        self.assertIn("In=00:00:01:00 Out=00:00:01:15", outcome.starting_with("LOG:Seg 0: seq")[0])

    def test_clips_that_were_not_matched_by_name_set_it_without_a_line(self) -> None:
        self.given_clips(clip("/f/A.wav", FPS="25"), clip("/f/B.wav", 30, FPS="50"))
        self.given_segments(segment(1, 1.5))
        outcome = self.well_built()
        self.assertEqual([], outcome.starting_with("LOG:Clip fps"))
        self.assertIn("Out=00:00:01:12", outcome.starting_with("LOG:Seg 0: seq")[0])


class MatchingClips(FinalBuildTest):
    def found(self) -> list[str]:
        self.given_segments()
        lines = self.well_built().lines
        end = next(i for i, line in enumerate(lines) if line.startswith("LOG:Created timeline"))
        return [line for line in lines[2:end] if not line.startswith("LOG:Clip fps")]

    def test_clips_match_by_the_base_names_of_the_probed_paths(self) -> None:
        self.given_probe(A={"path": "/elsewhere/a.wav"}, B={"path": None}, C=None)
        self.given_clips(clip("/f/A.wav"), clip("/g/a.wav", 20), clip("", 20), clip("/f/C.wav"))
        self.assertEqual(["LOG:Loaded probe data for 3 files", "LOG:Matched 1 source clips",
                          "LOG:a.wav: duration=20s, transcript=0-20s"], self.found())

    def test_of_several_clips_of_one_name_the_last_is_taken(self) -> None:
        self.given_probe(A={})
        self.world["mediaPool"] = {"clips": [clip("/g/A.wav", 20)], "folders": [{"clips": [clip("/f/A.wav", 30)]}]}
        self.assertEqual(["LOG:Matched 1 source clips", "LOG:A.wav: duration=30s, transcript=0-30s"], self.found()[1:])

    def test_without_probe_data_audio_clips_are_looked_for(self) -> None:
        self.given_clips(clip("/f/B.wav"), clip("/f/A.wav", 90))
        self.assertEqual([
            "LOG:No probe cache found, using media pool discovery",
            "LOG:Matched 0 source clips",
            "LOG:No exact match — auto-discovering audio clips in media pool...",
            "LOG:Auto-discovered: B.wav (120s)",
            "LOG:Auto-discovered: A.wav (90s)",
            "LOG:Auto-discovered 2 audio clips",
            "LOG:A.wav: transcript 0-90s (90s)",
            "LOG:B.wav: transcript 90-210s (120s)"], self.found())

    def test_with_probe_data_that_matches_nothing_they_are_looked_for_as_well(self) -> None:
        self.given_probe(X={})
        self.given_clips(clip("/f/A.wav", 90))
        self.assertEqual(["LOG:Auto-discovered 1 audio clips", "LOG:A.wav: duration=90s, transcript=0-90s"],
                         self.found()[-2:])

    def test_the_media_pool_is_scanned_depth_first(self) -> None:
        self.world["mediaPool"] = {"clips": [clip("/1.wav")], "folders": [
            {"clips": [clip("/2.wav")], "folders": [{"clips": [clip("/3.wav")]}]},
            {"clips": None, "folders": None},
            {"clips": [clip("/4.wav")]}]}
        self.assertEqual([f"LOG:Auto-discovered: {number}.wav (120s)" for number in (1, 2, 3, 4)], self.found()[3:7])

    def test_a_clip_without_a_match_must_be_longer_than_60_seconds(self) -> None:
        self.given_clips(clip("/60.wav", 60), clip("/frames.wav", Duration="00:01:00:23"), clip("/61.wav", 61))
        self.assertEqual(["LOG:Auto-discovered: 61.wav (61s)", "LOG:Auto-discovered 1 audio clips"], self.found()[3:5])

    def test_a_clip_without_a_match_must_sound_like_a_recording(self) -> None:
        self.given_clips(
            clip("/1.mov", Type="Video"), clip("/2.mov", Type="Video + AUDIO"), clip("/3.WAV", Type=None),
            clip("/4.Mp3", Type=""), clip("/5.aiff", Type="x"), clip("/6.flac", Type="x"), clip("/7.aif", Type="x"))
        self.assertEqual([f"LOG:Auto-discovered: {name} (120s)" for name in
                          ("2.mov", "3.WAV", "4.Mp3", "5.aiff", "6.flac")] + ["LOG:Auto-discovered 5 audio clips"],
                         self.found()[3:9])

    def test_lengths_are_read_with_semicolons_and_with_four_fields_alone(self) -> None:
        self.given_clips(clip("/1.wav", Duration="01:01:01;23"), clip("/2.wav", Duration="10:00:00"),
                         clip("/3.wav", Duration=""), clip("/4.wav", Duration=None))
        self.assertEqual(["LOG:Auto-discovered: 1.wav (3661s)", "LOG:Auto-discovered 1 audio clips"], self.found()[3:5])


class Offsets(FinalBuildTest):
    def offsets(self) -> list[str]:
        self.given_segments()
        lines = self.well_built().lines
        end = next(i for i, line in enumerate(lines) if line.startswith("LOG:Created timeline"))
        start = max(i for i, line in enumerate(lines[:end]) if re.match("LOG:(Matched|Auto-discovered) ", line))
        return lines[start + 1:end]

    def test_with_probe_data_clips_lie_in_recording_order_without_gaps(self) -> None:
        self.given_clips(clip("/f/A.wav"), clip("/f/B.wav"), clip("/f/C.wav"))
        self.given_probe(A={"duration": 100.0, "startTimecodeSeconds": 7200.0},
                         B={"duration": 50.25, "startTimecodeSeconds": 3600.0},
                         C={"duration": 20.0, "startTimecodeSeconds": 7200.0})
        self.assertEqual(["LOG:B.wav: duration=50s, transcript=0-50s", "LOG:A.wav: duration=100s, transcript=50-150s",
                          "LOG:C.wav: duration=20s, transcript=150-170s"], self.offsets())

    def test_a_null_or_missing_value_of_the_probe_is_none(self) -> None:
        self.given_clips(clip("/f/A.wav", 20, Duration="00:00:20:18"), clip("/f/B.wav"), clip("/f/C.wav", 40))
        self.given_probe(A={"duration": None, "startTimecodeSeconds": None, "fps": None}, C={"duration": 0},
                         B={"duration": 30.0, "startTimecodeSeconds": 0.5})
        self.assertEqual(["LOG:A.wav: duration=21s, transcript=0-21s", "LOG:C.wav: duration=40s, transcript=21-61s",
                          "LOG:B.wav: duration=30s, transcript=61-91s"], self.offsets())

    def test_a_file_that_the_probe_does_not_know_is_as_long_as_its_clip(self) -> None:
        self.given_clips(clip("/f/A.wav"), clip("/f/B.wav", 90))
        self.given_probe(X={"duration": 5.0})
        self.assertEqual(["LOG:A.wav: duration=120s, transcript=0-120s",
                          "LOG:B.wav: duration=90s, transcript=120-210s"], self.offsets())

    def test_with_probe_data_exactly_10_seconds_stay_and_less_is_told(self) -> None:
        self.given_clips(clip("/f/A.wav"), clip("/f/B.wav"))
        self.given_probe(A={"duration": 9.99}, B={"duration": 10.0})
        self.assertEqual(["LOG:Skipping short clip A.wav (10.0s)", "LOG:B.wav: duration=10s, transcript=0-10s"],
                         self.offsets())

    def test_an_empty_probe_file_is_no_probe_data(self) -> None:
        for value in ({}, None):
            self.world = {}
            self.given_clips(clip("/f/A.wav", 90))
            self.given_json("probe_results.json", value)
            self.assertEqual(["LOG:A.wav: transcript 0-90s (90s)"], self.offsets())

    def test_without_probe_data_clips_lie_in_the_order_of_their_names(self) -> None:
        self.given_clips(clip("/g/B.wav", Duration="00:02:00:12"), clip("/h/A.wav", 61, Start_TC="10:00:00:00"))
        self.assertEqual(["LOG:A.wav: transcript 0-61s (61s)", "LOG:B.wav: transcript 61-182s (120s)"], self.offsets())

    def test_without_any_clip_every_segment_is_skipped_and_the_build_a_success(self) -> None:
        for probes in ({}, {"A": {"duration": 100.0}}):
            self.world = {"mediaPool": {"clips": [clip("/f/short.wav", 20)]}}
            self.given_probe(**probes)
            self.given_segments(segment(1, 2, "A.wav", "One", "text"), segment(3, 4), segment(5, 6, "source"))
            outcome = self.well_built()
            self.assertEqual(["LOG:SKIP seg 0: no matching clip for t=1.0s clip=A.wav",
                              "LOG:SKIP seg 1: no matching clip for t=3.0s clip=source",
                              "LOG:SKIP seg 2: no matching clip for t=5.0s clip=source",
                              "LOG:Read 0 clip positions from timeline", "LOG:SRT lines=0, sub_count=0"],
                             outcome.lines[-11:-6])
            self.assertEqual("SUCCESS:0/3 clips appended", outcome.lines[-1])
            self.assertEqual([], self.audio_items_after())
            self.assertEqual(b"", (self.home / "Desktop/Zuvo_subtitles.srt").read_bytes())


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


class ChoosingClips(FinalBuildTest):
    CLIPS = (clip("/f/A.wav", 100), clip("/f/B.mov", 100), clip("/f/C.wav", 100))

    def chosen(self, start: float, source_clip: str | None, clips: tuple[dict, ...] = CLIPS) -> tuple[str, str, str]:
        """Clip, In and Out of a moment of one second."""
        self.world = {}
        self.given_clips(*clips)
        self.given_segments({**segment(start, start + 1), "sourceClip": source_clip})
        self.well_built()
        [cut] = self.cuts()
        return cut

    def test_the_named_clip_is_taken_whatever_the_time(self) -> None:
        clips = (clip("/f/A.wav", 100), clip("/f/B.mov", 300, Start_TC="10:00:00:00"), clip("/f/C.wav", 100))
        self.assertEqual(("/f/B.mov", "10:00:20:00", "10:00:21:00"), self.chosen(120, "B.mov", clips))
        # B.mov lies from 100 s to 400 s, this moment in C.wav.
        self.assertEqual(("/f/B.mov", "10:05:01:00", "10:05:02:00"), self.chosen(401, "B.mov", clips))

    def test_the_name_may_lack_its_extension_or_have_another(self) -> None:
        for name in ("B", "B.wav", "B.mov"):
            self.assertEqual("/f/B.mov", self.chosen(101, name)[0])

    def test_the_first_of_two_clips_that_differ_in_their_extension_is_taken(self) -> None:
        clips = (clip("/f/A.aiff", 100), clip("/f/A.wav", 100))
        self.assertEqual("/f/A.aiff", self.chosen(1, "A.wav", clips)[0])

    def test_a_name_of_another_case_is_another_name(self) -> None:
        self.assertEqual("/f/A.wav", self.chosen(1, "b.mov")[0])

    def test_an_unknown_missing_or_general_name_goes_by_the_time(self) -> None:
        for name in ("X.wav", "source", "", None):
            self.assertEqual(("/f/B.mov", "00:00:01:00", "00:00:02:00"), self.chosen(101, name))

    def test_a_moment_on_the_boundary_belongs_to_the_later_clip(self) -> None:
        self.assertEqual(("/f/B.mov", "00:00:00:00", "00:00:01:00"), self.chosen(100, ""))

    def test_a_moment_behind_all_clips_goes_to_the_last_one(self) -> None:
        self.assertEqual(("/f/C.wav", "00:01:40:00", "00:01:41:00"), self.chosen(300, ""))

    def test_a_segment_without_the_key_goes_by_the_time(self) -> None:
        self.given_clips(*self.CLIPS)
        without = segment(101, 102)
        del without["sourceClip"]
        self.given_segments(without)
        self.well_built()
        self.assertEqual("/f/B.mov", self.cuts()[0][0])


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
