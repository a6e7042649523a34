"""The short scripts by which the page asks Resolve: project, timelines, place of the audio, an empty timeline."""

import unittest

from script_fixture import FAKE_RESOLVE, ScriptTest, filled


class EveryBridgeScript(ScriptTest):
    NAMES = ("project_name", "timeline_names", "audio_export_path", "empty_timeline")

    def test_a_failure_is_a_line_and_not_an_exit_status(self) -> None:
        for name in self.NAMES:
            with self.subTest(name):
                self.world = {"failures": [{"method": "GetCurrentProject", "raises": "the project is locked"}]}
                outcome = self.run_script(name)
                self.assertEqual("ERROR:the project is locked\n", outcome.stdout)
                self.then_ended_well(outcome)

    def test_a_missing_module_is_a_line_too(self) -> None:
        environment = self.environment()
        del environment["PYTHONPATH"]
        for name in self.NAMES:
            with self.subTest(name):
                outcome = self.run_program(filled(name, TIMELINE_NAME="Cut"), environment)
                self.assertEqual("ERROR:No module named 'DaVinciResolveScript'\n", outcome.stdout)
                self.then_ended_well(outcome)

    def test_the_module_is_found_in_the_folder_that_was_filled_in(self) -> None:
        environment = self.environment()
        del environment["PYTHONPATH"]
        program = filled("project_name", RESOLVE_SCRIPT_LIB=str(FAKE_RESOLVE))
        self.assertEqual("Documentary\n", self.run_program(program, environment).stdout)

    def test_a_resolve_that_does_not_run_is_an_error_at_the_start_of_the_output(self) -> None:
        for name in self.NAMES:
            with self.subTest(name):
                self.world = {"running": False}
                outcome = self.run_script(name)
                self.assertTrue(outcome.stdout.startswith("ERROR:"), outcome.stdout)
                self.then_ended_well(outcome)


class ProjectName(ScriptTest):
    def test_the_open_project_is_printed(self) -> None:
        self.world["project"] = "Día 1 «été» 🎬"
        outcome = self.run_script("project_name")
        self.assertEqual("Día 1 «été» 🎬\n", outcome.stdout)
        self.then_ended_well(outcome)

    def test_a_project_without_a_name_is_an_empty_line(self) -> None:
        self.world["project"] = ""
        self.assertEqual("\n", self.run_script("project_name").stdout)

    def test_a_resolve_that_does_not_run_is_told_by_a_token(self) -> None:
        self.world["running"] = False
        self.assertEqual("ERROR:NOT_CONNECTED\n", self.run_script("project_name").stdout)

    def test_no_open_project_is_told_by_a_token(self) -> None:
        self.world["project"] = None
        outcome = self.run_script("project_name")
        self.assertEqual("ERROR:NO_PROJECT\n", outcome.stdout)
        self.then_ended_well(outcome)


class TimelineNames(ScriptTest):
    def test_all_names_are_printed_in_resolve_s_order(self) -> None:
        self.world["timelines"] = [{"name": "Zweite"}, {"name": "a \"b\""}, {"name": "🎬"}]
        outcome = self.run_script("timeline_names")
        self.assertEqual('Zweite\na "b"\n🎬\n', outcome.stdout)
        self.then_ended_well(outcome)

    def test_no_timelines_print_nothing(self) -> None:
        outcome = self.run_script("timeline_names")
        self.assertEqual("", outcome.stdout)
        self.then_ended_well(outcome)

    def test_an_exception_in_the_middle_comes_behind_the_names_so_far(self) -> None:
        self.world["timelines"] = [{"name": "one"}, {"name": "two"}]
        self.given_failure("GetTimelineByIndex", call=2, raises="gone")
        self.assertEqual("one\nERROR:gone\n", self.run_script("timeline_names").stdout)

    def test_the_current_timeline_stays(self) -> None:
        self.world.update(timelines=[{"name": "one"}, {"name": "two"}], currentTimeline="two")
        self.run_script("timeline_names")
        self.assertEqual("two", self.world_after()["currentTimeline"])


class AudioExportPath(ScriptTest):
    def test_the_timeline_becomes_current_and_the_path_is_printed(self) -> None:
        self.world["timelines"] = [{"name": "other"}, {"name": "Cut"}, {"name": "last"}]
        outcome = self.run_script("audio_export_path")
        self.assertEqual(f"{self.cache}/audio_export.wav\n", outcome.stdout)
        self.then_ended_well(outcome)
        self.assertEqual("Cut", self.world_after()["currentTimeline"])

    def test_the_folder_is_made_and_no_file_in_it(self) -> None:
        self.cache.rmdir()
        self.world["timelines"] = [{"name": "Cut"}]
        self.then_ended_well(self.run_script("audio_export_path"))
        self.assertEqual([], list(self.cache.iterdir()))

    def test_the_search_ends_at_the_first_of_that_name(self) -> None:
        self.world["timelines"] = [{"name": "Cut"}, {"name": "Cut"}]
        self.run_script("audio_export_path")
        self.assertEqual([1], [call["arguments"][0] for call in self.calls("GetTimelineByIndex")])

    def test_a_name_that_no_timeline_has_is_an_error_and_changes_nothing(self) -> None:
        self.world.update(timelines=[{"name": "Cut 2"}, {"name": "cut"}], currentTimeline="cut")
        outcome = self.run_script("audio_export_path")
        self.assertEqual("ERROR:TIMELINE_NOT_FOUND\n", outcome.stdout)
        self.then_ended_well(outcome)
        self.assertEqual("cut", self.world_after()["currentTimeline"])

    def test_a_name_filled_in_with_a_bare_quote_is_no_python(self) -> None:
        self.world["timelines"] = [{"name": 'The "Cut"'}]
        outcome = self.run_program(filled("audio_export_path", TIMELINE_NAME='The "Cut"'))
        self.assertEqual(("", 1), (outcome.stdout, outcome.status))
        self.assertIn("SyntaxError", outcome.stderr)


class EmptyTimeline(ScriptTest):
    def test_an_empty_timeline_is_made_and_becomes_current(self) -> None:
        outcome = self.run_script("empty_timeline", "Zuvo Mining - 2024-01-01")
        self.assertEqual("SUCCESS:Timeline created\n", outcome.stdout)
        self.then_ended_well(outcome)
        self.assertEqual("Zuvo Mining - 2024-01-01", self.world_after()["currentTimeline"])
        self.assertEqual({"audio": [[]], "video": [[]], "subtitle": []}, self.timeline_after()["tracks"])

    def test_a_taken_name_is_an_error_and_the_current_timeline_stays(self) -> None:
        self.world.update(timelines=[{"name": "Cut"}, {"name": "other"}], currentTimeline="other")
        outcome = self.run_script("empty_timeline")
        self.assertEqual("ERROR:TIMELINE_CREATE_FAILED\n", outcome.stdout)
        self.then_ended_well(outcome)
        self.assertEqual("other", self.world_after()["currentTimeline"])


if __name__ == "__main__":
    unittest.main()
