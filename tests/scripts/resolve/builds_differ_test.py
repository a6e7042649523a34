"""Where the two timeline builds differ: both run on the same world, row by row."""

import copy
import unittest

from script_fixture import Outcome, ScriptTest, clip, segment


class Built:
    """What one build printed, asked of Resolve and left behind."""

    def __init__(self, test: "BuildsDiffer", name: str) -> None:
        self.outcome: Outcome = test.run_script(name, media_paths=test.media_paths)
        test.then_ended_well(self.outcome)
        self.lines = self.outcome.lines
        self.last_line = self.lines[-1]
        self.calls = test.all_calls()

    def starting_with(self, prefix: str) -> list[str]:
        return self.outcome.starting_with(prefix)

    def arguments(self, method: str) -> list[list]:
        return [call["arguments"] for call in self.calls if call["method"] == method]

    def clips(self) -> list[str]:
        """The media pool items that were appended, whichever way; subtitles left out."""
        pieces = [clips[0] for [clips] in self.arguments("AppendToTimeline")]
        labels = [piece["mediaPoolItem"] if isinstance(piece, dict) else piece for piece in pieces]
        return [label.removeprefix("<MediaPoolItem ").removesuffix(">") for label in labels if ".srt" not in label]


class BuildsDiffer(ScriptTest):
    media_paths: tuple[str, ...] = ("/f/A.wav", "/f/B.wav")

    def given_probe(self, **probes: dict) -> None:
        self.given_json("probe_results.json", {
            f"{name}.wav": {"path": f"/f/{name}.wav", **probe} for name, probe in probes.items()})

    def both(self) -> tuple[Built, Built]:
        """The first and the final build, each on a fresh copy of the world."""
        world = copy.deepcopy(self.world)
        first = Built(self, "first_build")
        self.world = world
        return first, Built(self, "final_build")

    def test_default_frame_rate(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments()
        first, final = self.both()
        self.assertIn("LOG:FPS=23.976", first.lines)
        self.assertIn("LOG:Using default fps=24.0", final.lines)

    def test_where_the_frame_rate_comes_from(self) -> None:
        self.given_segments(segment(1, 1.5))
        for probe, first_frames, final_out in (
                ({"duration": 100.0}, (25, 37), "00:00:01:25"),  # the timeline's 25; the clip's 50
                ({"duration": 100.0, "fps": 30.0}, (30, 45), "00:00:01:15"),  # the probe's for both
                (None, (50, 75), "00:00:01:25")):  # without probe data the clip's for both
            self.world = {"timelines": [{"name": "Old", "frameRate": "25"}], "currentTimeline": "Old"}
            self.given_clips(clip("/f/A.wav", FPS="50"))
            self.given_probe(**({"A": probe} if probe else {}))
            first, final = self.both()
            [[[piece]]] = first.arguments("AppendToTimeline")
            self.assertEqual(first_frames, (piece["startFrame"], piece["endFrame"]))
            self.assertIn(["Out", final_out], final.arguments("SetClipProperty"))

    def test_matching_a_file(self) -> None:
        # Too short to be found without a name to go by.
        self.given_clips(clip("/f/A.wav", 20))
        self.given_probe(A={"duration": 20.0})
        self.given_segments(segment(1, 2))
        first, final = self.both()
        self.assertEqual(("LOG:0/2 source clips matched", "ERROR:No source clips found in media pool"),
                         (first.starting_with("LOG:0/")[0], first.last_line))
        self.assertIn("LOG:Matched 1 source clips", final.lines)
        self.assertEqual("SUCCESS:1/1 clips appended", final.last_line)

    def test_offsets_with_probe_data(self) -> None:
        self.given_clips(clip("/f/A.wav"), clip("/f/B.wav"))
        self.given_probe(A={"duration": 100.0, "startTimecodeSeconds": 3600.0},
                         B={"duration": 100.0, "startTimecodeSeconds": 3900.0})
        self.given_segments()
        first, final = self.both()
        self.assertEqual(["LOG:B.wav: TC=3900s, dur=100s, transcript=300-400s"], first.starting_with("LOG:B.wav"))
        self.assertEqual(["LOG:B.wav: duration=100s, transcript=100-200s"], final.starting_with("LOG:B.wav"))

    def test_length_of_a_file_whose_probe_has_none(self) -> None:
        self.given_clips(clip("/f/A.wav", 90))
        self.given_probe(A={"duration": 0})
        self.given_segments()
        first, final = self.both()
        self.assertEqual(["LOG:A.wav: TC=0s, dur=300s, transcript=0-300s"], first.starting_with("LOG:A.wav"))
        self.assertEqual(["LOG:A.wav: duration=90s, transcript=0-90s"], final.starting_with("LOG:A.wav"))

    def test_choice_of_the_clip(self) -> None:
        self.given_clips(clip("/f/A.wav", 100), clip("/f/B.wav", 100))
        self.given_segments(segment(120, 121, "A.wav"), segment(10, 11, "X.wav"), segment(500, 501))
        first, final = self.both()
        self.assertEqual(["/f/B.wav", "/f/A.wav", "/f/B.wav"], first.clips())
        self.assertEqual(["/f/A.wav", "/f/A.wav", "/f/B.wav"], final.clips())

    def test_how_a_clip_is_appended(self) -> None:
        self.given_clips(clip("/f/A.wav", 100, Start_TC="10:00:00:00"))
        self.given_segments(segment(1, 2.5))
        first, final = self.both()
        self.assertEqual([[[{"mediaPoolItem": "<MediaPoolItem /f/A.wav>", "startFrame": 24, "endFrame": 60}]]],
                         first.arguments("AppendToTimeline"))
        self.assertEqual([], first.arguments("SetClipProperty"))
        self.assertEqual([[["<MediaPoolItem /f/A.wav>"]]], final.arguments("AppendToTimeline")[:1])
        self.assertEqual([["In", "10:00:01:00"], ["Out", "10:00:02:12"]], final.arguments("SetClipProperty")[:2])

    def test_chapter_markers(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 2, "", "One"), segment(3, 5, "", "Two"), segment(6, 9, "", "Two"))
        self.given_failure("AppendToTimeline", call=1, gives=[])
        first, final = self.both()
        # At the summed lengths of all moments; one for each of another chapter than the first.
        self.assertEqual([[24, "Blue", "Two", "", 1], [72, "Blue", "Two", "", 1]], first.arguments("AddMarker"))
        # Where the clips came to lie, the i-th clip for the i-th moment; one for each change, as long as the clip.
        self.assertEqual([[0, "Orange", "One", "", 48], [48, "Green", "Two", "", 72]], final.arguments("AddMarker"))

    def test_a_single_clip_for_all_moments(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_probe(A={"duration": 5.0})
        self.given_segments(segment(50, 51))
        first, final = self.both()
        self.assertIn("LOG:Warning: using fallback single-clip mode", first.lines)
        self.assertEqual((["/f/A.wav"], "SUCCESS:1 clips appended, 0 failed"), (first.clips(), first.last_line))
        self.assertEqual(["LOG:SKIP seg 0: no matching clip for t=50.0s clip=source"], final.starting_with("LOG:SKIP"))
        self.assertEqual(([], "SUCCESS:0/1 clips appended"), (final.clips(), final.last_line))

    def test_a_name_that_is_taken(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 2))
        self.given_failure("CreateEmptyTimeline", call=1, gives=None)
        first, final = self.both()
        self.assertEqual([["Cut"]], first.arguments("CreateEmptyTimeline"))
        self.assertEqual("ERROR:Could not create timeline", first.last_line)
        self.assertEqual(2, len(final.arguments("CreateEmptyTimeline")))
        self.assertEqual("SUCCESS:1/1 clips appended", final.last_line)

    def test_a_timeline_that_cannot_be_made(self) -> None:
        self.given_clips(clip("/f/A.wav"))
        self.given_segments(segment(1, 2))
        self.given_failure("CreateEmptyTimeline", gives=None)
        first, final = self.both()
        self.assertEqual("ERROR:Could not create timeline", first.last_line)
        self.assertEqual("ERROR:Could not create timeline — try deleting existing Zuvo Build timelines in Resolve",
                         final.last_line)


if __name__ == "__main__":
    unittest.main()
