"""What packaging/debian/test-in-fresh-debian leaves behind, with a made-up debootstrap and chroot: nothing. Part of
packaging_test.py. Its mounts are real, so that it needs root and the right to make namespaces."""

import os
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from fake_programs import FakePrograms

ROOT = Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "packaging/debian/test-in-fresh-debian"
PATIENCE_SECONDS = 20

# The folder stands before the mirror, behind the suite.
DEBOOTSTRAP = 'mkdir -p "$4"/{dev,proc,sys,etc,root}; [[ ! -e "$FAILS" ]]'
CHROOT = """
echo "$(cat /proc/self/mounts)" >"$RECORD/mounts"
stat -c %a "$1" >"$RECORD/mode"
shift; echo "${@: -2}" >>"$RECORD/lines"
[[ ! -e "$RECORD/chroot-fails" ]] || exit 7
[[ ! -e "$RECORD/chroot-waits" ]] || { touch "$RECORD/waiting"; sleep 300; }"""


def can_isolate() -> bool:
    tried = subprocess.run(["unshare", "--mount", "--pid", "--fork", "true"], capture_output=True, check=False)
    return os.geteuid() == 0 and tried.returncode == 0


@unittest.skipUnless(can_isolate(), "only root may make namespaces and mounts")
class FreshDebianTest(unittest.TestCase):
    def setUp(self) -> None:
        holder = tempfile.TemporaryDirectory(prefix="zuvo fresh ")
        self.addCleanup(holder.cleanup)
        self.record = Path(holder.name)
        self.temporary = self.record / "temporary"
        self.temporary.mkdir()
        programs = FakePrograms(self.record / "bin")
        programs.add("debootstrap", DEBOOTSTRAP)
        # The script calls it without the caller's variables, so that the folder is written into it.
        programs.add("chroot", CHROOT.replace("$RECORD", str(self.record)))
        # Every package counts as installed.
        programs.add("dpkg-query", 'for name in "${@:3}"; do echo "$name installed"; done')
        programs.add("git", 'if [[ "$1" == clone ]]; then mkdir -p "${@: -1}"; fi')
        self.environment = os.environ | {"PATH": f"{programs.folder}:{os.environ['PATH']}",
                                         "TMPDIR": str(self.temporary), "FAILS": str(self.record / "no-debian")}
        # And without the caller's PATH, so that a copy of the script calls it by its place.
        self.script = self.record / "tree/packaging/debian/test-in-fresh-debian"
        (self.record / "tree/tools").mkdir(parents=True)
        (self.record / "tree/tools/setup").symlink_to(ROOT / "tools/setup")
        self.script.parent.mkdir(parents=True)
        library = (ROOT / "packaging/debian/fresh-debian.sh").read_text()
        (self.script.parent / "fresh-debian.sh").write_text(
            library.replace("chroot ", f"'{programs.folder}/chroot' "))
        self.script.write_text(SCRIPT.read_text())
        self.script.chmod(0o755)

    def start(self, *arguments: str) -> subprocess.Popen:
        return subprocess.Popen([self.script, *arguments], env=self.environment, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def run_script(self, *arguments: str) -> tuple[int, str]:
        started = self.start(*arguments)
        shown, _ = started.communicate(timeout=PATIENCE_SECONDS)
        return started.returncode, shown

    def lines(self) -> list[str]:
        return [line.partition("in_clone ")[2] or line for line in (self.record / "lines").read_text().splitlines()]

    def then_nothing_is_left(self) -> None:
        self.assertNotIn(str(self.temporary), Path("/proc/self/mounts").read_text().replace("\\040", " "))
        self.assertEqual(list(self.temporary.iterdir()), [])

    def test_run_and_test_are_run_in_a_debian_that_is_removed_again(self) -> None:
        status, shown = self.run_script("--", "base/", "steps/")
        self.assertEqual(status, 0, shown)
        self.assertEqual(self.lines(), ["./run", "base/ steps/"])
        self.assertTrue(shown.endswith("ok\n"), shown)
        # It had its mounts while it ran.
        self.assertRegex((self.record / "mounts").read_text(), r"(?m)/zuvo-fresh-debian-\w+/proc proc ")
        # Users other than root work in it too, apt's own for example.
        self.assertEqual((self.record / "mode").read_text(), "755\n")
        self.then_nothing_is_left()

    def test_one_of_both_can_be_chosen(self) -> None:
        for only, line in (("run", "./run"), ("test", "./test")):
            (self.record / "lines").write_text("")
            self.assertEqual(self.run_script("--only", only)[0], 0)
            self.assertIn(line, self.lines()[0])
            self.assertEqual(len(self.lines()), 1)

    def test_a_failure_is_the_scripts_and_leaves_nothing(self) -> None:
        (self.record / "chroot-fails").touch()
        self.assertEqual(self.run_script()[0], 7)
        self.assertEqual(len(self.lines()), 1)
        self.then_nothing_is_left()

    def test_a_debian_that_cannot_be_made_leaves_nothing(self) -> None:
        (self.record / "no-debian").touch()
        self.assertEqual(self.run_script()[0], 1)
        self.then_nothing_is_left()

    def test_a_signal_ends_it_with_all_that_it_started(self) -> None:
        (self.record / "chroot-waits").touch()
        for number, expected in ((signal.SIGTERM, 143), (signal.SIGINT, 130)):
            with self.subTest(signal=number):
                (self.record / "waiting").unlink(missing_ok=True)
                started = self.start()
                self.addCleanup(started.stdout.close)
                deadline = time.monotonic() + PATIENCE_SECONDS
                while not (self.record / "waiting").exists() and time.monotonic() < deadline:
                    time.sleep(0.05)
                self.assertTrue((self.record / "waiting").exists())
                started.send_signal(number)
                # Whatever still held the output would keep this waiting.
                started.communicate(timeout=PATIENCE_SECONDS)
                self.assertEqual(started.returncode, expected)
                self.then_nothing_is_left()

    def test_a_folder_of_the_callers_is_kept(self) -> None:
        folder = self.record / "kept"
        self.assertEqual(self.run_script("--folder", str(folder))[0], 0)
        self.assertTrue((folder / ".made").exists())
        self.assertNotIn(str(folder), Path("/proc/self/mounts").read_text())

    def test_wrong_usage_makes_nothing(self) -> None:
        for arguments in (["--only", "both"], ["--folder"], ["somewhere"]):
            self.assertEqual(self.run_script(*arguments)[0], 2)
        self.then_nothing_is_left()
