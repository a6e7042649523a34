"""How the built programs are protected, read from their ELF headers.

    hardening_test.py BUILD_FOLDER [--optimised]

`--optimised`: the build optimises without sanitizers, so glibc's checked functions are expected too.
"""

import os
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

OPTIMISED = "--optimised" in sys.argv
if OPTIMISED:
    sys.argv.remove("--optimised")
BUILD = Path(sys.argv.pop())

SHIPPED = ("src/cli/zuvo", "src/app/ZuvoManager", "tools/standin/zuvo-standin")

ET_DYN = 3
PT_DYNAMIC, PT_GNU_STACK, PT_GNU_RELRO = 2, 0x6474E551, 0x6474E552
PF_EXECUTABLE = 1
DT_NEEDED, DT_STRTAB, DT_SYMTAB, DT_RPATH, DT_RUNPATH = 1, 5, 6, 15, 29
DT_FLAGS, DT_FLAGS_1 = 30, 0x6FFFFFFB
DF_BIND_NOW, DF_1_NOW, DF_1_PIE = 0x8, 0x1, 0x08000000


class Elf:
    """The parts of a little-endian 64-bit ELF file that say how it is protected."""

    def __init__(self, path: Path) -> None:
        self.bytes = path.read_bytes()
        if self.bytes[:6] != b"\x7fELF\x02\x01":
            raise ValueError(f"{path} is not a little-endian 64-bit ELF file")
        self.type = struct.unpack_from("<H", self.bytes, 16)[0]
        offset, = struct.unpack_from("<Q", self.bytes, 32)
        size, count = struct.unpack_from("<HH", self.bytes, 54)
        self.segments = [struct.unpack_from("<IIQQQQQQ", self.bytes, offset + index * size) for index in range(count)]
        self.dynamic = self._dynamic_entries()

    def segment(self, kind: int):
        return next((segment for segment in self.segments if segment[0] == kind), None)

    def values(self, tag: int) -> list[int]:
        return [value for entry, value in self.dynamic if entry == tag]

    def texts(self, tag: int) -> list[str]:
        return [self._text(value) for value in self.values(tag)]

    def undefined_symbols(self) -> set[str]:
        """The functions and data that the program takes from libraries."""
        sections = self._sections()
        for kind, offset, size, link in sections:
            if kind == 11:  # SHT_DYNSYM
                names = sections[link][1]
                break
        else:
            return set()
        symbols = set()
        for at in range(offset, offset + size, 24):
            name, _, _, section = struct.unpack_from("<IBBH", self.bytes, at)
            if section == 0 and name:
                symbols.add(self._text_at(names + name))
        return symbols

    def _dynamic_entries(self) -> list[tuple[int, int]]:
        segment = self.segment(PT_DYNAMIC)
        if segment is None:
            return []
        _, _, offset, _, _, size, _, _ = segment
        entries = [struct.unpack_from("<qQ", self.bytes, at) for at in range(offset, offset + size, 16)]
        return entries[: next((index for index, entry in enumerate(entries) if entry[0] == 0), len(entries))]

    def _sections(self) -> list[tuple[int, int, int, int]]:
        start, = struct.unpack_from("<Q", self.bytes, 40)
        size, count = struct.unpack_from("<HH", self.bytes, 58)
        sections = []
        for index in range(count):
            _, kind, _, _, offset, length, link = struct.unpack_from("<IIQQQQI", self.bytes, start + index * size)
            sections.append((kind, offset, length, link))
        return sections

    def _text(self, offset: int) -> str:
        table, = self.values(DT_STRTAB)
        for kind, _, file_offset, address, _, size, _, _ in self.segments:
            if kind == 1 and address <= table < address + size:
                return self._text_at(file_offset + table - address + offset)
        raise ValueError("the string table is in no segment")

    def _text_at(self, offset: int) -> str:
        return self.bytes[offset : self.bytes.index(b"\0", offset)].decode()


def built_programs() -> list[Path]:
    """Every program and loadable module of the build, those of the tests included."""
    found = []
    for folder, folders, files in os.walk(BUILD):
        folders[:] = [name for name in folders if name not in ("CMakeFiles", "found")]
        for name in files:
            path = Path(folder, name)
            if path.is_symlink() or not path.is_file() or path.suffix in (".a", ".o"):
                continue
            with path.open("rb") as file:
                if file.read(4) == b"\x7fELF":
                    found.append(path)
    return sorted(found)


