"""What ./run does, in a copy of the scripts whose programs are made up: nothing is built and no service is called."""

import os
import pty
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

from fake_programs import FakePrograms

ROOT = Path(__file__).resolve().parents[2]

# Says where it listens after a moment, then stays until it is stopped.
STANDIN = """#!/bin/bash
echo "$$" >"$RECORD/standin-pid"
echo "$*" >"$RECORD/standin-arguments"
if [[ -e "$RECORD/standin-fails" ]]; then echo "no port" >&2; exit 1; fi
trap 'echo stopped >"$RECORD/standin-stopped"; exit 0' TERM
sleep 0.2
echo "OPENAI_BASE_URL=http://127.0.0.1:4711/v1"
echo "ANTHROPIC_BASE_URL=http://127.0.0.1:4711"
sleep 0.2
echo "ZUVO_SERVICE_URL=http://127.0.0.1:4711"
while :; do sleep 0.1; done
"""
# Writes down what it was given; a mine leaves a story under its HOME.
ZUVO = """#!/bin/bash
if [[ "$1" == keys ]]; then
    echo "keys: $(cat "$RECORD/keys-text" 2>/dev/null)"
    exit "$(cat "$RECORD/keys-status")"
fi
{
    for name in HOME OPENAI_API_KEY ANTHROPIC_API_KEY OPENAI_BASE_URL ANTHROPIC_BASE_URL ZUVO_SERVICE_URL PWD; do
        echo "$name=${!name:-}"
    done
    for argument in "$@"; do echo "argument=$argument"; done
} >"$RECORD/zuvo-call"
kill -0 "$(cat "$RECORD/standin-pid" 2>/dev/null)" 2>/dev/null && echo "standin=alive" >>"$RECORD/zuvo-call"
if [[ -e "$RECORD/zuvo-waits" ]]; then
    trap 'kill -0 "$(cat "$RECORD/standin-pid")" && echo "standin=alive" >"$RECORD/at-interrupt"; exit 130' INT
    touch "$RECORD/zuvo-runs"
    while :; do sleep 0.1; done
fi
status="$(cat "$RECORD/zuvo-status")"
if [[ "$status" == 0 ]]; then
    exports="$HOME/Library/Application Support/ZuvoManager/exports/Dropped Files (2)"
    mkdir -p "$exports"
    echo "# Story Brief of the test" >"$exports/story_brief.md"
fi
exit "$status"
"""
# Writes down what it was given, and ends as when its window is closed.
APPLICATION = """#!/bin/bash
{
    for name in HOME OPENAI_API_KEY ANTHROPIC_API_KEY OPENAI_BASE_URL ANTHROPIC_BASE_URL ZUVO_SERVICE_URL; do
        echo "$name=${!name:-}"
    done
    for argument in "$@"; do echo "argument=$argument"; done
} >"$RECORD/application-call"
kill -0 "$(cat "$RECORD/standin-pid")" && echo "standin=alive" >>"$RECORD/application-call"
exit "$(cat "$RECORD/application-status")"
"""
# Configuring puts the made-up programs where a build would put the real ones.
CMAKE = """
if [[ "$1" == -S ]]; then
    for place in src/cli/zuvo src/app/ZuvoManager tools/standin/zuvo-standin; do
        mkdir -p "$2/build/release/$(dirname "$place")"
        cp "$RECORD/$(basename "$place")" "$2/build/release/$place"
    done
fi
"""


