"""What is installed, and what the desktop, the shell and a reader of manual pages are told of it."""

import configparser
import gzip
import os
import plistlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
ENTRY = ROOT / "packaging/zuvo-manager.desktop"
METAINFO = ROOT / "packaging/com.tarnwick.zuvo-manager.metainfo.xml"
COMPLETION = ROOT / "packaging/completion/zuvo"
ICON = ROOT / "resources/symbols/zuvo-manager.svg"
BUILD = Path(sys.argv.pop()) if len(sys.argv) > 1 and not sys.argv[-1].startswith("-") else None


PROGRAMS = ("ZuvoManager", "zuvo", "zuvo-standin")


def project_version() -> str:
    """The one place where the version is written for the build."""
    return re.search(r"project\(ZuvoManager VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text()).group(1)


def run(*command: str, **options) -> subprocess.CompletedProcess:
    return subprocess.run(command, capture_output=True, text=True, check=False, **options)


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


class MetainfoTest(unittest.TestCase):
    def setUp(self) -> None:
        self.component = xml.etree.ElementTree.parse(METAINFO).getroot()

    def test_it_is_valid_by_the_rules_of_software_centres(self) -> None:
        validated = run("appstreamcli", "validate", "--no-net", "--no-color", str(METAINFO))
        self.assertEqual(validated.returncode, 0, validated.stdout + validated.stderr)
        self.assertNotRegex(validated.stdout, r"(?m)^[EW]:")

    def test_it_names_the_identifier_of_the_application_and_its_entry(self) -> None:
        identifier = self.component.findtext("id")
        self.assertIn(f'bundleIdentifier = "{identifier}"', (ROOT / "src/model/Constants.h").read_text())
        self.assertEqual(METAINFO.name, identifier + ".metainfo.xml")
        self.assertEqual(self.component.findtext("launchable"), ENTRY.name)
        self.assertEqual(self.component.findtext("provides/mediatype"), "x-scheme-handler/zuvo-manager")


class VersionTest(unittest.TestCase):
    """What is written by hand for readers names the version that is built."""

    def test_the_changes_begin_with_this_version(self) -> None:
        headings = re.findall(r"^## ([0-9.]+)", (ROOT / "CHANGELOG.md").read_text(), re.MULTILINE)
        self.assertEqual(headings[0], project_version())

    def test_software_centres_are_told_of_this_version_first(self) -> None:
        releases = xml.etree.ElementTree.parse(METAINFO).getroot().findall("releases/release")
        self.assertEqual(releases[0].get("version"), project_version())

    def test_the_package_begins_with_this_version(self) -> None:
        first = (ROOT / "packaging/debian/changelog.Debian").read_text().splitlines()[0]
        self.assertEqual(first, f"zuvo-manager ({project_version()}-1) unstable; urgency=medium")

    def test_no_source_writes_the_version_a_second_time(self) -> None:
        written = [str(path.relative_to(ROOT)) for folder in ("src", "tools") for path in (ROOT / folder).rglob("*")
                   if path.suffix in (".h", ".cpp", ".qml", ".in") and f'"{project_version()}"' in path.read_text()]
        self.assertEqual(written, [])


class CompletionTest(unittest.TestCase):
    """What bash offers for the words so far, the cursor standing at the end of the last."""

    def offered(self, *words: str, **variables: str) -> list[str]:
        script = f'''source "{COMPLETION}"
            COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _zuvo; printf "%s\\n" "${{COMPREPLY[@]}}"'''
        asked = run("bash", "-c", script, "bash", *words, env=os.environ | variables, cwd=self.folder)
        self.assertEqual((asked.returncode, asked.stderr), (0, ""))
        return asked.stdout.split("\n")[:-1] if asked.stdout.strip() else []

    def setUp(self) -> None:
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = Path(holder.name)

    def test_bash_can_read_it(self) -> None:
        read = run("bash", "-n", str(COMPLETION))
        self.assertEqual((read.returncode, read.stderr), (0, ""))

    def test_every_command_of_the_help_is_offered_and_no_other(self) -> None:
        # The help stands in the source as it is printed: "  zuvo COMMAND ...".
        told = set(re.findall(r"^  zuvo ([a-z-]+)", (ROOT / "src/cli/Arguments.cpp").read_text(), re.MULTILINE))
        self.assertEqual(set(self.offered("zuvo", "")) - {"help", "--help"}, told)

    def test_every_style_option_of_the_help_is_offered(self) -> None:
        told = set(re.findall(r"^  (--[a-z]+)", (ROOT / "src/cli/Arguments.cpp").read_text(), re.MULTILINE))
        self.assertEqual(set(self.offered("zuvo", "mine", "--")) - {"--timeline", "--reload", "--help"}, told)

    def test_every_preset_is_offered(self) -> None:
        self.assertEqual(self.offered("zuvo", "mine", "--preset", "c"), ["cinema-verite", "corporate", "campfire"])
        style = (ROOT / "src/model/Style.cpp").read_text() + (ROOT / "src/model/Style.h").read_text()
        for preset in self.offered("zuvo", "mine", "--preset", ""):
            self.assertIn(f'"{preset}"', style)

    def test_a_mine_takes_files_those_with_blanks_too(self) -> None:
        (self.folder / "day one.mov").write_text("")
        (self.folder / "day two.mov").write_text("")
        self.assertEqual(self.offered("zuvo", "mine", "day t"), ["day two.mov"])

    def test_values_are_offered_where_they_belong(self) -> None:
        self.assertEqual(self.offered("zuvo", "mine", "--mode", "s"), ["story-mine", "structure"])
        self.assertEqual(self.offered("zuvo", "mine", "--slider", "p"), ["pace="])
        self.assertEqual(self.offered("zuvo", "export", "f"), ["fcpxml"])
        self.assertEqual(self.offered("zuvo", "export", "edl", "--fps", "29"), ["29.97"])
        self.assertEqual(self.offered("zuvo", "audit", "--m"), ["--mine-first"])
        self.assertEqual(self.offered("zuvo", "mine", "--minutes", ""), [])

    def test_projects_are_offered_by_name_quoted_for_the_shell(self) -> None:
        program = self.folder / "zuvo"
        program.write_text("""#!/bin/sh
[ "$*" = "projects --json" ] || exit 2
echo '{"timeline":"Day (1)","createdAt":1.0}'
echo '{"timeline":"Night","createdAt":1.0}'
echo '{"timeline":"Day \\\\"x\\\\"","createdAt":1.0}'
""")
        program.chmod(0o755)
        for before in (["mine", "--reload"], ["export", "edl", "--project"], ["projects", "delete"]):
            self.assertEqual(self.offered(str(program), *before, "Da"), [r"Day\ \(1\)"])
        self.assertEqual(self.offered(str(program), "mine", "--reload", ""), [r"Day\ \(1\)", "Night"])


@unittest.skipIf(BUILD is None, "without a build there is nothing to install")
class InstallTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.holder = tempfile.TemporaryDirectory()
        cls.place = Path(cls.holder.name) / "usr"
        subprocess.run(["cmake", "--install", str(BUILD), "--prefix", str(cls.place)], check=True, capture_output=True)

    @classmethod
    def tearDownClass(cls) -> None:
        cls.holder.cleanup()

    def environment(self) -> dict[str, str]:
        """One in which nothing of a developer's is found."""
        home = Path(self.holder.name) / "home"
        shutil.rmtree(home, ignore_errors=True)
        (home / "temporary").mkdir(parents=True)
        return {"PATH": f"{self.place}/bin:/usr/bin:/bin", "HOME": str(home), "TMPDIR": str(home / "temporary"),
                "LANG": "C.UTF-8"}

    def page(self, name: str) -> str:
        return gzip.decompress((self.place / f"share/man/man1/{name}.1.gz").read_bytes()).decode()

    def set_page(self, name: str) -> subprocess.CompletedProcess:
        """By groff itself, since a "man" that only says that it was left out is on many small machines. -ww: all it can
        find wrong."""
        return run("groff", "-man", "-ww", "-Tascii", "-P-c", "-P-b", "-P-u", "-rLL=200n", input=self.page(name))

    def test_everything_lands_in_its_place(self) -> None:
        for file in ("bin/ZuvoManager", "bin/zuvo", "bin/zuvo-standin", "share/zuvo-manager/plugin/manifest.json",
                     "share/zuvo-manager/plugin/version.json", "share/zuvo-manager/plugin/index.html",
                     "share/zuvo-manager/sample/transcript.json", "share/zuvo-manager/sample/harbour_interview_01.m4a",
                     "share/zuvo-manager/standin/zuvo-plugin.zip", "share/applications/zuvo-manager.desktop",
                     "share/metainfo/com.tarnwick.zuvo-manager.metainfo.xml",
                     "share/bash-completion/completions/zuvo", "share/doc/zuvo-manager/copyright",
                     "share/doc/zuvo-manager/THIRD_PARTY.md", "share/doc/zuvo-manager/changelog.Debian.gz",
                     "share/icons/hicolor/scalable/apps/zuvo-manager.svg"):
            self.assertTrue((self.place / file).is_file(), file)

    def test_each_program_has_a_manual_page_that_is_set_without_a_warning(self) -> None:
        for name in PROGRAMS:
            page = self.set_page(name)
            self.assertEqual((page.returncode, page.stderr), (0, ""), name)
            self.assertIn("EXIT STATUS", page.stdout)
            self.assertIn(f'"{name} {project_version()}"', self.page(name))

    def test_the_manual_page_knows_every_option_of_the_help(self) -> None:
        page = self.set_page("zuvo").stdout
        told = run(str(self.place / "bin/zuvo"), "--help", env=self.environment()).stdout
        options = set(re.findall(r"--[a-z][a-z-]*", told))
        self.assertGreater(len(options), 12)
        for option in options:
            self.assertIn(option, page)

    def test_the_programs_say_the_projects_version(self) -> None:
        said = run(str(self.place / "bin/zuvo"), "--version", env=self.environment())
        self.assertEqual(said.stdout, f"zuvo {project_version()}\n")

    def test_what_is_installed_can_be_tried_without_a_service(self) -> None:
        environment = self.environment()
        sample = sorted(str(file) for file in (self.place / "share/zuvo-manager/sample").glob("*.m4a"))
        tried = run(str(self.place / "bin/zuvo-standin"), "--", "zuvo", "mine", *sample, env=environment)
        self.assertEqual(tried.returncode, 0, tried.stdout + tried.stderr)
        brief = Path(environment["HOME"],
                     "Library/Application Support/ZuvoManager/exports/Dropped Files (2)/story_brief.md").read_text()
        # Known to the word only with the installed transcript of the sample.
        self.assertIn("lighthouse", brief)

    def test_the_bundle_of_macos_is_told_of_version_identifier_and_scheme(self) -> None:
        told = plistlib.loads((BUILD / "packaging/Info.plist").read_bytes())
        self.assertEqual(told["CFBundleShortVersionString"], project_version())
        self.assertIn(f'bundleIdentifier = "{told["CFBundleIdentifier"]}"',
                      (ROOT / "src/model/Constants.h").read_text())
        self.assertEqual(told["CFBundleURLTypes"][0]["CFBundleURLSchemes"], ["zuvo-manager"])
        self.assertEqual(told["CFBundleExecutable"], "ZuvoManager")

    def test_the_package_asks_for_what_runs_beside_the_programs_and_nothing_to_build_with(self) -> None:
        settings = (BUILD / "CPackConfig.cmake").read_text()
        asked = re.search(r'set\(CPACK_DEBIAN_PACKAGE_DEPENDS "([^"]*)"\)', settings).group(1).split(", ")
        for name in ("ffmpeg", "python3", "unzip", "ca-certificates", "fonts-inter", "qml6-module-qtquick-dialogs",
                     "gstreamer1.0-libav"):
            self.assertIn(name, asked)
        self.assertEqual([name for name in asked if name.endswith("-dev") or name == "bootstrap-icons"], [])


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=1))
