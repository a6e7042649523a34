"""That programs of others read what stands in the golden files: xmllint the documents, a SubRip parser the subtitles."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

try:
    import srt
except ImportError:
    sys.exit("Python's srt is missing: install python3-srt.")

GOLDEN = Path(__file__).resolve().parents[1] / "golden"


def xmllint(*arguments: str) -> subprocess.CompletedProcess:
    return subprocess.run(["xmllint", "--nonet", "--noout", *arguments], capture_output=True, text=True, timeout=60,
                          check=False)


class DocumentsTest(unittest.TestCase):
    def expect_every_document_is_read(self, ending: str) -> None:
        documents = sorted(str(path) for path in (GOLDEN / "exporters").glob("*" + ending))
        self.assertGreaterEqual(len(documents), 8)
        run = xmllint(*documents)
        self.assertEqual((run.returncode, run.stderr), (0, ""))

    def test_xmllint_reads_every_fcpxml_document(self) -> None:
        self.expect_every_document_is_read(".fcpxml")

    def test_xmllint_reads_every_xmeml_document(self) -> None:
        self.expect_every_document_is_read(".xml")

    def test_xmllint_refuses_a_document_that_is_cut_off(self) -> None:
        whole = (GOLDEN / "exporters/names.fcpxml").read_text(encoding="utf-8")
        with tempfile.NamedTemporaryFile("w", suffix=".fcpxml", encoding="utf-8") as document:
            document.write(whole.replace("</spine>", "", 1))
            document.flush()
            self.assertNotEqual(xmllint(document.name).returncode, 0)

    def test_every_story_has_a_golden_document_of_each_format(self) -> None:
        stories = {ending: {path.stem for path in (GOLDEN / "exporters").glob("*" + ending)}
                   for ending in (".edl", ".fcpxml", ".xml")}
        self.assertGreaterEqual(len(stories[".edl"]), 8)
        self.assertEqual(stories[".edl"], stories[".fcpxml"])
        self.assertEqual(stories[".edl"], stories[".xml"])


class SubtitlesTest(unittest.TestCase):
    def test_a_subrip_parser_reads_every_golden_file_to_its_end(self) -> None:
        files = sorted(GOLDEN.rglob("*.srt"))
        self.assertTrue(files)
        for path in files:
            with self.subTest(file=path.name):
                text = path.read_text(encoding="utf-8")
                cards = list(srt.parse(text, ignore_errors=False))
                self.assertEqual([card.index for card in cards], list(range(1, len(cards) + 1)))
                self.assertEqual(len(cards), text.count(" --> "))
                for card in cards:
                    self.assertTrue(card.content)
                    self.assertLess(card.start, card.end)
                # Nothing was passed over: written anew by the other side, it is the same file.
                self.assertEqual(srt.compose(cards, reindex=False), text)

    def test_the_parser_refuses_what_is_no_subrip(self) -> None:
        with self.assertRaises(srt.SRTParseError):
            list(srt.parse("1\n00:00:01 -> 00:00:02\nwords\n\n", ignore_errors=False))


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=1))
