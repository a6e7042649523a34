#!/usr/bin/env python3
"""Runs the benchmarks one after the other and gathers their figures in one table.

    report.py ROOT [--list | --markdown | NAME...]     ./bench runs this, once all is built

A figure is any line that a benchmark prints in one of the forms

    WHAT: WORDS, ratio NUMBER
    WHAT: WORDS, exponent NUMBER

With NAMEs only the benchmarks run whose name contains one of them. --markdown runs all and also puts the table into
docs/performance.md, between its two marks.
"""

import os
import re
import subprocess
import sys
from pathlib import Path
from typing import NamedTuple

FIGURE = re.compile(r"(?P<what>[^:]+): (?P<words>.+), (?P<kind>ratio|exponent) (?P<number>-?[0-9.]+)")
MARK_BEFORE = "<!-- figures: written by ./bench --markdown -->"
MARK_AFTER = "<!-- end of figures -->"


class Benchmark(NamedTuple):
    name: str
    command: list[str]  # {build} and {root} stand for the folders


GOOGLE = ["--benchmark_min_time=0.3", "--benchmark_color=false"]

# A new benchmark is a line here.
BENCHMARKS = [
    Benchmark("steps", ["{build}/benchmarks/zuvo_steps_bench", *GOOGLE]),
    Benchmark("samples", ["{build}/benchmarks/zuvo_samples_bench", *GOOGLE]),
    Benchmark("exporters", ["{build}/benchmarks/zuvo_exporters_bench", *GOOGLE]),
    Benchmark("card-script", ["python3", "{root}/benchmarks/resolve_build_time.py"]),
    Benchmark("window-start", ["python3", "{root}/benchmarks/window_start.py", "{build}/benchmarks/zuvo_window_start"]),
    Benchmark("echo", ["{build}/benchmarks/zuvo_echo_bench", *GOOGLE]),
    Benchmark("frames", ["{build}/benchmarks/zuvo_frames_bench"]),
    Benchmark("mine", ["python3", "{root}/benchmarks/whole_mine.py", "{build}"]),
]

# What a figure should stay below, by the beginning of its name and its kind.
AIMS = {
    ("wall time of a mine", "ratio"): "1.05",
    ("own processor time of a mine", "ratio"): "0.05",
    ("memory of a mine", "ratio"): "1",
    ("thresholds of so many lines, 100000", "ratio"): "100",
    ("energies of so many hours", "ratio"): "4",
    ("start to first frame", "ratio"): "2",
}


class Figure(NamedTuple):
    what: str
    words: str
    kind: str
    number: str

    @property
    def aim(self) -> str:
        return next((aim for (beginning, kind), aim in AIMS.items()
                     if self.kind == kind and self.what.startswith(beginning)), "")


def figure_of(line: str) -> Figure | None:
    """The figure that the line tells, if it does."""
    match = FIGURE.fullmatch(line.strip())
    return Figure(*match.group("what", "words", "kind", "number")) if match else None


def run(benchmark: Benchmark, root: Path) -> tuple[list[Figure], str]:
    """Runs the benchmark, showing what it prints: its figures, and what is to be complained of."""
    print(f"\n== {benchmark.name}", flush=True)
    command = [part.format(build=root / "build/bench", root=root) for part in benchmark.command]
    figures = []
    with subprocess.Popen(command, cwd=root / "build/bench", stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          text=True) as process:
        assert process.stdout is not None
        for line in process.stdout:
            print(line, end="", flush=True)
            if figure := figure_of(line):
                figures.append(figure)
    if process.returncode != 0:
        return figures, f"{benchmark.name} ended with status {process.returncode}."
    return figures, "" if figures else f"{benchmark.name} printed no figure."


def print_table(figures: list[Figure]) -> None:
    width = max((len(figure.what) for figure in figures), default=0)
    print(f"\n{'':{width}}  {'':8}  {'figure':>8}  {'aim':>6}")
    for figure in figures:
        aim = f"< {figure.aim}" if figure.aim else ""
        print(f"{figure.what:{width}}  {figure.kind:8}  {figure.number:>8}  {aim:>6}")


def with_table(page: str, figures: list[Figure]) -> str | None:
    """The page with the figures between its two marks; nothing if it lacks them."""
    rows = ["| what | measured | | figure | aim |", "|---|---|---|---:|---:|"]
    for figure in figures:
        aim = f"&lt; {figure.aim}" if figure.aim else ""
        rows.append(f"| {figure.what} | {figure.words} | {figure.kind} | {figure.number} | {aim} |")
    before, _, rest = page.partition(MARK_BEFORE)
    _, mark, after = rest.partition(MARK_AFTER)
    return "\n".join([before + MARK_BEFORE, "", *rows, "", MARK_AFTER + after]) if mark else None


def put_into(page: Path, figures: list[Figure]) -> str:
    """Writes the table into the page, and gives what is to be complained of."""
    text = with_table(page.read_text(encoding="utf-8"), figures)
    if text is None:
        return f"{page} has lost the marks of its table."
    page.write_text(text, encoding="utf-8")
    print(f"\nThe table is in {page}. It was measured on {os.cpu_count()} cores.")
    return ""


def main() -> int:
    if len(sys.argv) < 2:
        print(__doc__)
        return 2
    root = Path(sys.argv[1]).resolve()
    names = [word for word in sys.argv[2:] if not word.startswith("-")]
    options = [word for word in sys.argv[2:] if word.startswith("-")]
    chosen = [benchmark for benchmark in BENCHMARKS if not names or any(name in benchmark.name for name in names)]
    if options not in ([], ["--list"], ["--markdown"]) or (options and names) or not chosen:
        print(__doc__, file=sys.stderr)
        return 2
    if "--list" in options:
        print("\n".join(benchmark.name for benchmark in chosen))
        return 0
    figures: list[Figure] = []
    complaints = []
    for benchmark in chosen:
        found, complaint = run(benchmark, root)
        figures += found
        complaints.append(complaint)
    print_table(figures)
    if "--markdown" in options:
        complaints.append(put_into(root / "docs/performance.md", figures))
    complaints = [complaint for complaint in complaints if complaint]
    print("\n".join(complaints), end="\n" if complaints else "", file=sys.stderr)
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
