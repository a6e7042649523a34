"""What tools/setup/packages.sh does about missing packages, on made-up machines; and whether the real list has every
program that the tree calls."""

import os
import pty
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import called_programs
from fake_programs import FakePrograms
from shell_reader import programs_of_shell

ROOT = Path(__file__).resolve().parents[2]

# Packages are "installed" when their name stands in the file $INSTALLED, and "known" when it stands in $KNOWN.
DPKG_QUERY = """
status=0
for name in "${@:3}"; do
    if grep -qx "$name" "$INSTALLED"; then echo "$name installed"
    elif [[ "$name" == removed-but-configured ]]; then echo "$name config-files"
    else status=1; fi
done
exit $status"""
APT_CACHE = 'grep -qx "$2" "$KNOWN"'
APT_GET = """
case " $* " in
*" update "*)
    if [[ -e "$FAIL_UPDATES" ]]; then
        left=$(<"$FAIL_UPDATES")
        if ((left > 0)); then echo $((left - 1)) >"$FAIL_UPDATES"; exit 100; fi
    fi ;;
*" install "*)
    [[ -e "$INSTALL_NOTHING" ]] && exit 0
    for word in "$@"; do [[ "$word" == -* || "$word" == install ]] || echo "$word" >>"$INSTALLED"; done ;;
esac
exit 0"""
LIST = """
# a comment
build  compiler          # turns text into programs
build  linker            # puts them together
other  tidy-14 | tidy    # either will do
other  compiler          # named twice
"""