class RunTest(unittest.TestCase):
    def setUp(self) -> None:
        holder = tempfile.TemporaryDirectory(prefix="zuvo run ")
        self.addCleanup(holder.cleanup)
        self.folder = Path(holder.name)
        self.tree = self.folder / "a tree"
        self.record = self.folder / "record"
        self.elsewhere = self.folder / "elsewhere"
        for folder in (self.tree, self.record, self.elsewhere, self.folder / "home"):
            folder.mkdir()
        shutil.copy(ROOT / "run", self.tree)
        shutil.copytree(ROOT / "tools/setup", self.tree / "tools/setup")
        (self.tree / "tools/setup/packages.txt").write_text("")
        sample = self.tree / "resources/sample"
        sample.mkdir(parents=True)
        for name in ("one.m4a", "two.m4a", "README.md"):
            (sample / name).write_text("")
        for name, text in (("zuvo", ZUVO), ("ZuvoManager", APPLICATION), ("zuvo-standin", STANDIN)):
            (self.record / name).write_text(text)
            (self.record / name).chmod(0o755)
        self.say("keys-status", "1")
        self.say("zuvo-status", "0")
        self.say("application-status", "0")
        programs = FakePrograms(self.folder / "bin")
        programs.add("cmake", CMAKE)
        programs.add("dpkg-query")
        programs.add("apt-get", "exit 1")
        self.environment = {
            "PATH": f"{programs.folder}:{os.environ['PATH']}",
            "HOME": str(self.folder / "home"),
            "RECORD": str(self.record),
        }

    def say(self, name: str, text: str) -> None:
        (self.record / name).write_text(text)

    def run_it(self, *arguments: str, **variables: str) -> subprocess.CompletedProcess:
        return subprocess.run([self.tree / "run", *arguments], env=self.environment | variables, cwd=self.elsewhere,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60, check=False)

    def zuvo_call(self) -> list[str]:
        return (self.record / "zuvo-call").read_text().splitlines()

    def assert_standin_is_gone(self) -> None:
        pid = int((self.record / "standin-pid").read_text())
        with self.assertRaises(ProcessLookupError):
            os.kill(pid, 0)

    def test_the_sample_is_mined_against_the_standin_and_its_story_shown(self) -> None:
        run = self.run_it()
        self.assertEqual(run.returncode, 0, run.stderr)
        home = self.tree / "build/run-home"
        self.assertEqual(self.zuvo_call(), [
            f"HOME={home}",
            "OPENAI_API_KEY=made-up-key",
            "ANTHROPIC_API_KEY=made-up-key",
            "OPENAI_BASE_URL=http://127.0.0.1:4711/v1",
            "ANTHROPIC_BASE_URL=http://127.0.0.1:4711",
            "ZUVO_SERVICE_URL=http://127.0.0.1:4711",
            f"PWD={self.elsewhere}",
            "argument=mine",
            f"argument={self.tree}/resources/sample/one.m4a",
            f"argument={self.tree}/resources/sample/two.m4a",
            "standin=alive",
        ])
        self.assertEqual((self.record / "standin-arguments").read_text(), "--port 0\n")
        self.assertIn("# Story Brief of the test\n", run.stdout)
        self.assertTrue(run.stdout.endswith(
            f"  {home}/Library/Application Support/ZuvoManager/exports/Dropped Files (2)\n"))
        self.assert_standin_is_gone()

    def test_on_a_desktop_the_window_opens_against_the_standin(self) -> None:
        for display in ("DISPLAY", "WAYLAND_DISPLAY"):
            with self.subTest(display=display):
                run = self.run_it(OPENAI_API_KEY="real", ZUVO_SERVICE_URL="http://10.0.0.1", **{display: ":7"})
                self.assertEqual(run.returncode, 0, run.stderr)
                self.assertEqual((self.record / "application-call").read_text().splitlines(), [
                    f"HOME={self.tree}/build/run-home",
                    "OPENAI_API_KEY=made-up-key",
                    "ANTHROPIC_API_KEY=made-up-key",
                    "OPENAI_BASE_URL=http://127.0.0.1:4711/v1",
                    "ANTHROPIC_BASE_URL=http://127.0.0.1:4711",
                    "ZUVO_SERVICE_URL=http://127.0.0.1:4711",
                    "standin=alive",
                ])
                self.assertIn("zuvo_try", run.stdout)
                self.assertFalse((self.record / "zuvo-call").exists())
                self.assert_standin_is_gone()

    def test_the_status_of_a_window_is_the_applications(self) -> None:
        self.say("application-status", "1")
        self.assertEqual(self.run_it(DISPLAY=":7").returncode, 1)
        self.assert_standin_is_gone()

    def test_the_sample_never_sees_the_callers_keys_or_addresses(self) -> None:
        self.say("keys-status", "0")
        run = self.run_it(OPENAI_API_KEY="real", ANTHROPIC_API_KEY="real", OPENAI_BASE_URL="http://10.0.0.1/v1",
                          ANTHROPIC_BASE_URL="http://10.0.0.1", ZUVO_SERVICE_URL="http://10.0.0.1")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertNotIn("real", " ".join(self.zuvo_call()))
        self.assertNotIn("10.0.0.1", " ".join(self.zuvo_call()))

    def test_a_failed_mine_gives_its_status_and_stops_the_standin(self) -> None:
        self.say("zuvo-status", "1")
        run = self.run_it()
        self.assertEqual(run.returncode, 1)
        self.assertNotIn("Story Brief", run.stdout)
        self.assert_standin_is_gone()

    def test_a_standin_that_is_slow_to_open_its_output_is_waited_for_silently(self) -> None:
        # On a busy machine the new process opens its output later than the script first looks there.
        slow_start = self.folder / "slow-start"
        slow_start.write_text("shopt -s expand_aliases\nalias setsid='sleep 0.5 && exec setsid'\n")
        run = self.run_it(BASH_ENV=str(slow_start))
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(run.stderr, "")
        self.assertIn("standin=alive", self.zuvo_call())
        self.assert_standin_is_gone()

    def test_a_standin_that_does_not_start_is_a_failure_with_its_reason(self) -> None:
        self.say("standin-fails", "")
        run = self.run_it()
        self.assertEqual(run.returncode, 1)
        self.assertIn("zuvo-standin did not start:\nno port\n", run.stderr)
        self.assertFalse((self.record / "zuvo-call").exists())

    def test_own_files_with_both_keys_go_to_the_services_from_the_callers_home(self) -> None:
        self.say("keys-status", "0")
        run = self.run_it("mine", "a b.wav", "--minutes", "3", OPENAI_API_KEY="mine")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.zuvo_call(), [
            f"HOME={self.folder}/home", "OPENAI_API_KEY=mine", "ANTHROPIC_API_KEY=", "OPENAI_BASE_URL=",
            "ANTHROPIC_BASE_URL=", "ZUVO_SERVICE_URL=", f"PWD={self.elsewhere}", "argument=mine", "argument=a b.wav",
            "argument=--minutes", "argument=3"])
        self.assertIn("Keys for both services were found", run.stdout)
        self.assertFalse((self.record / "standin-pid").exists())

    def test_own_files_without_keys_go_to_the_standin(self) -> None:
        self.say("keys-text", "OPENAI_API_KEY is missing")
        run = self.run_it("mine", "a.wav", ANTHROPIC_API_KEY="real")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertIn("keys: OPENAI_API_KEY is missing\n", run.stdout)
        self.assertEqual(self.zuvo_call()[:6], [
            f"HOME={self.tree}/build/run-home", "OPENAI_API_KEY=made-up-key", "ANTHROPIC_API_KEY=made-up-key",
            "OPENAI_BASE_URL=http://127.0.0.1:4711/v1", "ANTHROPIC_BASE_URL=http://127.0.0.1:4711",
            "ZUVO_SERVICE_URL=http://127.0.0.1:4711"])
        self.assert_standin_is_gone()

    def test_an_address_of_the_callers_is_kept_beside_the_standin(self) -> None:
        run = self.run_it("mine", "a.wav", OPENAI_BASE_URL="http://127.0.0.1:9/v1", OPENAI_API_KEY="local",
                          ANTHROPIC_BASE_URL="  ", ZUVO_SERVICE_URL="http://127.0.0.1:8")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.zuvo_call()[1:6], [
            "OPENAI_API_KEY=local", "ANTHROPIC_API_KEY=made-up-key", "OPENAI_BASE_URL=http://127.0.0.1:9/v1",
            "ANTHROPIC_BASE_URL=http://127.0.0.1:4711", "ZUVO_SERVICE_URL=http://127.0.0.1:8"])

    def test_with_both_addresses_of_the_callers_there_is_nothing_left_for_the_standin(self) -> None:
        run = self.run_it("mine", "a.wav", OPENAI_BASE_URL="http://127.0.0.1:9/v1",
                          ANTHROPIC_BASE_URL="http://127.0.0.1:9")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.zuvo_call()[0], f"HOME={self.folder}/home")
        self.assertFalse((self.record / "standin-pid").exists())

    def test_the_status_of_a_mine_of_own_files_is_zuvos(self) -> None:
        for keys, status in (("0", 1), ("0", 2), ("1", 130), ("1", 7)):
            with self.subTest(keys=keys, status=status):
                self.say("keys-status", keys)
                self.say("zuvo-status", str(status))
                self.assertEqual(self.run_it("mine", "a.wav").returncode, status)

    def test_a_key_search_that_fails_ends_the_run(self) -> None:
        self.say("keys-status", "2")
        self.say("keys-text", "no such command")
        run = self.run_it("mine", "a.wav")
        self.assertEqual(run.returncode, 2)
        self.assertIn("no such command", run.stderr)
        self.assertFalse((self.record / "zuvo-call").exists())

    def test_ctrl_c_is_answered_by_zuvo_while_the_standin_still_lives(self) -> None:
        self.say("zuvo-waits", "")
        pid, terminal = pty.fork()
        if pid == 0:
            os.chdir(self.elsewhere)
            os.execve(self.tree / "run", [str(self.tree / "run")], self.environment)
        deadline = time.monotonic() + 30
        while not (self.record / "zuvo-runs").exists():
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.05)
        os.write(terminal, b"\x03")
        try:
            while os.read(terminal, 4096):
                pass
        except OSError:  # Linux says so when the other end is closed
            pass
        os.close(terminal)
        self.assertEqual(os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]), 130)
        self.assertEqual((self.record / "at-interrupt").read_text(), "standin=alive\n")
        self.assert_standin_is_gone()

    def test_a_terminated_run_stops_the_standin(self) -> None:
        self.say("zuvo-waits", "")
        run = subprocess.Popen([self.tree / "run"], env=self.environment, cwd=self.elsewhere,
                               stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, start_new_session=True)
        deadline = time.monotonic() + 30
        while not (self.record / "zuvo-runs").exists():
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.05)
        os.kill(run.pid, signal.SIGTERM)
        os.killpg(run.pid, signal.SIGINT)
        # Which of the two signals the shell tells of is its own affair.
        self.assertIn(run.wait(30), (130, 143))
        self.assert_standin_is_gone()

    def test_wrong_usage_builds_nothing(self) -> None:
        for arguments in (("mine",), ("dig",)):
            with self.subTest(arguments=arguments):
                self.assertEqual(self.run_it(*arguments).returncode, 2)
        self.assertFalse((self.tree / "build").exists())

    def test_help_is_no_failure_and_builds_nothing(self) -> None:
        run = self.run_it("--help")
        self.assertEqual(run.returncode, 0)
        self.assertIn("./run mine FILE...", run.stdout)
        self.assertFalse((self.tree / "build").exists())


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=1))
