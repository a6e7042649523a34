"""The final timeline build: which clips it finds, where they lie in the transcript, which one a moment is cut from."""

import re
import unittest

from final_build_fixture import FinalBuildTest
from script_fixture import clip, segment


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


if __name__ == "__main__":
    unittest.main()
