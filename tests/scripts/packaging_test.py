"""What is installed, and what the desktop, the shell and a reader of manual pages are told of it."""

import configparser
import fnmatch
import gzip
import json
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

from fresh_debian_cases import FreshDebianTest  # noqa: F401: unittest runs what it finds here

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
                     "share/doc/zuvo-manager/zuvo-manager.spdx.json", "share/doc/zuvo-manager-standin/copyright",
                     "share/doc/zuvo-manager-standin/zuvo-manager-standin.spdx.json",
                     "share/doc/zuvo-manager-standin/changelog.Debian.gz",
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
        asked = packaged("CPACK_DEBIAN_MANAGER_PACKAGE_DEPENDS").split(", ")
        for name in ("ffmpeg", "python3", "unzip", "ca-certificates", "fonts-inter", "qml6-module-qtquick-dialogs",
                     "gstreamer1.0-libav"):
            self.assertIn(name, asked)
        self.assertEqual([name for name in asked if name.endswith("-dev") or name == "bootstrap-icons"], [])


def packaged(variable: str) -> str:
    """A value that CPack makes the packages with."""
    settings = (BUILD / "CPackConfig.cmake").read_text()
    found = re.search(rf'set\({variable} "((?:[^"\\]|\\.)*)"\)', settings)
    return found.group(1) if found else ""


@unittest.skipIf(BUILD is None, "without a build there is nothing to install")
class TwoPackagesTest(unittest.TestCase):
    """The programs and the stand-in are installed and handed on apart, since their terms differ."""

    @classmethod
    def setUpClass(cls) -> None:
        cls.holder = tempfile.TemporaryDirectory()
        cls.places = {}
        for component in ("manager", "standin", None):
            place = Path(cls.holder.name, component or "all")
            chosen = ["--component", component] if component else []
            subprocess.run(["cmake", "--install", str(BUILD), "--prefix", str(place), *chosen], check=True,
                           capture_output=True)
            cls.places[component] = place

    @classmethod
    def tearDownClass(cls) -> None:
        cls.holder.cleanup()

    def files(self, component: str | None) -> set[str]:
        place = self.places[component]
        return {str(file.relative_to(place)) for file in place.rglob("*") if file.is_file()}

    def test_every_file_is_in_one_of_both(self) -> None:
        programs, standin = self.files("manager"), self.files("standin")
        self.assertEqual(programs & standin, set())
        self.assertEqual(programs | standin, self.files(None))
        self.assertEqual({name for name in standin if name.startswith("bin/")}, {"bin/zuvo-standin"})
        self.assertIn("share/zuvo-manager/sample/transcript.json", standin)

    def test_the_programs_are_not_linked_with_what_is_under_the_gpl_alone(self) -> None:
        for program in sorted((self.places["manager"] / "bin").iterdir()):
            self.assertNotIn("HttpServer", said("readelf", "-d", str(program)))
        self.assertIn("HttpServer", said("readelf", "-d", str(self.places["standin"] / "bin/zuvo-standin")))

    def test_both_packages_have_names_and_descriptions_that_say_their_terms(self) -> None:
        self.assertEqual(packaged("CPACK_DEBIAN_MANAGER_PACKAGE_NAME"), "zuvo-manager")
        self.assertEqual(packaged("CPACK_DEBIAN_STANDIN_PACKAGE_NAME"), "zuvo-manager-standin")
        self.assertEqual(packaged("CPACK_COMPONENTS_ALL"), "manager;standin")
        self.assertIn("zuvo-manager-standin", packaged("CPACK_DEBIAN_MANAGER_PACKAGE_SUGGESTS"))
        self.assertIn("GNU General Public License, version 3", packaged("CPACK_DEBIAN_STANDIN_DESCRIPTION"))
        self.assertNotIn("zuvo-standin", packaged("CPACK_DEBIAN_MANAGER_PACKAGE_DEPENDS"))

    def test_the_terms_are_in_the_copyright_files(self) -> None:
        terms = " ".join((ROOT / "LICENSE").read_text().split())
        programs = (self.places["manager"] / "share/doc/zuvo-manager/copyright").read_text()
        self.assertIn(terms, " ".join(word for word in programs.split() if word != "."))
        standin = (self.places["standin"] / "share/doc/zuvo-manager-standin/copyright").read_text()
        self.assertIn("License: GPL-3\n", standin)
        self.assertIn("hands on the sources", " ".join(standin.split()))
        self.assertNotIn("License: GPL", programs)


def said(*command: str) -> str:
    return subprocess.run(command, capture_output=True, text=True, check=True,
                          env=os.environ | {"LC_ALL": "C"}).stdout


# The identifiers of the SPDX list of licenses that are used here.
KNOWN_TERMS = {"LGPL-3.0-only", "GPL-2.0-only", "GPL-3.0-only", "MIT", "Unicode-DFS-2015", "BSD-3-Clause", "Zlib",
               "Apache-2.0", "GPL-3.0-or-later", "LGPL-2.1-or-later"}
