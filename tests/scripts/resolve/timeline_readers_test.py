"""The scripts that read an existing timeline: the media behind it, and its clips."""

import json
import unittest

from script_fixture import ScriptTest, clip

HOSTILE_NAMES = ['The "Cut"', "été — 🎬", "__TIMELINE_NAME__", "{name}", "%s 'single'", "ERROR:x"]


class TimelineMedia(ScriptTest):
    def given_timeline(self, **tracks: list) -> None:
        self.world["timelines"] = [{"name": "first"}, {"name": "Cut", "tracks": tracks}]

    def test_paths_of_all_tracks_come_sorted_and_once(self) -> None:
        self.given_clips(clip("/z.wav"), clip("/b.mov"), clip("/a.wav"), clip("/C.wav"), clip("/unused.wav"))
        self.given_timeline(audio=[["/z.wav", "/b.mov"], ["/a.wav", "/z.wav"]], video=[["/b.mov"], ["/C.wav"]])
        outcome = self.run_script("timeline_media")
        self.assertEqual("/C.wav\n/a.wav\n/b.mov\n/z.wav\n", outcome.stdout)
        self.then_ended_well(outcome)
        self.assertEqual([["audio", 1], ["audio", 2], ["video", 1], ["video", 2]],
                         [call["arguments"] for call in self.calls("GetItemListInTrack")])

    def test_the_timeline_becomes_current(self) -> None:
        self.given_timeline()
        self.run_script("timeline_media")
        self.assertEqual("Cut", self.world_after()["currentTimeline"])

    def test_titles_and_clips_without_a_file_are_passed_over(self) -> None:
        self.given_clips({"Clip Name": "compound"}, {"id": "pathless", "File Path": None}, clip("/a.wav"))
        self.given_timeline(audio=[[{"clip": None}, "compound", "pathless", "/a.wav"]])
        self.assertEqual("/a.wav\n", self.run_script("timeline_media").stdout)

    def test_a_track_that_gives_no_list_counts_as_empty(self) -> None:
        self.given_clips(clip("/a.wav"))
        self.given_timeline(audio=[["/a.wav"], ["/a.wav"]], video=[["/a.wav"]])
        self.given_failure("GetItemListInTrack", call=1, gives=None)
        self.assertEqual("/a.wav\n", self.run_script("timeline_media").stdout)

    def test_a_name_that_no_timeline_has_prints_nothing(self) -> None:
        self.given_timeline()
        outcome = self.run_script("timeline_media", "Nowhere")
        self.assertEqual("", outcome.stdout)
        self.then_ended_well(outcome)
        self.assertIsNone(self.world_after()["currentTimeline"])

    def test_the_first_of_two_timelines_of_one_name_is_taken(self) -> None:
        self.given_clips(clip("/a.wav"), clip("/b.wav"))
        self.world["timelines"] = [{"name": "Cut", "tracks": {"audio": [["/a.wav"]]}},
                                   {"name": "Cut", "tracks": {"audio": [["/b.wav"]]}}]
        self.assertEqual("/a.wav\n", self.run_script("timeline_media").stdout)

    def test_names_that_python_could_misread_find_their_timeline(self) -> None:
        for name in HOSTILE_NAMES:
            with self.subTest(name):
                self.world = {"timelines": [{"name": name, "tracks": {"audio": [["/ü 🎤.wav"]]}}]}
                self.given_clips(clip("/ü 🎤.wav"))
                outcome = self.run_script("timeline_media", name)
                self.assertEqual("/ü 🎤.wav\n", outcome.stdout)
                self.then_ended_well(outcome)

    def test_a_resolve_that_does_not_run_is_told_by_a_token(self) -> None:
        self.world["running"] = False
        outcome = self.run_script("timeline_media")
        self.assertEqual("ERROR:NOT_CONNECTED\n", outcome.stdout)
        self.then_ended_well(outcome)

    def test_an_exception_is_the_only_line(self) -> None:
        self.given_clips(clip("/a.wav"), clip("/b.wav"))
        self.given_timeline(audio=[["/a.wav", "/b.wav"]])
        self.given_failure("GetClipProperty", call=2, raises="clip offline")
        outcome = self.run_script("timeline_media")
        self.assertEqual("ERROR:clip offline\n", outcome.stdout)
        self.then_ended_well(outcome)


