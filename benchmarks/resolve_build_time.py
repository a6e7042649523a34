#!/usr/bin/env python3
"""What the final timeline build costs by itself, against the stand-in for Resolve and without its pauses.

    resolve_build_time.py

Prints the time for each number of segments and its ratio to a growth in proportion, the smallest story being 1, in lines
for ./bench. Figures to read: nothing passes or fails.
"""

import json
import math
import os
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tests/scripts/resolve"))

from script_fixture import FAKE_RESOLVE, clip, filled, segment  # noqa: E402

SEGMENT_COUNTS = (100, 500, 2000)
WORDS = 24
SEGMENT_SECONDS = 8.0
CLIPS = 6
CLIP_SECONDS = 3600
RUNS = 3

# Runs the program named first with pauses that take no time, and tells how long it took.
MEASURE = """
import sys, time
pauses = []
time.sleep = pauses.append
program = compile(open(sys.argv[1], encoding="utf-8").read(), "final_build", "exec")
start = time.perf_counter()
exec(program, {"__name__": "__main__"})
print(time.perf_counter() - start, sum(pauses), file=sys.stderr)
"""


def story(count: int) -> tuple[list[dict], list[dict]]:
    """Segments and their words, spread over all clips."""
    spacing = CLIPS * CLIP_SECONDS / count
    text = " ".join(f"word{i}," if i % 6 == 5 else f"word{i}" for i in range(WORDS))
    length = SEGMENT_SECONDS / WORDS
    spoken = [{"word": "x", "start": i * length, "end": (i + 1) * length} for i in range(WORDS)]
    segments = [segment(i * spacing, i * spacing + SEGMENT_SECONDS, "", f"Chapter {i // 10}", text)
                for i in range(count)]
    return segments, [{"segmentIndex": i, "words": spoken} for i in range(count)]


def run(folder: Path, count: int) -> tuple[float, float]:
    """Seconds that one build takes, and seconds of the pauses it left out."""
    cache = folder / "Library/Caches/ZuvoManager"
    cache.mkdir(parents=True, exist_ok=True)
    (folder / "Desktop").mkdir(exist_ok=True)
    segments, words = story(count)
    (cache / "segments.json").write_text(json.dumps(segments))
    (cache / "word_timestamps.json").write_text(json.dumps(words))
    world = folder / "world.json"
    clips = [clip(f"/footage/{number}.wav", CLIP_SECONDS) for number in range(CLIPS)]
    world.write_text(json.dumps({"mediaPool": {"clips": clips}}))
    program = folder / "program.py"
    program.write_text(filled("final_build", TIMELINE_NAME="Bench", SEGMENTS_PATH=str(cache / "segments.json")),
                       encoding="utf-8")
    environment = {**os.environ, "HOME": str(folder), "PYTHONPATH": str(FAKE_RESOLVE), "FAKE_RESOLVE_WORLD": str(world),
                   "PYTHONDONTWRITEBYTECODE": "1"}
    environment.pop("FAKE_RESOLVE_LOG", None)
    done = subprocess.run([sys.executable, "-c", MEASURE, str(program)], env=environment, stdin=subprocess.DEVNULL,
                          capture_output=True, encoding="utf-8", check=True)
    last_line = done.stdout.splitlines()[-1]
    if last_line != f"SUCCESS:{count}/{count} clips appended":
        raise RuntimeError(f"the build came to another end: {last_line}")
    seconds, pauses = map(float, done.stderr.split())
    return seconds, pauses


def main() -> None:
    figures = {}
    for count in SEGMENT_COUNTS:
        with tempfile.TemporaryDirectory(prefix="zuvo build ") as folder:
            figures[count] = min(run(Path(folder), count) for _ in range(RUNS))
    smallest, largest = min(figures), max(figures)
    least = figures[smallest][0] / smallest
    for count, (seconds, pauses) in figures.items():
        print(f"card script of so many moments, {count}: {seconds * 1000:.1f} ms without {pauses:.1f} s of pauses, against "
              f"growth in proportion, ratio {seconds / count / least:.2f}")
    exponent = math.log(figures[largest][0] / figures[smallest][0]) / math.log(largest / smallest)
    print(f"card script of so many moments, growth: {smallest} to {largest}, exponent {exponent:.2f}")


if __name__ == "__main__":
    main()
