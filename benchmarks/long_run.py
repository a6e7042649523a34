#!/usr/bin/env python3
"""Mines hours of footage with the real program, ffmpeg and the stand-in, and tells what it needed.

    long_run.py BUILD_FOLDER [HOURS ...]        2, 4 and 8 hours if none are named

The footage is a sound whose level climbs in steps, and each 300 s of it have 125 transcript lines: eight hours make 96
chunks and 12000 lines. Needs 3 GB of room in the folder for temporary files. Ends with 1 if a mine fails, if files stay
open or if the memory grows from chunk to chunk; what it may grow with is the samples that levels are measured on.
"""

import json
import os
import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path

CHUNK_SECONDS = 300
STEP_SECONDS = 12
LINES_PER_CHUNK = 125
WORDS = ({"word": "Here", "start": 0.5, "end": 1.0}, {"word": "I", "start": 1.0, "end": 1.4})
# 8-bit steps would do; the levels are those of the end-to-end tests' footage, for the same reason: loud parts are told
# from quiet ones.
LEVELS = "if(lt(t,2),0.005,if(lt(t,4),0.25,0.5))*sin(2*PI*300*t)"
MEGABYTE = 1024 * 1024
# The first requests fill the C library's reserves, some 25 MB, which do not grow any more. A chunk's sound is 9.6 MB.
TOLERATED_BYTES = 48 * MEGABYTE
TOLERATED_FILES = 2


def make_footage(folder: Path, hours: float) -> Path:
    """Twelve seconds of sound, repeated without being made again."""
    step, path = folder / "step.wav", folder / "interview.wav"
    quiet = ["ffmpeg", "-y", "-v", "error", "-nostdin"]
    subprocess.run([*quiet, "-f", "lavfi", "-i", f"aevalsrc='{LEVELS}':s=8000:d={STEP_SECONDS}", step], check=True)
    repeats = round(hours * 3600 / STEP_SECONDS) - 1
    subprocess.run([*quiet, "-stream_loop", str(repeats), "-i", step, "-c", "copy", path], check=True)
    step.unlink()
    return path


def transcription_answer() -> str:
    seconds = CHUNK_SECONDS / LINES_PER_CHUNK
    lines = [{"start": i * seconds, "end": (i + 1) * seconds, "text": f" Line {i} of what is said in this piece."}
             for i in range(LINES_PER_CHUNK)]
    return json.dumps({"text": "", "language": "english", "segments": lines, "words": WORDS})


def start_services(program: Path) -> tuple[subprocess.Popen, dict[str, str]]:
    services = subprocess.Popen([program, "--fail", "transcription:body=" + transcription_answer()],
                                stdout=subprocess.PIPE, text=True)
    return services, dict(services.stdout.readline().strip().split("=", 1) for _ in range(3))


def resident_bytes(process: int) -> int:
    status = Path(f"/proc/{process}/status").read_text(encoding="utf-8")
    return int(re.search(r"VmRSS:\s+(\d+) kB", status).group(1)) * 1024


def open_files(process: int) -> int:
    return len(os.listdir(f"/proc/{process}/fd"))


def mine(program: Path, footage: Path, home: Path, addresses: dict[str, str]) -> dict:
    """What the run came to: memory in bytes and open files at each chunk, the most memory, lines and chunks."""
    environment = {"HOME": str(home), "TMPDIR": str(home), "PATH": "/nowhere", "OPENAI_API_KEY": "made-up",
                   "ANTHROPIC_API_KEY": "made-up", **addresses}
    start = time.monotonic()
    with open(home / "errors.txt", "w", encoding="utf-8") as errors:
        run = subprocess.Popen([program, "mine", footage, "--json"], env=environment, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=errors, text=True)
    memory, files, last, said = [], [], {}, []
    for line in run.stdout:
        last = json.loads(line)
        said.append(last.get("text", ""))
        if said[-1].startswith("  Transcribing chunk"):
            memory.append(resident_bytes(run.pid))
            files.append(open_files(run.pid))
    _, status, usage = os.wait4(run.pid, 0)
    run.returncode = os.waitstatus_to_exitcode(status)
    lines = next((re.match(r"(\d+) segments", text).group(1) for text in said if re.match(r"\d+ segments", text)), "0")
    return {"status": run.returncode, "step": last.get("step"), "seconds": time.monotonic() - start,
            "memory": memory, "files": files, "most": usage.ru_maxrss * 1024, "lines": int(lines), "said": said}


def complaints(outcome: dict, hours: float) -> list[str]:
    found = []
    chunks = round(hours * 3600 / CHUNK_SECONDS)
    if outcome["status"] != 0 or outcome["step"] != "complete":
        found.append("the mine failed: " + " / ".join(outcome["said"][-4:]))
    if len(outcome["memory"]) != chunks or outcome["lines"] != chunks * LINES_PER_CHUNK:
        found.append(f"{len(outcome['memory'])} chunks and {outcome['lines']} lines are not all of it")
    memory = outcome["memory"]
    if memory and memory[-1] - memory[0] > TOLERATED_BYTES:
        found.append(f"memory grew by {(memory[-1] - memory[0]) / MEGABYTE:.0f} MB while chunks were transcribed")
    files = outcome["files"][1:]
    if files and files[-1] - files[0] > TOLERATED_FILES:
        found.append(f"open files grew from {files[0]} to {files[-1]}")
    return found


def main() -> int:
    if len(sys.argv) < 2:
        print(__doc__, file=sys.stderr)
        return 2
    build = Path(sys.argv[1])
    hours_of_runs = [float(word) for word in sys.argv[2:]] or [2.0, 4.0, 8.0]
    failed = False
    print(f"{'hours':>6}{'chunks':>8}{'lines':>8}{'seconds':>9}{'MB at chunk 2':>15}{'at the last':>13}"
          f"{'most MB':>9}{'samples MB':>12}{'files at 2':>12}{'at the last':>13}", flush=True)
    for hours in hours_of_runs:
        with tempfile.TemporaryDirectory(prefix="zuvo-long-run-") as name:
            folder = Path(name)
            (folder / "home").mkdir()
            footage = make_footage(folder, hours)
            services, addresses = start_services(build / "tools/standin/zuvo-standin")
            try:
                outcome = mine(build / "src/cli/zuvo", footage, folder / "home", addresses)
            finally:
                services.terminate()
                services.wait()
        memory, files = outcome["memory"] or [0], outcome["files"] or [0]
        second = min(1, len(memory) - 1)
        print(f"{hours:>6g}{len(outcome['memory']):>8}{outcome['lines']:>8}{outcome['seconds']:>9.0f}"
              f"{memory[second] / MEGABYTE:>15.1f}{memory[-1] / MEGABYTE:>13.1f}{outcome['most'] / MEGABYTE:>9.1f}"
              f"{hours * 3600 * 2000 / MEGABYTE:>12.1f}{files[second]:>12}{files[-1]:>13}", flush=True)
        for complaint in complaints(outcome, hours):
            print(f"  {complaint}", flush=True)
            failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