class PackagesTest(unittest.TestCase):
    def setUp(self) -> None:
        holder = tempfile.TemporaryDirectory(prefix="zuvo packages ")
        self.addCleanup(holder.cleanup)
        self.folder = Path(holder.name)
        setup = self.folder / "setup"
        setup.mkdir()
        (setup / "packages.sh").write_text((ROOT / "tools/setup/packages.sh").read_text())
        (setup / "packages.txt").write_text(LIST)
        self.programs = FakePrograms(self.folder / "bin")
        self.programs.link("bash", "awk", "cat", "dirname", "env", "grep", "sleep", "tr", "true")
        self.programs.add("dpkg-query", DPKG_QUERY)
        self.programs.add("apt-cache", APT_CACHE)
        self.programs.add("apt-get", APT_GET)
        self.programs.add("id", "echo 0")
        self.environment = {
            "PATH": str(self.programs.folder),
            "INSTALLED": str(self.folder / "installed"),
            "KNOWN": str(self.folder / "known"),
            "FAIL_UPDATES": str(self.folder / "fail-updates"),
            "INSTALL_NOTHING": str(self.folder / "install-nothing"),
            "ZUVO_SETUP_PAUSE_SECONDS": "0",
        }
        self.installed()
        (self.folder / "known").write_text("compiler\nlinker\ntidy\n")

    def installed(self, *names: str) -> None:
        (self.folder / "installed").write_text("".join(name + "\n" for name in names))

    def as_ordinary_user(self, sudo: str | None) -> None:
        self.programs.add("id", "echo 1000")
        if sudo is not None:
            self.programs.add("sudo", sudo)

    def command(self, *purposes: str) -> list[str]:
        script = 'set -euo pipefail; source "$1"; shift; zuvo_need_packages "$@"; echo "all there"'
        return ["bash", "-c", script, "test", str(self.folder / "setup/packages.sh"), *purposes]

    def need(self, *purposes: str) -> subprocess.CompletedProcess:
        return subprocess.run(self.command(*purposes), env=self.environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=30, check=False)

    def need_on_terminal(self, answer: str, *purposes: str) -> tuple[int, str]:
        """Exit status and everything the terminal showed."""
        pid, terminal = pty.fork()
        if pid == 0:
            os.execvpe("bash", self.command(*purposes), self.environment)
        os.write(terminal, answer.encode())
        shown = b""
        while True:
            try:
                piece = os.read(terminal, 4096)
            except OSError:  # Linux says so when the other end is closed
                break
            if not piece:
                break
            shown += piece
        os.close(terminal)
        return os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]), shown.decode()

    def test_nothing_missing_touches_nothing(self) -> None:
        self.installed("compiler", "linker")
        run = self.need("build")
        self.assertEqual((run.returncode, run.stdout), (0, "all there\n"))
        self.assertEqual(self.programs.calls("apt-get"), [])

    def test_root_installs_only_what_is_missing_for_the_purpose(self) -> None:
        self.installed("compiler")
        run = self.need("build")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.programs.calls("apt-get"), [
            "apt-get -q -o DPkg::Lock::Timeout=500 update",
            "apt-get -q -o DPkg::Lock::Timeout=500 install -y --no-install-recommends linker",
        ])
        self.assertIn("  linker\n", run.stderr)

    def test_a_package_of_two_purposes_is_asked_for_once(self) -> None:
        run = self.need("build", "other")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertTrue(self.programs.calls("apt-get")[1].endswith(" compiler linker tidy"))

    def test_any_installed_alternative_is_enough(self) -> None:
        self.installed("compiler", "tidy")
        self.assertEqual(self.need("other").returncode, 0)
        self.assertEqual(self.programs.calls("apt-get"), [])

    def test_of_alternatives_the_first_that_apt_knows_is_installed(self) -> None:
        self.installed("compiler")
        (self.folder / "known").write_text("tidy-14\ntidy\n")
        self.assertEqual(self.need("other").returncode, 0)
        self.assertTrue(self.programs.calls("apt-get")[1].endswith(" tidy-14"))

    def test_a_removed_package_whose_settings_are_left_is_missing(self) -> None:
        (self.folder / "setup/packages.txt").write_text("build removed-but-configured\n")
        self.assertEqual(self.need("build").returncode, 0)
        self.assertTrue(self.programs.calls("apt-get")[1].endswith(" removed-but-configured"))

    def test_a_failed_update_is_tried_once_more(self) -> None:
        (self.folder / "fail-updates").write_text("1")
        self.assertEqual(self.need("build").returncode, 0)
        updates = [call for call in self.programs.calls("apt-get") if call.endswith("update")]
        self.assertEqual(len(updates), 2)

    def test_a_second_failed_update_ends_in_a_failure(self) -> None:
        (self.folder / "fail-updates").write_text("2")
        run = self.need("build")
        self.assertEqual((run.returncode, run.stdout), (1, ""))
        self.assertIn("apt-get update failed.", run.stderr)

    def test_an_installation_that_leaves_something_missing_is_a_failure(self) -> None:
        (self.folder / "install-nothing").write_text("")
        run = self.need("build")
        self.assertEqual((run.returncode, run.stdout), (1, ""))
        self.assertIn("Still missing after the installation: compiler linker", run.stderr)

    def test_without_rights_the_command_to_type_is_printed(self) -> None:
        for sudo in (None, "exit 1"):
            with self.subTest(sudo=sudo):
                self.as_ordinary_user(sudo)
                run = self.need("build")
                self.assertEqual((run.returncode, run.stdout), (1, ""))
                self.assertIn("  sudo apt-get update && sudo apt-get install --no-install-recommends compiler linker\n",
                              run.stderr)
                self.assertEqual(self.programs.calls("apt-get"), [])

    def test_a_sudo_that_asks_for_no_password_is_used(self) -> None:
        self.as_ordinary_user('[[ "$1" == -n ]] && shift; exec "$@"')
        run = self.need("build")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.programs.calls("sudo"), [
            "sudo -n true",
            "sudo -n env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=500 update",
            "sudo -n env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=500 install -y "
            "--no-install-recommends compiler linker",
        ])

    def test_a_terminal_is_asked_once_and_yes_installs(self) -> None:
        status, shown = self.need_on_terminal("y\n", "build")
        self.assertEqual(status, 0, shown)
        self.assertEqual(shown.count("[y/N]"), 1)
        self.assertEqual(len(self.programs.calls("apt-get")), 2)

    def test_any_other_answer_installs_nothing(self) -> None:
        for answer in ("n\n", "\n", "\x04"):
            with self.subTest(answer=answer):
                status, shown = self.need_on_terminal(answer, "build")
                self.assertEqual(status, 1, shown)
                self.assertIn("sudo apt-get install --no-install-recommends compiler linker", shown)
                self.assertEqual(self.programs.calls("apt-get"), [])

    def test_continuous_integration_is_never_asked(self) -> None:
        self.environment["CI"] = "true"
        status, shown = self.need_on_terminal("", "build")
        self.assertEqual(status, 0, shown)
        self.assertNotIn("[y/N]", shown)

    def test_a_machine_without_dpkg_is_left_as_it_is(self) -> None:
        (self.programs.folder / "dpkg-query").unlink()
        run = self.need("build")
        self.assertEqual(run.returncode, 0)
        self.assertEqual(self.programs.calls("apt-get"), [])

    def test_every_line_of_the_real_list_has_a_purpose_a_package_and_a_reason(self) -> None:
        known = {"domain", "qt", "ui", "media", "tests", "lint", "fuzz", "bench", "package", "coverage", "fresh"}
        for line in (ROOT / "tools/setup/packages.txt").read_text().splitlines():
            if line and not line.startswith("#"):
                self.assertRegex(line, r"^[a-z]+ +[a-z0-9][a-z0-9+.-]*( \| [a-z0-9][a-z0-9+.-]*)* +# \S")
                self.assertIn(line.split()[0], known)