KNOWN_EXCEPTIONS = {"GCC-exception-3.1", "LLVM-exception"}
# Headers of these leave nothing in the programs that their linked library does not bring, or are exempt (GCC's, the
# kernel's and the C library's).
LINKED_OR_EXEMPT = ("qt6-*-dev", "libstdc++-*-dev", "libgcc-*-dev", "libc6-dev", "linux-libc-dev", "libutf8proc-dev",
                    "libgl-dev", "libglx-dev", "libopengl-dev", "libegl-dev", "libvulkan-dev", "libzip-dev", "zlib1g-dev",
                    "libssl-dev")


@unittest.skipIf(BUILD is None, "without a build nothing is linked")
@unittest.skipUnless(shutil.which("dpkg-query"), "without a package database no list is made")
class ContentsTest(unittest.TestCase):
    """The SPDX lists of what is linked with and compiled into the programs."""

    PACKAGES = {"zuvo-manager": {"zuvo", "ZuvoManager"}, "zuvo-manager-standin": {"zuvo-standin"}}

    @classmethod
    def setUpClass(cls) -> None:
        cls.holder = tempfile.TemporaryDirectory()
        cls.place = Path(cls.holder.name)
        subprocess.run(["cmake", "--install", str(BUILD), "--prefix", str(cls.place)], check=True, capture_output=True)

    @classmethod
    def tearDownClass(cls) -> None:
        cls.holder.cleanup()

    def folder(self, package: str) -> Path:
        return self.place / "share/doc" / package

    def document(self, package: str) -> dict:
        return json.loads((self.folder(package) / f"{package}.spdx.json").read_text())

    def related(self, document: dict, program: str, kind: str) -> list[dict]:
        by_identifier = {entry["SPDXID"]: entry for entry in document["packages"]}
        own = next(entry["SPDXID"] for entry in document["packages"] if entry["name"] == program)
        return [by_identifier[entry["relatedSpdxElement"]] for entry in document["relationships"]
                if entry["spdxElementId"] == own and entry["relationshipType"] == kind]

    def test_the_lists_have_the_form_of_spdx_2_3(self) -> None:
        for package in self.PACKAGES:
            with self.subTest(package=package):
                document = self.document(package)
                self.assertEqual(document["spdxVersion"], "SPDX-2.3")
                self.assertEqual(document["dataLicense"], "CC0-1.0")
                self.assertEqual(document["SPDXID"], "SPDXRef-DOCUMENT")
                self.assertEqual(document["name"], f"{package}-{project_version()}")
                self.assertRegex(document["documentNamespace"], r"^https://[^#\s]+$")
                self.assertRegex(document["creationInfo"]["created"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
                for creator in document["creationInfo"]["creators"]:
                    self.assertRegex(creator, r"^(Person|Organization|Tool): \S")
                self.check_packages(document)

    def check_packages(self, document: dict) -> None:
        identifiers = [entry["SPDXID"] for entry in document["packages"]]
        self.assertEqual(len(identifiers), len(set(identifiers)))
        for entry in document["packages"]:
            self.assertRegex(entry["SPDXID"], r"^SPDXRef-[A-Za-z0-9.-]+$")
            self.assertTrue({"name", "versionInfo", "downloadLocation", "licenseConcluded", "licenseDeclared",
                             "copyrightText"} <= entry.keys(), entry)
            self.assertIs(entry["filesAnalyzed"], False)
            self.check_terms(document, entry["licenseConcluded"])
        for relation in document["relationships"]:
            self.assertIn(relation["spdxElementId"], [*identifiers, "SPDXRef-DOCUMENT"])
            self.assertIn(relation["relatedSpdxElement"], identifiers)
            self.assertIn(relation["relationshipType"], {"DESCRIBES", "DYNAMIC_LINK", "CONTAINS"})

    def check_terms(self, document: dict, expression: str) -> None:
        own = {info["licenseId"] for info in document.get("hasExtractedLicensingInfos", [])}
        for part in re.split(r" (?:AND|OR) ", expression):
            terms, _, exception = part.partition(" WITH ")
            self.assertIn(terms, KNOWN_TERMS | own)
            if exception:
                self.assertIn(exception, KNOWN_EXCEPTIONS)

    def test_every_library_that_a_program_needs_is_listed_for_it(self) -> None:
        for package, programs in self.PACKAGES.items():
            document = self.document(package)
            described = [entry["relatedSpdxElement"] for entry in document["relationships"]
                         if entry["relationshipType"] == "DESCRIBES"]
            self.assertEqual(set(described), {f"SPDXRef-Program-{program}" for program in programs})
            for program in programs:
                needed = re.findall(r"\(NEEDED\).*\[(.+)\]", said("readelf", "-d", str(self.place / "bin" / program)))
                self.assertGreater(len(needed), 5)
                listed = " ".join(entry["comment"] for entry in self.related(document, program, "DYNAMIC_LINK"))
                for library in needed:
                    self.assertIn(library, re.split(r"[ ,]+", listed), program)

    def test_a_package_is_listed_with_the_version_of_this_machine(self) -> None:
        document = self.document("zuvo-manager")
        for entry in self.related(document, "zuvo", "DYNAMIC_LINK"):
            installed = said("dpkg-query", "-W", "-f=${Version}\n", entry["name"]).splitlines()
            self.assertIn(entry["versionInfo"], installed)
            self.assertTrue(entry["externalRefs"][0]["referenceLocator"].startswith("pkg:deb/debian/"))

    def test_only_the_stand_in_is_under_the_gpl_or_linked_with_what_is_under_it_alone(self) -> None:
        def terms(package: str) -> set[str]:
            return {entry["licenseConcluded"] for entry in self.document(package)["packages"]}
        self.assertNotIn("GPL-3.0-only", terms("zuvo-manager"))
        self.assertIn("LicenseRef-Zuvo", terms("zuvo-manager"))
        self.assertIn("GPL-3.0-only", terms("zuvo-manager-standin"))
        self.assertNotIn("LicenseRef-Zuvo", terms("zuvo-manager-standin"))

    def test_the_notice_of_everything_that_is_compiled_in_goes_along(self) -> None:
        expected = {"zuvo-manager": {"nlohmann-json3-dev", "libfmt-dev", "qcoro-qt6-dev", "bootstrap-icons"},
                    "zuvo-manager-standin": {"nlohmann-json3-dev", "libfmt-dev"}}
        for package, programs in self.PACKAGES.items():
            document = self.document(package)
            contained = {entry["name"] for program in programs for entry in self.related(document, program, "CONTAINS")}
            notices = self.folder(package) / "notices"
            self.assertEqual(contained, expected[package])
            self.assertEqual({file.name for file in notices.iterdir()}, contained)
            for name in contained:
                self.assertEqual((notices / name).read_bytes(), Path(f"/usr/share/doc/{name}/copyright").read_bytes())

    def test_no_header_of_another_package_is_compiled_in(self) -> None:
        if not (BUILD / ".ninja_deps").exists():
            self.skipTest("not built by ninja")
        headers, object_file = set(), ""
        for line in said("ninja", "-C", str(BUILD), "-t", "deps").splitlines():
            if not line.startswith(" "):
                object_file = line
            elif line.startswith("    /") and re.match(r"(src|tools/standin)/", object_file):
                headers.add(os.path.realpath(line.strip()))
        headers = {header for header in headers if header.startswith("/usr/")}
        self.assertGreater(len(headers), 100)
        found = run("dpkg-query", "-S", *sorted(headers)).stdout
        packages = {line.partition(":")[0] for line in found.splitlines() if not line.startswith("diversion")}
        noticed = {"nlohmann-json3-dev", "libfmt-dev", "qcoro-qt6-dev"}
        self.assertGreaterEqual(packages, noticed)
        others = {name for name in packages - noticed
                  if not any(fnmatch.fnmatch(name, pattern) for pattern in LINKED_OR_EXEMPT)}
        self.assertEqual(others, set())

    def list_contents(self, licences: str, *programs: str) -> subprocess.CompletedProcess:
        folder = self.place / "tried"
        folder.mkdir(exist_ok=True)
        shutil.copy(ROOT / "packaging/contents.py", folder)
        (folder / "licences.txt").write_text(licences)
        return run(sys.executable, "-B", str(folder / "contents.py"), "--name", "x", "--version", "1", "--licence",
                   "LicenseRef-Zuvo", "--terms", str(ROOT / "LICENSE"), "--output", str(folder / "x.spdx.json"),
                   "--notices", str(folder / "notices"), *programs, env=os.environ | {"SOURCE_DATE_EPOCH": "0"})

    def test_a_library_whose_terms_nobody_knows_fails_the_build(self) -> None:
        licences = (ROOT / "packaging/licences.txt").read_text()
        without_fmt = re.sub(r"(?m)^linked +libfmt.*\n", "", licences)
        tried = self.list_contents(without_fmt, str(self.place / "bin/zuvo"))
        self.assertEqual(tried.returncode, 1)
        self.assertRegex(tried.stderr, r"^contents\.py: libfmt\S+ is linked, but packaging/licences\.txt does not know its")

    def test_a_notice_that_is_not_there_fails_the_build(self) -> None:
        licences = (ROOT / "packaging/licences.txt").read_text() + "compiled  no-such-package  zuvo  MIT\n"
        tried = self.list_contents(licences, str(self.place / "bin/zuvo"))
        self.assertEqual(tried.returncode, 1)
        self.assertIn("no-such-package", tried.stderr)

    def test_the_same_programs_give_the_same_list(self) -> None:
        licences = (ROOT / "packaging/licences.txt").read_text()
        lists = []
        for _ in range(2):
            self.assertEqual(self.list_contents(licences, str(self.place / "bin/zuvo")).returncode, 0)
            lists.append((self.place / "tried/x.spdx.json").read_text())
        self.assertEqual(lists[0], lists[1])
        self.assertIn('"created": "1970-01-01T00:00:00Z"', lists[0])


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=1))
