#!/usr/bin/env python3
"""What the window costs: time from the start of its process to its first frame, and memory at rest, as ratios to two
baselines of the same run.

    window_start.py PROGRAM      PROGRAM is zuvo_window_start; ./bench runs this

"empty" is the fair one: the empty window of a Qt Quick application, made by an engine that loads
`import QtQuick; Window { visible: true }`. "bare" is a QQuickWindow that no engine made: no application with pages can
come near to it. All three are the same program with the same libraries, size and platform, and their starts alternate.

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


def compared(figures: dict[str, float], factor: float, unit: str, decimals: int) -> str:
    """The three figures, and the application's ratio to an empty window."""
    amounts = ", ".join(f"{kind} {figure * factor:.{decimals}f} {unit}" for kind, figure in figures.items())
    application = figures["application"]
    return (f"{amounts} (application to bare {application / figures['bare']:.2f}), "
            f"ratio {application / figures['empty']:.2f}")


def main() -> int:
    if len(sys.argv) != 2:
        print(__doc__)
        return 2
    figures: dict[str, list[tuple[float, float]]] = {"bare": [], "empty": [], "application": []}
    for kind in figures:  # the first start reads from the disk
        one_start(sys.argv[1], kind)
    for _ in range(RUNS):
        for kind, kept in figures.items():
            kept.append(one_start(sys.argv[1], kind))
    seconds = {kind: statistics.median(run[0] for run in kept) for kind, kept in figures.items()}
    memory = {kind: statistics.median(run[1] for run in kept) for kind, kept in figures.items()}
    print(f"start to first frame, median of {RUNS}: " + compared(seconds, 1000, "ms", 0))
    print("memory at rest (proportional set): " + compared(memory, 1, "MiB", 1))
    return 0


if __name__ == "__main__":
    sys.exit(main())
