"""The scripts as texts: what is left to be filled in, and that what was filled in is Python."""

import ast
import re
import unittest

from script_fixture import PLACEHOLDER, SCRIPTS, escaped, filled, quoted_paths, script_text

PLACEHOLDERS = {
    "project_name": ["'__RESOLVE_SCRIPT_LIB__'"],
    "timeline_names": ["'__RESOLVE_SCRIPT_LIB__'"],
    "audio_export_path": ["'__RESOLVE_SCRIPT_LIB__'", '"__TIMELINE_NAME__"'],
    "empty_timeline": ["'__RESOLVE_SCRIPT_LIB__'", '"__TIMELINE_NAME__"'],
    "timeline_media": ["'__RESOLVE_SCRIPT_LIB__'", '"__TIMELINE_NAME__"'],
    "timeline_clips": ["'__RESOLVE_SCRIPT_LIB__'", '"__TIMELINE_NAME__"'],
    "first_build": ["'__RESOLVE_SCRIPT_LIB__'", '"__SEGMENTS_PATH__"', "media_paths = __MEDIA_PATHS__\n",
                    '"__TIMELINE_NAME__"'],
    "final_build": ["\n__SUBTITLE_CARDS__\n", "'__RESOLVE_SCRIPT_LIB__'", '"__TIMELINE_NAME__"', '"__TIMELINE_NAME__"',
                    '"__SEGMENTS_PATH__"'],
    "subtitle_cards": [],
}
NAMES = ['The "Cut"', "été — 🎬", "__TIMELINE_NAME__", "__SEGMENTS_PATH__", "{x} %s", "'''", '"""', "#"]


class ScriptTexts(unittest.TestCase):
    def test_the_folder_holds_these_scripts_and_no_others(self) -> None:
        self.assertEqual(sorted(PLACEHOLDERS), sorted(path.stem for path in SCRIPTS.iterdir()))

    def test_each_placeholder_stands_where_the_host_fills_it_in(self) -> None:
        for name, expected in PLACEHOLDERS.items():
            with self.subTest(name):
                text = script_text(name)
                for form in set(expected):
                    self.assertEqual(expected.count(form), text.count(form), form)
                self.assertEqual(len(expected), len(PLACEHOLDER.findall(text)))

    def test_every_script_is_python_once_it_is_filled(self) -> None:
        for name in PLACEHOLDERS:
            for timeline in NAMES:
                with self.subTest(f"{name}, {timeline}"):
                    program = filled(name, TIMELINE_NAME=escaped(timeline), SEGMENTS_PATH="/home/é 🎬/segments.json",
                                     MEDIA_PATHS=quoted_paths(["/a \"b\".wav", "/c'd.wav", "/__MEDIA_PATHS__"]))
                    ast.parse(program)

    def test_every_script_is_python_as_it_stands(self) -> None:
        for name in PLACEHOLDERS:
            ast.parse(script_text(name))

    def test_the_python_is_that_of_3_9(self) -> None:
        for name in PLACEHOLDERS:
            ast.parse(script_text(name), feature_version=(3, 9))

    def test_only_the_standard_library_and_resolve_s_module_are_imported(self) -> None:
        known = {"datetime", "json", "os", "shutil", "sys", "time", "traceback", "DaVinciResolveScript"}
        for name in PLACEHOLDERS:
            for node in ast.walk(ast.parse(script_text(name))):
                if isinstance(node, ast.Import):
                    self.assertLessEqual({alias.name for alias in node.names}, known, name)
                elif isinstance(node, ast.ImportFrom):
                    self.assertIn(node.module, known, name)

    def test_the_module_s_folder_is_known_before_the_module_is_asked_for(self) -> None:
        for name in set(PLACEHOLDERS) - {"subtitle_cards"}:
            text = script_text(name)
            where = text.index("sys.path.append('__RESOLVE_SCRIPT_LIB__')")
            self.assertIn("\nimport sys\n", text[:where], name)
            self.assertNotIn("import DaVinciResolveScript", text[:where], name)

    def test_every_fatal_error_line_is_followed_by_a_good_end(self) -> None:
        for name in PLACEHOLDERS:
            for match in re.finditer(r'print\("ERROR:.*\n(.*)\n', script_text(name)):
                self.assertEqual("sys.exit(0)", match.group(1).strip(), match.group())


if __name__ == "__main__":
    unittest.main()