# Called where it is there, and done without where it is not.
ELSEWHERE = {
    "sudo": "an installation without it prints the command to type",
    "pkexec": "the plugin's password dialog; without it the page says so",
    "osascript": "macOS",
    "open": "macOS",
}
BUILDING = {"domain", "qt", "ui", "media"}
# What is installed before the files of a folder, or a file, call anything; the longest name that fits counts.
PURPOSES = {
    "run": BUILDING,
    "test": BUILDING | {"tests", "lint", "fuzz", "package", "coverage"},
    ".ci": BUILDING | {"tests"},
    "bench": BUILDING | {"bench"},
    "benchmarks": BUILDING | {"bench"},
    "src": BUILDING,
    "tools": BUILDING,
    "tools/setup/packages.sh": set(),
    "packaging": BUILDING,
    "packaging/debian": {"fresh"},
    "packaging/debian/Package.cmake": BUILDING,
    "cmake": {"domain"},
    "CMakeLists.txt": {"domain"},
    "tests": BUILDING | {"tests"},
    "tests/fuzz": BUILDING | {"fuzz"},
}


def listed_packages(purposes: set[str]) -> set[str]:
    """All alternatives of the rows of these purposes."""
    found = set()
    for line in (ROOT / "tools/setup/packages.txt").read_text().splitlines():
        purpose, _, rest = line.partition("#")[0].partition(" ")
        if purpose in purposes:
            found |= set(re.findall(r"[^\s|]+", rest))
    return found


def fault_of(program: str, listed: set[str]) -> str | None:
    """What is wrong with a call of the program where these packages are listed."""
    path = called_programs.installed_path(program)
    name = program.rpartition("/")[2]
    if path is None:
        is_known = name in listed or name in ELSEWHERE
        return None if is_known else f"{program} is not on this machine, and no listed package has its name"
    package = called_programs.owner(path)
    if package is None:
        return f"{path} belongs to no package"
    if package in listed or name in ELSEWHERE or called_programs.is_on_every_debian(package):
        return None
    if listed and called_programs.same_source(package, listed):
        return None
    return f"{program} is in the package {package}, which is not listed"