def shipped_programs() -> list[Path]:
    return [BUILD / name for name in SHIPPED if (BUILD / name).exists()]


class ProgramTest(unittest.TestCase):
    def for_each(self, programs: list[Path], check) -> None:
        for program in programs:
            with self.subTest(program=str(program.relative_to(BUILD))):
                check(Elf(program))

    def test_the_build_has_made_programs(self) -> None:
        self.assertIn(BUILD / SHIPPED[0], shipped_programs())
        self.assertGreater(len(built_programs()), len(shipped_programs()))

    def test_libraries_are_looked_for_in_absolute_folders_alone(self) -> None:
        """The loader reads an empty or relative entry as a place below the current folder, which anybody may fill."""

        def check(elf: Elf) -> None:
            for entries in elf.texts(DT_RPATH) + elf.texts(DT_RUNPATH):
                for entry in entries.split(":"):
                    self.assertTrue(entry.startswith("/"), f"search path {entries!r}")

        self.for_each(built_programs(), check)

    def test_programs_load_at_a_random_address(self) -> None:
        def check(elf: Elf) -> None:
            self.assertEqual(elf.type, ET_DYN)
            self.assertTrue(any(value & DF_1_PIE for value in elf.values(DT_FLAGS_1)))

        self.for_each(shipped_programs(), check)

    def test_addresses_of_functions_are_bound_at_the_start_and_then_read_only(self) -> None:
        def check(elf: Elf) -> None:
            now = any(value & DF_BIND_NOW for value in elf.values(DT_FLAGS))
            self.assertTrue(now or any(value & DF_1_NOW for value in elf.values(DT_FLAGS_1)), "BIND_NOW")
            self.assertIsNotNone(elf.segment(PT_GNU_RELRO), "RELRO")

        self.for_each(shipped_programs(), check)

    def test_the_stack_is_guarded_and_not_executable(self) -> None:
        def check(elf: Elf) -> None:
            self.assertIn("__stack_chk_fail", elf.undefined_symbols())
            self.assertFalse(elf.segment(PT_GNU_STACK)[1] & PF_EXECUTABLE)

        self.for_each(shipped_programs(), check)

    @unittest.skipUnless(OPTIMISED, "glibc's checked functions need optimisation, and sanitizers replace them")
    def test_the_checked_functions_of_glibc_are_used(self) -> None:
        """One that the program calls: which of them it needs is the compiler's business."""

        def check(elf: Elf) -> None:
            self.assertTrue([name for name in elf.undefined_symbols() if name.endswith("_chk")])

        self.for_each(shipped_programs(), check)


class CurrentFolderTest(unittest.TestCase):
    def test_a_library_in_the_current_folder_is_not_loaded(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            for program in shipped_programs():
                for library in Elf(program).texts(DT_NEEDED):
                    Path(folder, library).write_text("This is not a library: a loader that opens it stops here.\n")
                environment = {**os.environ, "HOME": folder, "QT_QPA_PLATFORM": "offscreen"}
                environment.pop("LD_LIBRARY_PATH", None)
                started = subprocess.run(
                    [str(program), "--help"], cwd=folder, env=environment, capture_output=True, text=True, check=False
                )
                # The window's program takes no such option and says so, but it has started: the loader ends with 127.
                self.assertIn(started.returncode, (0, 2), started.stderr)
                self.assertNotIn("shared libraries", started.stderr)


class InstalledTest(unittest.TestCase):
    def test_installed_programs_have_no_search_path_of_their_own(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            installed = subprocess.run(
                [shutil.which("cmake"), "--install", str(BUILD), "--prefix", folder],
                capture_output=True,
                text=True,
                check=False,
            )
            self.assertEqual(installed.returncode, 0, installed.stdout + installed.stderr)
            programs = [Path(folder, "bin", Path(name).name) for name in SHIPPED]
            programs = [program for program in programs if program.exists()]
            self.assertEqual(len(programs), len(shipped_programs()))
            for program in programs:
                elf = Elf(program)
                self.assertEqual(elf.texts(DT_RPATH) + elf.texts(DT_RUNPATH), [], program.name)


if __name__ == "__main__":
    unittest.main()
