"""How ./bench reads the figures that the benchmarks print, and writes its table."""

import contextlib
import io
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "benchmarks"))

import report  # noqa: E402
from report import Benchmark, Figure, figure_of  # noqa: E402

PAGE = f"# Title\n\n{report.MARK_BEFORE}\n\nold\n\n{report.MARK_AFTER}\n\n## After\n"
FIGURE = Figure("edl, 10", "1 ms against 2 ms", "ratio", "0.50")


class FigureTest(unittest.TestCase):
    def test_a_ratio_stands_at_the_end_of_its_line(self) -> None:
        self.assertEqual(figure_of("edl, 10: 1 ms against 2 ms, ratio 0.50\n"), FIGURE)

    def test_an_exponent_too(self) -> None:
        self.assertEqual(figure_of("edl, growth: 10 to 1000, exponent 1.02"),
                         Figure("edl, growth", "10 to 1000", "exponent", "1.02"))

    def test_what_is_measured_may_hold_words_and_commas(self) -> None:
        self.assertEqual(figure_of('a key, "" to "m", so many lines, 50: mean 3.1 ms with 0 of 300 late, ratio 1.25'),
                         Figure('a key, "" to "m", so many lines, 50', "mean 3.1 ms with 0 of 300 late", "ratio", "1.25"))

    def test_other_lines_are_no_figures(self) -> None:
        for line in ("", "Running ./zuvo_steps_bench", "edl/ours/10   1 ms   1 ms   100", "edl: a ratio of 2",
                     "ratio 2", "edl   ratio 1.25  mean 3.1 ms", "edl: 1 ms, ratio 0.5 or so"):
            self.assertIsNone(figure_of(line), line)

    def test_an_aim_belongs_to_ratios_whose_name_begins_so(self) -> None:
        self.assertEqual(Figure("wall time of a mine of so many minutes, 20", "", "ratio", "1").aim, "1.05")
        self.assertEqual(Figure("wall time of a mine of so many minutes, growth", "", "exponent", "1").aim, "")
        self.assertEqual(Figure("a wall time of a mine", "", "ratio", "1").aim, "")

    def test_every_aim_is_of_a_figure_that_is_measured(self) -> None:
        programs = "".join(path.read_text(encoding="utf-8") for path in (ROOT / "benchmarks").iterdir()
                           if path.suffix in (".cpp", ".py") and path.name != "report.py")
        for beginning, _ in report.AIMS:
            self.assertIn(beginning.split(",")[0].removesuffix(" of a mine"), programs)


class TableTest(unittest.TestCase):
    def test_takes_the_place_of_what_stood_between_the_marks(self) -> None:
        text = report.with_table(PAGE, [FIGURE])
        self.assertEqual(text, "# Title\n\n" + report.MARK_BEFORE + "\n\n"
                         "| what | measured | | figure | aim |\n|---|---|---|---:|---:|\n"
                         "| edl, 10 | 1 ms against 2 ms | ratio | 0.50 |  |\n\n" + report.MARK_AFTER + "\n\n## After\n")

    def test_can_be_written_again(self) -> None:
        once = report.with_table(PAGE, [FIGURE])
        self.assertEqual(report.with_table(once, [FIGURE]), once)

    def test_a_page_without_marks_is_left(self) -> None:
        self.assertIsNone(report.with_table("# Title\n", [FIGURE]))

    def test_the_page_of_the_project_has_the_marks(self) -> None:
        self.assertIsNotNone(report.with_table((ROOT / "docs/performance.md").read_text(encoding="utf-8"), [FIGURE]))


class RunTest(unittest.TestCase):
    def run_program(self, program: str) -> tuple[list[Figure], str]:
        with tempfile.TemporaryDirectory() as folder, contextlib.redirect_stdout(io.StringIO()):
            (Path(folder) / "build/bench").mkdir(parents=True)
            return report.run(Benchmark("made up", [sys.executable, "-c", program]), Path(folder))

    def test_figures_are_picked_out_of_what_is_printed(self) -> None:
        self.assertEqual(self.run_program("print('hello'); print('edl, 10: 1 ms against 2 ms, ratio 0.50')"),
                         ([FIGURE], ""))

    def test_a_failed_benchmark_is_complained_of_and_its_figures_stay(self) -> None:
        figures, complaint = self.run_program("print('edl, 10: 1 ms against 2 ms, ratio 0.50'); raise SystemExit(3)")
        self.assertEqual(figures, [FIGURE])
        self.assertEqual(complaint, "made up ended with status 3.")

    def test_a_benchmark_without_a_figure_is_complained_of(self) -> None:
        self.assertEqual(self.run_program("print('hello')"), ([], "made up printed no figure."))


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=1))
