"""The ground that tests of the generated scripts stand on: fills a script as the host does and runs it in a Python of
its own, in a home folder of its own, against the stand-in for Resolve."""

import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
SCRIPTS = ROOT / "src/resolve/scripts"
FAKE_RESOLVE = ROOT / "tests/fakes/resolve"

PLACEHOLDER = re.compile(r"__[A-Z_]+__")


def script_text(name: str) -> str:
    return (SCRIPTS / f"{name}.py").read_text(encoding="utf-8")


def filled(name: str, **values: str) -> str:
    """The program with its placeholders replaced in one pass: what is filled in is not looked at again."""
    values.setdefault("RESOLVE_SCRIPT_LIB", "/no/such/modules")
    values["SUBTITLE_CARDS"] = script_text("subtitle_cards")
    return PLACEHOLDER.sub(lambda match: values[match.group().strip("_")], script_text(name))


def escaped(name: str) -> str:
    """A timeline name as the host puts it between double quotes."""
    return name.replace('"', '\\"')


def quoted_paths(paths: list[str]) -> str:
    """A list of paths as the host writes it: each in single quotes, inside the list's own double quotes."""
    return json.dumps([f"'{path}'" for path in paths])


def timecode(seconds: int) -> str:
    return f"{seconds // 3600:02d}:{seconds // 60 % 60:02d}:{seconds % 60:02d}:00"


def clip(path: str, seconds: int = 120, **properties: object) -> dict:
    """A clip of the media pool. Property names are written with "_" for a blank: Start_TC."""
    named = {key.replace("_", " "): value for key, value in properties.items()}
    return {"File Path": path, "Duration": timecode(seconds), **named}


def segment(start: float, end: float, source_clip: str = "", chapter: str | None = None, translation: str = "") -> dict:
    return {
        "index": 0, "startTime": start, "endTime": end, "sourceClip": source_clip, "transcript": "",
        "translation": translation, "chapter": chapter,
    }


class Outcome:
    """What a run of a script printed, and how it ended."""

    def __init__(self, done: subprocess.CompletedProcess) -> None:
        self.stdout: str = done.stdout
        self.stderr: str = done.stderr
        self.status: int = done.returncode
        self.lines: list[str] = done.stdout.splitlines()

    def starting_with(self, prefix: str) -> list[str]:
        return [line for line in self.lines if line.startswith(prefix)]


class ScriptTest(unittest.TestCase):
    """`world` is what Resolve finds; the files of the cache folder are written by the given_... methods."""

    def setUp(self) -> None:
        holder = tempfile.TemporaryDirectory(prefix="zuvo résolve ")
        self.addCleanup(holder.cleanup)
        self.folder = Path(holder.name)
        self.home = self.folder / "home"
        self.cache = self.home / "Library/Caches/ZuvoManager"
        self.cache.mkdir(parents=True)
        self.world_file = self.folder / "world.json"
        self.log_file = self.folder / "calls.jsonl"
        self.world: dict | None = {}

    def given_json(self, name: str, value: object) -> None:
        (self.cache / name).write_text(json.dumps(value), encoding="utf-8")

    def given_segments(self, *segments: dict) -> None:
        self.given_json("segments.json", list(segments))

    def given_clips(self, *clips: dict) -> None:
        self.world["mediaPool"] = {"clips": list(clips)}

    def given_failure(self, method: str, **how: object) -> None:
        self.world.setdefault("failures", []).append({"method": method, **how})

    def environment(self) -> dict[str, str]:
        return {
            "PATH": os.environ["PATH"],
            "HOME": str(self.home),
            "LC_ALL": "tr_TR.UTF-8",
            "TZ": "Asia/Kathmandu",
            "PYTHONDONTWRITEBYTECODE": "1",
            "PYTHONPATH": str(FAKE_RESOLVE),
            "FAKE_RESOLVE_WORLD": str(self.world_file),
            "FAKE_RESOLVE_LOG": str(self.log_file),
        }

    def run_program(self, program: str, environment: dict[str, str] | None = None) -> Outcome:
        """Runs a filled program; a `world` that is still to be written is written first."""
        if self.world is not None:
            self.world_file.write_text(json.dumps(self.world), encoding="utf-8")
            self.log_file.write_text("")
        self.world = None
        done = subprocess.run([sys.executable, "-c", program], env=environment or self.environment(),
                              stdin=subprocess.DEVNULL, capture_output=True, encoding="utf-8", timeout=60)
        return Outcome(done)

    def run_script(self, name: str, timeline: str = "Cut", media_paths: tuple[str, ...] = ()) -> Outcome:
        return self.run_program(filled(
            name,
            TIMELINE_NAME=escaped(timeline),
            SEGMENTS_PATH=str(self.cache / "segments.json"),
            MEDIA_PATHS=quoted_paths(list(media_paths)),
        ))

    def world_after(self) -> dict:
        return json.loads(self.world_file.read_text(encoding="utf-8"))

    def timeline_after(self) -> dict:
        """The timeline that was made last."""
        return self.world_after()["timelines"][-1]

    def audio_items_after(self) -> list[dict]:
        return self.timeline_after()["tracks"]["audio"][0]

    def all_calls(self) -> list[dict]:
        """What the scripts asked of Resolve, in order."""
        return [json.loads(line) for line in self.log_file.read_text(encoding="utf-8").splitlines()]

    def calls(self, method: str) -> list[dict]:
        return [call for call in self.all_calls() if call["method"] == method]

    def then_ended_well(self, outcome: Outcome) -> None:
        self.assertEqual(("", 0), (outcome.stderr, outcome.status))
