#!/usr/bin/env python3
"""What the window costs: time from the start of its process to its first frame, and memory at rest, as ratios to a Qt
Quick window with nothing in it in the same run.

    window_start.py PROGRAM      PROGRAM is zuvo_window_start; ./bench runs this

Figures to read: nothing passes or fails. Without QT_QPA_PLATFORM windows are drawn to no screen.
"""

import os
import statistics
import subprocess
import sys
import time

RUNS = 15


def one_start(program: str, kind: str) -> tuple[float, float]:
    """Seconds to the first frame, and MiB of memory that is the process's alone at rest."""
    environment = {"QT_QPA_PLATFORM": "offscreen", "QT_QUICK_BACKEND": "software"} | dict(os.environ)
    begin = time.perf_counter()
    with subprocess.Popen([program, kind], env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True) as process:
        assert process.stdout is not None and process.stdin is not None
        line = process.stdout.readline()
        seconds = time.perf_counter() - begin
        if line != "first frame\n":
            sys.exit(f"{kind}: no first frame")
        process.stdout.readline()
        with open(f"/proc/{process.pid}/smaps_rollup", encoding="ascii") as rollup:
            pss = next(int(row.split()[1]) for row in rollup if row.startswith("Pss:"))
        process.stdin.close()
    return seconds, pss / 1024


def main() -> int:
    if len(sys.argv) != 2:
        print(__doc__)
        return 2
    figures: dict[str, list[tuple[float, float]]] = {"empty": [], "application": []}
    for kind in figures:  # the first start reads from the disk
        one_start(sys.argv[1], kind)
    for _ in range(RUNS):
        for kind, kept in figures.items():
            kept.append(one_start(sys.argv[1], kind))
    seconds = {kind: statistics.median(run[0] for run in kept) for kind, kept in figures.items()}
    memory = {kind: statistics.median(run[1] for run in kept) for kind, kept in figures.items()}
    print(f"start to first frame, median of {RUNS}: empty {seconds['empty'] * 1000:.0f} ms, "
          f"application {seconds['application'] * 1000:.0f} ms, ratio {seconds['application'] / seconds['empty']:.2f}")
    print(f"memory at rest (proportional set): empty {memory['empty']:.1f} MiB, "
          f"application {memory['application']:.1f} MiB, ratio {memory['application'] / memory['empty']:.2f}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
