"""What is installed, and what the desktop is told of it."""

import configparser
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
ENTRY = ROOT / "packaging/zuvo-manager.desktop"
ICON = ROOT / "resources/symbols/zuvo-manager.svg"
BUILD = Path(sys.argv.pop()) if len(sys.argv) > 1 and not sys.argv[-1].startswith("-") else None


class DesktopEntryTest(unittest.TestCase):
    def entry(self) -> configparser.SectionProxy:
        parser = configparser.ConfigParser(interpolation=None, delimiters=("=",))
        parser.optionxform = str
        parser.read_string(ENTRY.read_text())
        return parser["Desktop Entry"]

    def test_links_of_the_scheme_are_opened_with_the_application(self) -> None:
        entry = self.entry()
        self.assertIn("x-scheme-handler/zuvo-manager", entry["MimeType"].split(";"))
        self.assertEqual(entry["Exec"], "ZuvoManager %u")
        self.assertEqual(entry["Terminal"], "false")

    def test_the_entry_is_valid_by_the_desktops_own_rules(self) -> None:
        run = subprocess.run(["desktop-file-validate", str(ENTRY)], capture_output=True, text=True, check=False)
        self.assertEqual((run.returncode, run.stdout), (0, ""))

    def test_the_icon_it_names_is_a_square_drawing(self) -> None:
        self.assertEqual(self.entry()["Icon"], ICON.stem)
        drawing = xml.etree.ElementTree.parse(ICON).getroot()
        self.assertEqual(drawing.get("width"), drawing.get("height"))
        self.assertGreater(len(drawing), 3)


@unittest.skipIf(BUILD is None, "without a build there is nothing to install")
class InstallTest(unittest.TestCase):
    def test_programs_plugin_entry_and_icon_land_in_their_places(self) -> None:
        with tempfile.TemporaryDirectory() as place:
            subprocess.run(["cmake", "--install", str(BUILD), "--prefix", place], check=True, capture_output=True)
            for file in ("bin/ZuvoManager", "bin/zuvo", "share/zuvo-manager/plugin/manifest.json",
                         "share/zuvo-manager/plugin/version.json", "share/zuvo-manager/plugin/index.html",
                         "share/applications/zuvo-manager.desktop",
                         "share/icons/hicolor/scalable/apps/zuvo-manager.svg"):
                self.assertTrue((Path(place) / file).is_file(), file)


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=1))
