"""Functions of the two builds by themselves: timecodes, and what no whole run can reach."""

import ast
import contextlib
import io
import unittest

from script_fixture import script_text


def functions_of(name: str, fps: float) -> dict:
    """The functions and constants of a script, without running the script."""
    tree = ast.parse(script_text(name))
    tree.body = [node for node in tree.body if isinstance(node, ast.FunctionDef)
                 or isinstance(node, ast.Assign) and ast.unparse(node.targets[0]).isupper()]
    namespace = {"fps": fps}
    exec(compile(tree, name, "exec"), namespace)
    return namespace


class Timecodes(unittest.TestCase):
    """They count with the frame rate that holds at the moment."""

    BUILDS = ("first_build", "final_build")

    def test_seconds_of_a_timecode(self) -> None:
        for name in self.BUILDS:
            for fps, timecode, seconds in (
                    (24.0, "00:00:00:00", 0.0), (24.0, "01:02:03:12", 3723.5), (25.0, "00:00:01:05", 1.2),
                    (50.0, "10:00:00;25", 36000.5), (23.976, "00:00:00:12", 12 / 23.976),
                    (24.0, "01:02:03", 0.0), (24.0, "1:2:3:4:5", 0.0), (24.0, "", 0.0)):
                self.assertEqual(seconds, functions_of(name, fps)["tc_to_sec"](timecode), (name, fps, timecode))

    def test_frames_of_a_timecode(self) -> None:
        for name in self.BUILDS:
            for fps, timecode, frames in (
                    (24.0, "00:00:00:00", 0), (24.0, "01:00:00:00", 86400), (25.0, "00:01:02:03", 1553),
                    (50.0, "00:00:01;25", 75), (24.0, "01:00:00", 0), (24.0, "", 0)):
                self.assertEqual(frames, functions_of(name, fps)["tc_to_frames"](timecode), (name, fps, timecode))

    def test_a_timecode_of_other_signs_than_numbers_is_an_error(self) -> None:
        for name in self.BUILDS:
            with self.assertRaises(ValueError):
                functions_of(name, 24.0)["tc_to_sec"]("a:b:c:d")

    def test_a_timecode_of_seconds_is_cut_off(self) -> None:
        for fps, seconds, timecode in (
                (24.0, 0.0, "00:00:00:00"), (24.0, 3723.5, "01:02:03:12"), (25.0, 59.999, "00:00:59:24"),
                (24.0, 0.0416, "00:00:00:00"), (59.94, 0.99, "00:00:00:59"), (24.0, 360000, "100:00:00:00")):
            self.assertEqual(timecode, functions_of("final_build", fps)["sec_to_tc"](seconds), (fps, seconds))


class FinalBuild(unittest.TestCase):
    functions = functions_of("final_build", 24.0)

    def test_without_probe_data_10_seconds_stay_and_less_goes_silently(self) -> None:
        source = {"A.wav": ("a", {"Duration": "00:00:09:23"}), "B.wav": ("b", {"Duration": "00:00:10:00"}),
                  "C.wav": ("c", {})}
        with contextlib.redirect_stdout(io.StringIO()) as printed:
            offsets = self.functions["offsets_in_name_order"](source)
        self.assertEqual([("b", 0.0, 10.0, "B.wav")], offsets)
        self.assertEqual("LOG:B.wav: transcript 0-10s (10s)\n", printed.getvalue())

    def test_a_clip_that_cannot_be_asked_has_the_properties_of_the_segment_s_name(self) -> None:
        source = {"A.wav": ("a", {"Start TC": "01:00:00:00"})}
        self.assertEqual({"Start TC": "01:00:00:00"}, self.functions["current_properties"](object(), "A.wav", source))
        self.assertEqual({}, self.functions["current_properties"](object(), "source", source))


if __name__ == "__main__":
    unittest.main()
