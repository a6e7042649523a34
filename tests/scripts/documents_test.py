"""Whether what the documents lead to is there: files, headings, pictures, and words of ./run and ./test."""

import re
import subprocess
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
DOCUMENTS = [*ROOT.glob("*.md"), *ROOT.glob("docs/**/*.md")]
PICTURES = ROOT / "docs/pictures"
MEGABYTE = 1_000_000


def without_examples(text: str) -> str:
    return re.sub(r"^```.*?^```$", "", text, flags=re.MULTILINE | re.DOTALL)


def anchors(document: Path) -> set[str]:
    """Of the headings, as the hosts of such documents name them: lower case, punctuation dropped, blanks to hyphens."""
    found = set()
    for heading in re.findall(r"^#+ (.+)$", without_examples(document.read_text()), re.MULTILINE):
        found.add(re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-"))
    return found


class LinkTest(unittest.TestCase):
    def test_every_link_within_the_tree_leads_somewhere(self) -> None:
        count = 0
        for document in DOCUMENTS:
            for target in re.findall(r"\]\(([^)\s]+)\)", without_examples(document.read_text())):
                if "://" in target:
                    continue
                count += 1
                path, _, anchor = target.partition("#")
                led_to = document if not path else (document.parent / path)
                self.assertTrue(led_to.exists(), f"{document.name}: {target}")
                if anchor:
                    self.assertIn(anchor, anchors(led_to), f"{document.name}: {target}")
        self.assertGreater(count, 50)

    def test_every_picture_is_shown_and_together_they_are_small(self) -> None:
        shown = "".join(document.read_text() for document in DOCUMENTS)
        pictures = sorted(PICTURES.glob("*"))
        self.assertGreater(len(pictures), 10)
        for picture in pictures:
            self.assertEqual(picture.suffix, ".png")
            self.assertIn(f"pictures/{picture.name})", shown)
        self.assertLess(sum(picture.stat().st_size for picture in pictures), 3 * MEGABYTE)

    def test_a_picture_says_in_words_what_it_shows(self) -> None:
        for document in DOCUMENTS:
            for words in re.findall(r"!\[([^\]]*)\]\(", document.read_text()):
                self.assertGreater(len(words.split()), 3, document.name)


class ArchitectureTest(unittest.TestCase):
    def test_the_table_of_folders_names_every_folder_and_no_other(self) -> None:
        table = (ROOT / "docs/architecture.md").read_text().split("## Folders")[1].split("\n## ")[0]
        named = set(re.findall(r"^\| `([a-z]+(?:/[a-z]+)?)/` \|", table, re.MULTILINE))
        kept = subprocess.run(["git", "-C", ROOT, "ls-files"], capture_output=True, text=True, check=False).stdout
        if not kept:
            self.skipTest("not a working tree of git")
        # Of these folders the table names each one within.
        parted = ("src", "tools", "resources")
        there = set()
        for file in kept.splitlines():
            parts = file.split("/")
            if len(parts) > 1 and not parts[0].startswith("."):
                there.add("/".join(parts[:2]) if parts[0] in parted and len(parts) > 2 else parts[0])
        self.assertEqual(named, there - {"docs"})


class CommandTest(unittest.TestCase):
    def test_every_part_of_the_tests_that_a_document_names_is_told_by_their_help(self) -> None:
        usage = subprocess.run([ROOT / "test", "--help"], capture_output=True, text=True, check=True).stdout
        known = set(re.findall(r"^\./test ([a-z-]+)", usage, re.MULTILINE))
        self.assertIn("guide-pictures", known)
        for document in DOCUMENTS:
            for name in re.findall(r"\./test ([a-z][a-z-]+)(?![\w/])", document.read_text()):
                self.assertIn(name, known, document.name)

    def test_the_first_screen_of_the_readme_names_both_commands_and_shows_the_product(self) -> None:
        lines = (ROOT / "README.md").read_text().splitlines()
        self.assertIn("./run", "".join(lines[:5]))
        self.assertIn("./test", "".join(lines[:5]))
        self.assertIn("![", "".join(lines[:12]))


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=1))