class TimelineClips(ScriptTest):
    def clips_told(self, timeline: str = "Cut") -> list[dict]:
        outcome = self.run_script("timeline_clips", timeline)
        self.then_ended_well(outcome)
        self.assertEqual(1, len(outcome.lines))
        self.assertTrue(outcome.stdout.startswith("SUCCESS:"), outcome.stdout)
        return json.loads(outcome.stdout.removeprefix("SUCCESS:"))

    def test_audio_clips_come_before_video_clips_and_picture_with_sound_twice(self) -> None:
        self.given_clips(clip("/a.wav"), clip("/b.mov"))
        item = {"clip": "/b.mov", "start": 86412, "end": 86424}
        self.world["timelines"] = [{"name": "Cut", "tracks": {
            "video": [[item]], "audio": [[{"clip": "/a.wav", "start": 86400, "end": 86460}], [item]]}}]
        told = {"sourceFile": "/b.mov", "startFrame": 86412, "endFrame": 86424, "duration": 0.5}
        first = {"sourceFile": "/a.wav", "startFrame": 86400, "endFrame": 86460, "duration": 2.5}
        self.assertEqual([first, told, told], self.clips_told())
        self.assertEqual([["audio", 1], ["audio", 2], ["video", 1]],
                         [call["arguments"] for call in self.calls("GetItemListInTrack")])

    def test_durations_go_by_the_timeline_s_rate(self) -> None:
        self.given_clips(clip("/a.wav"))
        for rate, seconds in (("25", 4.0), (50, 2.0), ("", 100 / 24), (None, 100 / 24), ("23.976", 100 / 23.976)):
            with self.subTest(rate):
                self.world = {"mediaPool": {"clips": [clip("/a.wav")]}, "timelines": [{
                    "name": "Cut", "frameRate": rate,
                    "tracks": {"audio": [[{"clip": "/a.wav", "start": 90000, "end": 90100}]]}}]}
                self.assertEqual([seconds], [each["duration"] for each in self.clips_told()])

    def test_titles_and_clips_without_a_file_are_passed_over(self) -> None:
        self.given_clips({"Clip Name": "compound"}, {"id": "pathless", "File Path": None}, clip("/a.wav"))
        self.world["timelines"] = [{"name": "Cut", "tracks": {
            "audio": [[{"clip": None}, "compound", "pathless", "/a.wav"]]}}]
        self.assertEqual(["/a.wav"], [each["sourceFile"] for each in self.clips_told()])

    def test_an_empty_timeline_is_an_empty_list(self) -> None:
        self.world["timelines"] = [{"name": "Cut"}]
        self.assertEqual([], self.clips_told())

    def test_the_current_timeline_stays(self) -> None:
        self.world.update(timelines=[{"name": "Cut"}, {"name": "other"}], currentTimeline="other")
        self.clips_told()
        self.assertEqual("other", self.world_after()["currentTimeline"])
        self.assertEqual([], self.calls("SetCurrentTimeline"))

    def test_names_that_python_could_misread_find_their_timeline(self) -> None:
        for name in HOSTILE_NAMES:
            with self.subTest(name):
                self.world = {"timelines": [{"name": name, "tracks": {"audio": [["/ü 🎤.wav"]]}}]}
                self.given_clips(clip("/ü 🎤.wav"))
                self.assertEqual(["/ü 🎤.wav"], [each["sourceFile"] for each in self.clips_told(name)])

    def test_a_resolve_that_does_not_run_is_an_error(self) -> None:
        self.world["running"] = False
        outcome = self.run_script("timeline_clips")
        self.assertEqual("ERROR:Resolve not connected\n", outcome.stdout)
        self.then_ended_well(outcome)

    def test_a_name_that_no_timeline_has_is_an_error(self) -> None:
        self.world["timelines"] = [{"name": "Cut 2"}]
        outcome = self.run_script("timeline_clips")
        self.assertEqual("ERROR:Timeline not found\n", outcome.stdout)
        self.then_ended_well(outcome)

    def test_an_exception_is_an_error_line_with_the_traceback_behind_it(self) -> None:
        self.given_clips(clip("/a.wav"))
        self.world["timelines"] = [{"name": "Cut", "tracks": {"audio": [["/a.wav"]]}}]
        self.given_failure("GetEnd", raises="item gone")
        outcome = self.run_script("timeline_clips")
        self.assertEqual(["ERROR:item gone", "Traceback (most recent call last):"], outcome.lines[:2])
        self.assertEqual("RuntimeError: item gone", outcome.lines[-1])
        self.then_ended_well(outcome)

    def test_no_open_project_is_an_error(self) -> None:
        self.world["project"] = None
        outcome = self.run_script("timeline_clips")
        self.assertTrue(outcome.lines[0].startswith("ERROR:"), outcome.stdout)
        self.assertEqual([], outcome.starting_with("SUCCESS:"))


if __name__ == "__main__":
    unittest.main()
