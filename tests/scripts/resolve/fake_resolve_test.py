"""The manners of the stand-in for Resolve, on which all tests of the generated scripts rely."""

import json
import unittest

from script_fixture import FAKE_RESOLVE, ScriptTest, clip

PRELUDE = """
import json, os, sys
import DaVinciResolveScript as dvr
resolve = dvr.scriptapp("Resolve")
proj = resolve.GetProjectManager().GetCurrentProject()
mp = proj.GetMediaPool()

def new_timeline(name="New"):
    tl = mp.CreateEmptyTimeline(name)
    proj.SetCurrentTimeline(tl)
    return tl

def places(tl, kind="audio"):
    return [[item.GetStart(), item.GetEnd()] for item in tl.GetItemListInTrack(kind, 1)]

def clips():
    return mp.GetRootFolder().GetClipList()

def tell(*values):
    print(json.dumps(values))

"""


class FakeResolveTest(ScriptTest):
    def told(self, program: str) -> list:
        """What a program that talks to the stand-in tells by tell(...)."""
        outcome = self.run_program(PRELUDE + program)
        self.then_ended_well(outcome)
        return json.loads(outcome.stdout)

    def given_timelines(self, *timelines: dict) -> None:
        self.world["timelines"] = list(timelines)

    # The application, its project and its world

    def test_an_empty_world_is_a_running_resolve_with_an_empty_project(self) -> None:
        told = self.told("tell(proj.GetName(), proj.GetTimelineCount(), clips(), proj.GetCurrentTimeline())")
        self.assertEqual(["Documentary", 0, [], None], told)

    def test_a_resolve_that_does_not_run_is_none(self) -> None:
        self.world["running"] = False
        outcome = self.run_program('import DaVinciResolveScript as dvr\nprint(dvr.scriptapp("Resolve"))')
        self.assertEqual("None\n", outcome.stdout)

    def test_there_is_no_other_application(self) -> None:
        self.assertEqual([None], self.told('tell(dvr.scriptapp("Fusion"))'))

    def test_without_an_open_project_there_is_none(self) -> None:
        self.world["project"] = None
        outcome = self.run_program("import DaVinciResolveScript as dvr\n"
                                   'print(dvr.scriptapp("Resolve").GetProjectManager().GetCurrentProject())')
        self.assertEqual("None\n", outcome.stdout)

    def test_an_unknown_method_is_an_attribute_error(self) -> None:
        told = self.told("tell(*[hasattr(thing, 'NoSuchMethod') for thing in (resolve, proj, mp, new_timeline())])")
        self.assertEqual([False] * 4, told)

    def test_a_second_program_finds_what_the_first_one_made(self) -> None:
        self.given_clips(clip("/a.wav", 60))
        self.run_program(PRELUDE + 'tl = new_timeline("One")\nmp.AppendToTimeline(clips())\n'
                         'tl.AddMarker(5, "Red", "name", "note", 2)\nclips()[0].SetClipProperty("In", "00:00:10:00")')
        told = self.told('tl = proj.GetCurrentTimeline()\n'
                         'tell(tl.GetName(), places(tl), tl.GetMarkers(), clips()[0].GetClipProperty("In"))')
        marker = {"color": "Red", "name": "name", "note": "note", "duration": 2}
        self.assertEqual(["One", [[86400, 86400 + 60 * 24]], {"5": marker}, "00:00:10:00"], told)

    def test_the_world_is_written_back_by_a_program_that_fails_or_leaves(self) -> None:
        for ending in ("raise RuntimeError", "sys.exit(0)"):
            self.world = {}
            self.run_program(PRELUDE + f'new_timeline("Made")\n{ending}')
            self.assertEqual("Made", self.timeline_after()["name"], ending)

    def test_a_world_that_is_written_back_unchanged_reads_the_same(self) -> None:
        self.world = {
            "project": "P", "frameRate": "25", "startTimecode": "00:00:00:00", "currentTimeline": "T",
            "mediaPool": {"name": "Master", "clips": [clip("/a.wav", FPS=None)],
                          "folders": [{"name": "bin", "clips": None, "folders": None}]},
            "timelines": [{"name": "T", "tracks": {"audio": [["/a.wav", {"clip": None, "start": 9, "end": 12}]]},
                           "markers": {"7": {"color": "Pink"}}}],
            "failures": [{"method": "AddTrack", "call": 9, "gives": False}],
        }
        self.run_program(PRELUDE)
        first = self.world_after()
        self.assertEqual([{"clip": "/a.wav", "start": 0, "end": 3000}, {"clip": None, "start": 9, "end": 12}],
                         first["timelines"][0]["tracks"]["audio"][0])
        self.run_program(PRELUDE)
        self.assertEqual(first, self.world_after())

    def test_a_missing_or_absurd_world_is_a_clear_error_and_stays_as_it_is(self) -> None:
        asking = 'import DaVinciResolveScript as dvr\ndvr.scriptapp("Resolve")'
        absurd = ["", "{", "[]", '{"runing": true}', '{"running": 1}', '{"project": 5}', '{"startTimecode": "1:00"}',
                  '{"timelines": {}}', '{"currentTimeline": "none"}', '{"failures": [{"method": "AddTrack"}]}',
                  '{"failures": [{"gives": 1}]}', '{"mediaPool": {"clips": [{"Path": "/a.wav"}]}}',
                  '{"timelines": [{"tracks": {"audio": [["no such clip"]]}}]}',
                  '{"timelines": [{"markers": {"x": {}}}]}']
        for text in absurd:
            with self.subTest(text):
                self.run_program("")
                self.world_file.write_text(text)
                outcome = self.run_program(asking)
                self.assertIn("WorldError: FAKE_RESOLVE_WORLD", outcome.stderr)
                self.assertEqual(text, self.world_file.read_text())
        missing = {"PYTHONPATH": str(FAKE_RESOLVE), "PYTHONDONTWRITEBYTECODE": "1"}
        self.assertIn("the variable is not set", self.run_program(asking, missing).stderr)
        missing["FAKE_RESOLVE_WORLD"] = "/no/such/world.json"
        self.assertIn("WorldError: FAKE_RESOLVE_WORLD cannot be read", self.run_program(asking, missing).stderr)

    def test_every_call_is_recorded(self) -> None:
        self.given_clips(clip("/a.wav"))
        self.given_failure("AddTrack", raises="no room")
        self.told('tl = new_timeline("T")\nmp.AppendToTimeline(clips())\n'
                  'try:\n    tl.AddTrack("audio")\nexcept RuntimeError:\n    pass\ntell()')
        self.assertEqual([{"object": "<MediaPool >", "method": "AppendToTimeline",
                           "arguments": [["<MediaPoolItem /a.wav>"]], "result": ["<TimelineItem /a.wav 86400-89280>"]}],
                         self.calls("AppendToTimeline"))
        self.assertEqual([{"object": "<Timeline T>", "method": "AddTrack", "arguments": ["audio"],
                           "raises": "no room"}], self.calls("AddTrack"))

    # Failures

    def test_a_call_can_be_told_to_give_something_else_or_to_raise(self) -> None:
        self.given_clips(clip("/a.wav"))
        self.given_failure("AppendToTimeline", call=2, gives=[])
        self.given_failure("AppendToTimeline", call=3, raises="no more")
        told = self.told("""
tl = new_timeline()
given = [len(mp.AppendToTimeline(clips())), len(mp.AppendToTimeline(clips()))]
try:
    mp.AppendToTimeline(clips())
except RuntimeError as error:
    given.append(str(error))
mp.AppendToTimeline(clips())
tell(given, len(places(tl)))""")
        self.assertEqual([[1, 0, "no more"], 2], told)

    def test_a_failure_without_a_number_holds_for_every_call(self) -> None:
        self.given_failure("CreateEmptyTimeline", gives=None)
        self.assertEqual([None, None, 0], self.told(
            'tell(mp.CreateEmptyTimeline("a"), mp.CreateEmptyTimeline("b"), proj.GetTimelineCount())'))

    def test_a_failure_can_be_one_class_s_alone(self) -> None:
        self.given_failure("Project.GetName", gives="spoilt")
        self.assertEqual(["spoilt", "New"], self.told("tell(proj.GetName(), new_timeline().GetName())"))

    # Timelines

    def test_a_taken_or_empty_timeline_name_gives_none(self) -> None:
        told = self.told('tell(*[mp.CreateEmptyTimeline(name) is not None for name in ("a", "a", "", "b")])')
        self.assertEqual([True, False, False, True], told)

    def test_a_new_timeline_is_current_only_when_it_was_made_so(self) -> None:
        told = self.told('tl = mp.CreateEmptyTimeline("a")\nbefore = proj.GetCurrentTimeline()\n'
                         'tell(before, proj.SetCurrentTimeline(tl), proj.GetCurrentTimeline().GetName())')
        self.assertEqual([None, True, "a"], told)

    def test_something_else_than_a_timeline_does_not_become_current(self) -> None:
        self.assertEqual([False, None], self.told("tell(proj.SetCurrentTimeline(mp), proj.GetCurrentTimeline())"))

    def test_timelines_are_counted_from_one(self) -> None:
        self.given_timelines({"name": "x"}, {})
        told = self.told("tell(*[tl and tl.GetName() for tl in map(proj.GetTimelineByIndex, (0, 1, 2, 3))])")
        self.assertEqual([None, "x", "Timeline 2", None], told)

    def test_a_timeline_starts_at_its_timecode_counted_with_the_rounded_rate(self) -> None:
        for rate, first in (("23.976", 86400), ("24", 86400), (25, 90000), ("29.97", 108000), (30.0, 108000),
                            ("50", 180000), ("59.94", 216000), ("", 86400), ("odd", 86400), (None, 86400)):
            self.world = {"frameRate": rate}
            told = self.told('tl = new_timeline()\ntell(tl.GetStartFrame(), tl.GetSetting("timelineFrameRate"))')
            self.assertEqual([first, rate], told)

    def test_a_timeline_can_start_elsewhere(self) -> None:
        self.world = {"startTimecode": "00:00:10:12", "frameRate": "25"}
        self.given_clips(clip("/a.wav", 1))
        told = self.told("tl = new_timeline()\nmp.AppendToTimeline(clips())\ntell(tl.GetStartTimecode(), places(tl))")
        self.assertEqual(["00:00:10:12", [[262, 287]]], told)

    def test_an_unknown_setting_is_empty(self) -> None:
        self.assertEqual([""], self.told('tell(new_timeline().GetSetting("useCustomSettings"))'))

    def test_a_new_timeline_has_one_audio_and_one_video_track_and_can_get_more(self) -> None:
        told = self.told('tl = new_timeline()\nkinds = ("audio", "video", "subtitle", "other")\n'
                         'before = [tl.GetTrackCount(kind) for kind in kinds]\n'
                         'added = [tl.AddTrack(kind) for kind in kinds]\n'
                         'tell(before, added, [tl.GetTrackCount(kind) for kind in kinds])')
        self.assertEqual([[1, 1, 0, 0], [True, True, True, False], [2, 2, 1, 0]], told)

    def test_a_track_that_is_not_there_is_none_and_an_empty_one_a_list(self) -> None:
        told = self.told('tl = new_timeline()\ntell(*[tl.GetItemListInTrack(*track) for track in '
                         '(("audio", 1), ("audio", 2), ("audio", 0), ("subtitle", 1))])')
        self.assertEqual([[], None, None, None], told)

    def test_items_of_a_written_world_follow_each_other_unless_told_otherwise(self) -> None:
        self.given_clips(clip("/a.wav", 2))
        self.given_timelines({"tracks": {"audio": [["/a.wav", {"clip": None}, {"clip": "/a.wav", "start": 90000,
                                                                            "end": 90001}]]}})
        told = self.told('tl = proj.GetTimelineByIndex(1)\nitems = tl.GetItemListInTrack("audio", 1)\n'
                         'tell(places(tl), [i.GetMediaPoolItem() is not None for i in items], '
                         '[i.GetDuration() for i in items])')
        self.assertEqual([[[86400, 86448], [86448, 86449], [90000, 90001]], [True, False, True], [48, 1, 1]], told)

    # Markers

    def test_a_marker_wants_a_free_whole_frame_from_zero_on(self) -> None:
        told = self.told('tl = new_timeline()\ntell(*[tl.AddMarker(frame, "Blue", "", "", 1) for frame in '
                         '(0, 0, 7, 7.0, 8.5, -1, None, True, "9")], sorted(tl.GetMarkers()))')
        self.assertEqual([True, False, True, False, False, False, False, False, False, [0, 7]], told)

    def test_a_marker_wants_texts_and_at_least_one_frame(self) -> None:
        told = self.told('tl = new_timeline()\ntell(tl.AddMarker(1, "Blue", "", "", 0), '
                         'tl.AddMarker(1, "Blue", None, "", 1), tl.AddMarker(1, "Blue", "", "", 1.5), tl.GetMarkers())')
        self.assertEqual([False, False, False, {}], told)

    # The media pool

    def test_a_clip_has_defaults_for_what_the_world_does_not_tell(self) -> None:
        self.world = {"frameRate": "25"}
        self.given_clips({"File Path": "/f/B.MOV"}, {"Start TC": "10:00:00:00", "Duration": "00:00:01:00"},
                         {"FPS": None})
        told = self.told("tell(*[c.GetClipProperty() for c in clips()])")
        self.assertEqual({"File Path": "/f/B.MOV", "Clip Name": "B.MOV", "Type": "Video + Audio", "FPS": 25.0,
                          "Start TC": "00:00:00:00", "Duration": "01:00:00:00", "End TC": "01:00:00:00", "In": "",
                          "Out": ""}, told[0])
        self.assertEqual(("", "10:00:01:00"), (told[1]["File Path"], told[1]["End TC"]))
        self.assertNotIn("FPS", told[2])

    def test_one_property_can_be_asked_for(self) -> None:
        self.given_clips(clip("/a.wav"))
        told = self.told('tell(clips()[0].GetClipProperty("Type"), clips()[0].GetClipProperty("Mood"))')
        self.assertEqual(["Audio", ""], told)

    def test_in_and_out_take_timecodes_alone(self) -> None:
        self.given_clips(clip("/a.wav"))
        texts = ["00:00:01:23", "00:00:01:24", "00:60:00:00", "-1:00:00:00", "", "5", None, 5]
        told = self.told(f'tell(*[clips()[0].SetClipProperty("In", text) for text in {texts!r}], '
                         'clips()[0].GetClipProperty("In"))')
        self.assertEqual([True] + [False] * 7 + ["00:00:01:23"], told)

    def test_a_property_that_no_clip_has_cannot_be_set(self) -> None:
        self.given_clips(clip("/a.wav"))
        told = self.told('tell(clips()[0].SetClipProperty("Mood", "x"), clips()[0].SetClipProperty("Clip Name", "x"), '
                         'clips()[0].GetName())')
        self.assertEqual([False, True, "x"], told)

    def test_folders_are_kept_in_order_and_can_lack_their_lists(self) -> None:
        self.world["mediaPool"] = {"clips": None, "folders": [
            {"name": "one", "clips": [clip("/a.wav")], "folders": None}, {"name": "two"}]}
        told = self.told('root = mp.GetRootFolder()\nsub = root.GetSubFolderList()\n'
                         'tell(clips(), [f.GetName() for f in sub], len(sub[0].GetClipList()), '
                         'sub[0].GetSubFolderList(), sub[1].GetClipList())')
        self.assertEqual([None, ["one", "two"], 1, None, []], told)

    def test_clips_of_one_path_are_told_apart_by_their_ids(self) -> None:
        self.given_clips(clip("/a.wav"), clip("/a.wav"), {"id": "x"}, {"id": "x"}, {})
        self.run_program(PRELUDE)
        ids = [each["id"] for each in self.world_after()["mediaPool"]["clips"]]
        self.assertEqual(["/a.wav", "/a.wav#2", "x", "x#2", "clip"], ids)

    def test_only_files_that_exist_are_imported(self) -> None:
        subtitles = self.folder / "subs.srt"
        subtitles.write_text("")
        told = self.told(f'items = mp.ImportMedia(["/no/such.srt", {str(subtitles)!r}])\n'
                         'tell([i.GetClipProperty("Type") for i in items], len(clips()))')
        self.assertEqual([["Subtitle"], 1], told)

    # Appending

    def test_a_marked_clip_is_placed_from_its_in_up_to_its_out_behind_the_others(self) -> None:
        self.given_clips(clip("/a.wav", 60, Start_TC="10:00:00:00"))
        told = self.told("""
tl = new_timeline()
for first, end in (("10:00:05:00", "10:00:07:12"), ("10:00:20:01", "10:00:20:03")):
    clips()[0].SetClipProperty("In", first)
    clips()[0].SetClipProperty("Out", end)
    mp.AppendToTimeline(clips())
tell(places(tl), places(tl, "video"), tl.GetEndFrame())""")
        self.assertEqual([[[86400, 86460], [86460, 86462]], [], 86462], told)

    def test_what_lies_outside_of_the_clip_is_cut_off(self) -> None:
        self.given_clips(clip("/a.wav", 10, Start_TC="01:00:00:00"))
        told = self.told("""
tl = new_timeline()
counts = []
for first, end in (("00:59:00:00", "01:00:01:00"), ("01:00:09:00", "01:00:30:00"), ("01:00:10:00", "01:00:30:00"),
                   ("01:00:05:00", "01:00:05:00"), ("01:00:05:00", "01:00:04:00")):
    clips()[0].SetClipProperty("In", first)
    clips()[0].SetClipProperty("Out", end)
    counts.append(len(mp.AppendToTimeline(clips())))
tell(counts, places(tl))""")
        self.assertEqual([[1, 1, 0, 0, 0], [[86400, 86424], [86424, 86448]]], told)

    def test_a_clip_with_picture_lies_on_video_track_one_as_well(self) -> None:
        self.given_clips(clip("/a.mov", 1), clip("/b.mov", 1, Type="Video"))
        told = self.told('tl = new_timeline()\ncount = len(mp.AppendToTimeline(clips()))\n'
                         'tell(count, places(tl), places(tl, "video"))')
        self.assertEqual([3, [[86400, 86424]], [[86400, 86424], [86424, 86448]]], told)

    def test_a_range_of_frames_counts_from_the_first_frame_of_the_file(self) -> None:
        self.given_clips(clip("/a.wav", 10, Start_TC="10:00:00:00", In="10:00:08:00"))
        told = self.told('tl = new_timeline()\n'
                         'ranges = [(24, 72), (230, 999), (5, 5), (1.0, 2)]\n'
                         'counts = [len(mp.AppendToTimeline([{"mediaPoolItem": clips()[0], "startFrame": a, '
                         '"endFrame": b}])) for a, b in ranges]\ntell(counts, places(tl))')
        self.assertEqual([[1, 1, 0, 0], [[86400, 86448], [86448, 86458]]], told)

    def test_a_range_that_the_stand_in_does_not_know_is_refused_aloud(self) -> None:
        self.given_clips(clip("/a.wav"))
        outcome = self.run_program(PRELUDE + 'new_timeline()\nmp.AppendToTimeline([{"mediaPoolItem": clips()[0]}])')
        self.assertIn("NotImplementedError", outcome.stderr)

    def test_without_a_current_timeline_nothing_is_appended(self) -> None:
        self.given_clips(clip("/a.wav"))
        self.assertEqual([[]], self.told("tell(mp.AppendToTimeline(clips()))"))

    def test_a_clip_at_another_rate_keeps_its_seconds(self) -> None:
        self.world = {"frameRate": "50"}
        self.given_clips(clip("/a.wav", 2, FPS="25", In="00:00:00:20"))
        self.assertEqual([[[180000, 180060]]], self.told("tl = new_timeline()\nmp.AppendToTimeline(clips())\n"
                                                         "tell(places(tl))"))

    def test_a_subtitle_file_lies_on_subtitle_track_one_as_long_as_the_timeline(self) -> None:
        self.given_clips(clip("/a.wav", 2), clip("/s.srt"))
        told = self.told('tl = new_timeline()\nmp.AppendToTimeline(clips())\n'
                         'tell(tl.GetTrackCount("subtitle"), places(tl, "subtitle"), places(tl))')
        self.assertEqual([1, [[86400, 86448]], [[86400, 86448]]], told)


if __name__ == "__main__":
    unittest.main()