@unittest.skipUnless(shutil.which("dpkg-query"), "no dpkg says which package brings a program")
class CalledProgramsTest(unittest.TestCase):
    maxDiff = None

    def files_and_purposes(self) -> list[tuple[Path, set[str]]]:
        found = []
        for name in PURPOSES:
            place = ROOT / name
            files = [place] if place.is_file() else [file for file in place.rglob("*") if file.is_file()]
            for file in files:
                relative = file.relative_to(ROOT)
                best = max((key for key in PURPOSES if relative.is_relative_to(key)), key=len)
                if best == name:
                    found.append((file, PURPOSES[name]))
        return found

    def test_every_program_that_a_file_calls_is_on_every_debian_or_listed_for_it(self) -> None:
        faults, programs = set(), set()
        sourced = set()
        for file in [*ROOT.glob("tools/setup/*.sh"), *ROOT.glob("packaging/debian/*.sh")]:
            sourced |= set(re.findall(r"^(\w+)\(\) \{", file.read_text(), re.MULTILINE))
        for file, purposes in self.files_and_purposes():
            listed = listed_packages(purposes)
            for program in called_programs.programs_of(file) - sourced:
                programs.add(program)
                if fault := fault_of(program, listed):
                    faults.add(f"{file.relative_to(ROOT)}: {fault}")
        self.assertEqual(sorted(faults), [])
        # The reading of the files has not gone blind.
        self.assertGreaterEqual(programs, {"awk", "cmake", "clang++", "ffmpeg", "git", "groff", "setsid", "sed", "unzip",
                                           "xmllint", "debootstrap"})

    def test_a_program_that_is_not_listed_is_a_fault(self) -> None:
        self.assertIn("in the package cmake, which is not listed", fault_of("cmake", {"ninja-build"}))
        self.assertIn("no listed package", fault_of("no-such-program", {"cmake"}))
        self.assertIsNone(fault_of("cmake", {"cmake"}))
        self.assertIsNone(fault_of("sed", set()))

    def test_commands_are_found_wherever_a_shell_script_may_have_them(self) -> None:
        script = """
            first --option; VARIABLE=value second | third && ! fourth
            [[ "$(fifth)" == x ]] && sixth "$(seventh "a ; notthis")" # notthis
            if eighth; then ninth <(tenth); fi
            case "$1" in pattern | notthis) eleventh ;; *) : ;; esac
            env -i NAME=value twelfth | xargs -0 -n 1 thirteenth
            array=(notthis "$(fourteenth)")
            bash -c 'set -e; fifteenth'
            own() { sixteenth; }
            own 'notthis' 2>notthis
            cat <<TEXT
            notthis $(seventeenth)
TEXT
        """
        numbers = """first second third fourth fifth sixth seventh eighth ninth tenth eleventh twelfth thirteenth
            fourteenth fifteenth sixteenth seventeenth""".split()
        self.assertEqual(programs_of_shell(script), {*numbers, "env", "xargs", "bash", "cat"})

    def test_calls_of_python_c_plus_plus_and_cmake_are_found(self) -> None:
        python = """def hand_on(*words): return subprocess.run(words)
subprocess.run(["one", "-x"]); hand_on("two"); os.execvpe("three", [], {}); shutil.which("four")
words = ["five", "-v"]
tool.write_text("#!/bin/sh\\nsix | seven\\n")
subprocess.run([path / "notthis"])"""
        self.assertEqual(called_programs.programs_of_python(python),
                         {"one", "two", "three", "four", "five", "six", "seven"})
        cpp = """process.start(QStringLiteral("one"), {}); request.program = "/usr/bin/two"; // "/usr/bin/notthis"
            folder.write("tool", "#!/bin/sh\\nthree | "
                                 "four\\n"); execlp("five", "five", nullptr);"""
        self.assertEqual(called_programs.programs_of_cpp(cpp), {"one", "two", "sh", "three", "four", "five"})
        self.assertEqual(called_programs.programs_of_cmake("find_program(WITH one)\nadd_test(COMMAND two x)"),
                         {"one", "two"})


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=1))
