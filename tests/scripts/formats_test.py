"""Holds the examples of docs/formats.md to the files of a real mine: the sample interview against the stand-in.

An example in JSON has the keys of the real file, all of them and no other, and its tables name each of them; an example
of another form is how the real file begins.
"""

import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SAMPLE = ROOT / "resources/sample"
BUILD = Path(sys.argv.pop()) if len(sys.argv) > 1 and not sys.argv[-1].startswith("-") else None


def sections() -> dict[str, str]:
    """The text below each heading of the second level; a heading within an example is none."""
    found = {}
    heading, is_example = "", False
    for line in (ROOT / "docs/formats.md").read_text().splitlines(keepends=True):
        if line.startswith("```"):
            is_example = not is_example
        if line.startswith("## ") and not is_example:
            heading = line[3:].strip()
        found[heading] = found.get(heading, "") + line
    return found


def example(section: str, form: str) -> str:
    """What stands between ```form and ``` in a section, once."""
    found = re.findall(rf"^```{form}\n(.*?)^```$", sections()[section], re.MULTILINE | re.DOTALL)
    if len(found) != 1:
        raise AssertionError(f"{len(found)} examples under {section}")
    return found[0]


def shape(value: object, names: tuple[str, ...] = ()) -> set[str]:
    """The paths of all keys: {"a": [{"b": 1}]} has a and a[].b. Keys that are names of files are one."""
    if isinstance(value, list):
        return {"[]." + path for entry in value for path in shape(entry, names)}
    if not isinstance(value, dict):
        return set()
    paths = set()
    for key, entry in value.items():
        key = "*" if key in names else key
        paths |= {key} | {f"{key}.{path}".replace(".[]", "[]") for path in shape(entry, names)}
    return paths


class TableTest(unittest.TestCase):
    def test_each_key_of_an_example_stands_in_a_table_or_a_grammar_above_it(self) -> None:
        looked_at = 0
        for heading, text in sections().items():
            for block in re.findall(r"^```json\n(.*?)^```$", text, re.MULTILINE | re.DOTALL):
                looked_at += 1
                told = re.sub(r"^```json\n.*?^```$", "", text, flags=re.MULTILINE | re.DOTALL)
                # The story is described once, and refers to lines of project.json.
                if "as in mining_results.json" in told:
                    told += sections()["mining_results.json"]
                if "as above" in told:
                    told += sections()["project.json"]
                for key in re.findall(r'"(\w+)":', block):
                    self.assertRegex(told, rf"[`\" ]{key}[`\":]", f"{key} of {heading}")
        self.assertGreaterEqual(looked_at, 8)


@unittest.skipIf(BUILD is None, "without a build there is nothing to mine with")
class MineTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.holder = tempfile.TemporaryDirectory()
        cls.home = Path(cls.holder.name) / "home"
        (cls.home / "temporary").mkdir(parents=True)
        cls.zuvo("mine", "--preset", "portrait", *(str(file) for file in sorted(SAMPLE.glob("*.m4a"))))
        for form in ("edl", "fcpxml", "premiere"):
            cls.zuvo("export", form, "--project", "Dropped Files (2)")

    @classmethod
    def tearDownClass(cls) -> None:
        cls.holder.cleanup()

    @classmethod
    def zuvo(cls, *words: str) -> None:
        environment = {"PATH": os.environ["PATH"], "HOME": str(cls.home), "TMPDIR": str(cls.home / "temporary"),
                       "LANG": "C.UTF-8"}
        subprocess.run([BUILD / "tools/standin/zuvo-standin", "--", BUILD / "src/cli/zuvo", *words], check=True,
                       capture_output=True, env=environment)

    def exported(self, name: str) -> str:
        folder = self.home / "Library/Application Support/ZuvoManager/exports/Dropped Files (2)"
        return (folder / name).read_text()

    def cached(self, name: str) -> str:
        return next((self.home / "Library/Caches/ZuvoManager").rglob(name)).read_text()

    def test_examples_in_json_have_the_keys_of_the_real_files(self) -> None:
        names = tuple(file.name for file in SAMPLE.glob("*.m4a"))
        real = {name: self.exported(name) for name in ("project.json", "mining_results.json")}
        real |= {name: self.cached(name) for name in ("transcript.json", "probe_results.json", "segments.json",
                                                      "word_timestamps.json")}
        for name, text in real.items():
            told = json.loads(example(name, "json"))
            self.assertEqual(shape(told, names), shape(json.loads(text), names), name)

    def test_examples_of_texts_are_how_the_real_files_begin(self) -> None:
        for name, form in (("transcript.txt", "text"), ("subtitles.srt", "text"), ("story_brief.md", "text"),
                           ("story_edit.edl", "text"), ("story_edit.fcpxml", "xml"),
                           ("story_edit_premiere.xml", "xml")):
            real = self.exported(name).replace(str(SAMPLE), "/footage")
            real = re.sub(r"(Generated by Zuvo on ).*", r"\g<1>2026-11-21 17:00:00 +0000", real)
            told = example(name, form)
            self.assertGreater(len(told.splitlines()), 3, name)
            self.assertEqual(real[:len(told)], told, name)


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=1))
