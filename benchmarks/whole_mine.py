#!/usr/bin/env python3
"""What a whole mine costs beyond the tools that it runs and the services that it asks.

    whole_mine.py FOLDER [MINUTES...]     FOLDER holds the built programs; minutes of footage, default 20 60 120

Footage is the sample interview, both recordings looped. For each length the program mines it (zuvo itself, with a record
kept of its children and its requests) against the stand-in of the services; then the same commands run once more by
themselves, one after the other. Prints, in lines for ./bench:

  wall time        of the mine from the start of its process to its end, less the time in which a request is in flight,
                   against the commands by themselves
  processor time   of the program alone, as a part of all that it and its children took
  memory           of the program at its peak, against its samples (2 bytes a thousand times a second) and 60 MB

Figures to read: nothing passes or fails.
"""

import json
import math
import os
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
RECORDINGS = ("harbour_interview_01.m4a", "harbour_interview_02.m4a")
MINUTES = (20, 60, 120)
SAMPLE_BYTES_PER_SECOND = 2000
OTHER_MEMORY = 60_000_000
# A short mine is over before the machine has settled, a long one evens out by itself.
RUNS = {20: 3}


def make_footage(folder: Path, minutes: float) -> list[str]:
    """Two files of half the length each, without coding anything anew."""
    files = []
    for name in RECORDINGS:
        files.append(str(folder / name))
        subprocess.run(["ffmpeg", "-v", "error", "-y", "-stream_loop", "-1", "-i", ROOT / "resources/sample" / name,
                        "-t", str(minutes * 30), "-c", "copy", files[-1]], stdin=subprocess.DEVNULL, check=True)
    return files


class StandIn:
    """The services, on this machine."""

    def __init__(self, program: Path) -> None:
        self.process = subprocess.Popen([program], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        assert self.process.stdout is not None
        self.addresses = dict(self.process.stdout.readline().strip().split("=", 1) for _ in range(3))

    def __enter__(self) -> "StandIn":
        return self

    def __exit__(self, *_: object) -> None:
        self.process.terminate()
        self.process.wait()


def mine(programs: Path, folder: Path, files: list[str], addresses: dict[str, str]) -> dict:
    """One mine: its record, and the seconds from the start of its process to its end."""
    home = folder / "home"
    home.mkdir(exist_ok=True)
    record = folder / "record.json"
    environment = os.environ | addresses | {
        "HOME": str(home), "TMPDIR": str(folder), "OPENAI_API_KEY": "made-up-key", "ANTHROPIC_API_KEY": "made-up-key"}
    command = [programs / "benchmarks/zuvo_recorded_mine", record, "mine", *files]
    with open(folder / "log.txt", "w", encoding="utf-8") as log:
        start = time.perf_counter()
        done = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, stdout=log, stderr=log, check=False)
        seconds = time.perf_counter() - start
    if done.returncode != 0:
        sys.exit((folder / "log.txt").read_text(encoding="utf-8"))
    return json.loads(record.read_text(encoding="utf-8")) | {"seconds": seconds}


def run_bare(programs: Path, folder: Path) -> float:
    """Seconds that the commands of the last mine take by themselves."""
    command = [programs / "benchmarks/zuvo_bare_commands", folder / "record.json"]
    return float(subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout)


def measure(programs: Path, minutes: float) -> float:
    """Prints the figures of one length; gives the program's own processor time in seconds."""
    with tempfile.TemporaryDirectory(prefix="zuvo mine ") as name, \
            StandIn(programs / "tools/standin/zuvo-standin") as services:
        folder = Path(name)
        files = make_footage(folder, minutes)
        runs = []
        for _ in range(RUNS.get(int(minutes), 1)):
            record = mine(programs, folder, files, services.addresses)
            flight = sum(request["end"] - request["start"] for request in record["requests"])
            ours = record["seconds"] - flight
            bare = run_bare(programs, folder)
            runs.append((ours / bare, ours, flight, bare, record))
    ratio, ours, flight, bare, record = sorted(runs, key=lambda run: run[0])[len(runs) // 2]
    own = statistics.median(run[4]["ownSeconds"] for run in runs)
    all_seconds = own + record["childrenSeconds"]
    memory_allowed = minutes * 60 * SAMPLE_BYTES_PER_SECOND + OTHER_MEMORY
    what = f"mine of so many minutes, {minutes:g}"
    print(f"wall time of a {what}: {ours:.2f} s beside {flight:.2f} s of {len(record['requests'])} requests, against "
          f"{bare:.2f} s of {len(record['children'])} commands, ratio {ratio:.3f}")
    print(f"own processor time of a {what}: {own:.2f} s of {all_seconds:.2f} s, ratio {own / all_seconds:.4f}")
    print(f"memory of a {what}: {record['peakBytes'] / 1e6:.1f} MB against {memory_allowed / 1e6:.1f} MB, "
          f"ratio {record['peakBytes'] / memory_allowed:.2f}", flush=True)
    return own


def main() -> int:
    if len(sys.argv) < 2:
        print(__doc__)
        return 2
    minutes = [float(text) for text in sys.argv[2:]] or list(MINUTES)
    own = {length: measure(Path(sys.argv[1]).resolve(), length) for length in minutes}
    smallest, largest = min(own), max(own)
    if largest > smallest:
        exponent = math.log(own[largest] / own[smallest]) / math.log(largest / smallest)
        print(f"own processor time of a mine of so many minutes, growth: {smallest:g} to {largest:g}, "
              f"exponent {exponent:.2f}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
