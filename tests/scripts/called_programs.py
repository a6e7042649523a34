"""Which programs the files of this tree call, and which Debian package of this machine brings a program.

What is seen: every command of a shell script (shell_reader.py); in Python the first word of a list given to subprocess,
os.exec* or a function that hands it on, and shell scripts in texts; in C++ absolute paths, plain names given to QProcess,
tools looked for at their fixed places, and shell scripts in texts; in CMake what find_program looks for and what COMMAND
names. What is not seen: a name that is put together when it runs."""

import ast
import functools
import re
import subprocess
from pathlib import Path

from shell_reader import programs_of_shell

SYSTEM_PATH = ("/usr/bin", "/bin", "/usr/sbin", "/sbin")
# The first argument of these is a list that begins with a program; of those below, the program itself.
TAKING_LISTS = {"run", "Popen", "call", "check_call", "check_output"}
TAKING_NAMES = {"execvp", "execvpe", "execv", "execve", "which", "find_executable"}
TEXT_OF_SHELL = re.compile(r"#!\s*/(usr/)?bin/(env )?(ba|da)?sh\b")
PLAIN_NAME = re.compile(r"[A-Za-z0-9_+][A-Za-z0-9_.+-]*")


def is_shell_script(text: str) -> bool:
    return bool(TEXT_OF_SHELL.match(text)) or text.startswith("# shellcheck shell=bash")


# Python.

def text_of(node: ast.AST) -> str | None:
    return node.value if isinstance(node, ast.Constant) and isinstance(node.value, str) else None


def first_of_list(node: ast.AST) -> str | None:
    return text_of(node.elts[0]) if isinstance(node, (ast.List, ast.Tuple)) and node.elts else None


def call_name(node: ast.Call) -> str:
    return node.func.attr if isinstance(node.func, ast.Attribute) else getattr(node.func, "id", "")


def handing_on(tree: ast.AST) -> set[str]:
    """Functions such as "def run(*command)" that give their arguments to subprocess as they are."""
    return {function.name for function in ast.walk(tree)
            if isinstance(function, ast.FunctionDef) and function.args.vararg
            for call in ast.walk(function)
            if isinstance(call, ast.Call) and call_name(call) in TAKING_LISTS and call.args
            and getattr(call.args[0], "id", "") == function.args.vararg.arg}


def programs_of_python(text: str) -> set[str]:
    found = set()
    tree = ast.parse(text)
    taking_names = TAKING_NAMES | handing_on(tree)
    for node in ast.walk(tree):
        script = text_of(node)
        if script is not None and is_shell_script(script):
            found |= programs_of_shell(script)
        # A list kept for later begins with a program if a short option follows it.
        if isinstance(node, ast.List) and len(node.elts) > 1 and re.match("-[a-z]", text_of(node.elts[1]) or ""):
            found.add(first_of_list(node) or "")
        if not isinstance(node, ast.Call) or not node.args:
            continue
        name = call_name(node)
        if name in TAKING_LISTS:
            found.add(first_of_list(node.args[0]) or "")
        if name in taking_names:
            found.add(text_of(node.args[0]) or "")
        if name == "link":  # FakePrograms.link
            found |= {text_of(argument) or "" for argument in node.args}
    return {name for name in found if PLAIN_NAME.fullmatch(name.rpartition("/")[2]) and not name.startswith("-")}


# C++.

def cpp_texts(text: str) -> list[str]:
    """The text literals, those that follow one another as one."""
    without_comments = re.sub(r'("(?:\\.|[^"\\\n])*")|//[^\n]*', lambda m: m.group(1) or "", text)
    without_raw = re.sub(r'R"(\w*)\((.*?)\)\1"', lambda m: '"' + re.sub(r'(["\\])', r"\\\1", m.group(2)).replace(
        "\n", "\\n") + '"', without_comments, flags=re.DOTALL)
    joined = re.sub(r'"\s*\n?\s*"', "", without_raw)
    literals = re.findall(r'"((?:\\.|[^"\\\n])*)"', joined)
    return [literal.replace("\\n", "\n").replace('\\"', '"').replace("\\\\", "\\") for literal in literals]


def programs_of_cpp(text: str) -> set[str]:
    found = set()
    for literal in cpp_texts(text):
        if is_shell_script(literal):
            try:
                found |= programs_of_shell(literal)
            except ValueError:  # a script whose rest is put behind it when it runs
                pass
        found |= set(re.findall(r"(?<![\w.}])(?:/usr)?/s?bin/([A-Za-z0-9_+.-]+)", literal))
    call = r'(?:start|execute|startDetached|setProgram|findExecutable|fixedToolPath)\(\s*(?:QStringLiteral\(|u?)"([^"]+)"'
    found |= set(re.findall(call, text))
    found |= set(re.findall(r'\bexecl?v?p?e?\("([^"]+)"', text))
    return {name for name in found if PLAIN_NAME.fullmatch(name.rpartition("/")[2]) and not name.startswith("/no/")}


# CMake.

def programs_of_cmake(text: str) -> set[str]:
    found = set(re.findall(r"find_program\(\s*\S+\s+(?:NAMES\s+)?([A-Za-z0-9_+.-]+)", text))
    return found | {name for name in re.findall(r"\bCOMMAND\s+([a-z][A-Za-z0-9_+.-]*)", text)
                    if not name.startswith("zuvo")}


def programs_of(path: Path) -> set[str]:
    """Names and absolute paths. Files of other kinds call nothing."""
    if path.suffix == ".py":
        return programs_of_python(path.read_text())
    if path.suffix in (".cpp", ".h"):
        return programs_of_cpp(path.read_text())
    if path.name == "CMakeLists.txt" or path.suffix == ".cmake":
        return programs_of_cmake(path.read_text())
    if path.suffix in ("", ".sh"):
        text = path.read_text(errors="replace")
        if is_shell_script(text) or path.parent.name == "completion":
            return programs_of_shell(text)
    return set()


# The packages of this machine.

@functools.cache
def query(*arguments: str) -> str:
    return subprocess.run(["dpkg-query", *arguments], capture_output=True, text=True, check=False).stdout


def installed_path(name: str) -> str | None:
    """Of the system's own program of that name: what a developer has put before it on PATH does not count."""
    if name.startswith("/"):
        return name if Path(name).exists() else None
    return next((f"{folder}/{name}" for folder in SYSTEM_PATH if Path(folder, name).exists()), None)


def owner(path: str) -> str | None:
    """The package that brings a file, or what a link of the alternatives leads to; none for a file of no package."""
    both = (path, str(Path(path).resolve()))
    # The folders of the root are links into /usr, and a package may know the file by either name.
    spellings = {spelling for one in both for spelling in (one, one.removeprefix("/usr"), "/usr" + one)}
    lines = [line for line in query("-S", *sorted(spellings)).splitlines() if not line.startswith("diversion")]
    return lines[0].split(":")[0].split(",")[0] if lines else None


def is_on_every_debian(package: str) -> bool:
    """Whether the smallest Debian has it: an Essential package, what these depend on, and apt."""
    if package in ("apt", "mawk"):  # base-files, which is Essential, wants an awk; without another it is this one
        return True
    return query("-W", "-f=${Essential}", package) == "yes"


def same_source(package: str, others: set[str]) -> bool:
    """Whether one of the others is made of the same source and depends on it, as python3 on python3-minimal."""
    source = query("-W", "-f=${source:Package}", package)
    for line in query("-W", "-f=${source:Package}|${Pre-Depends}, ${Depends}\n", *sorted(others)).splitlines():
        other_source, _, needed = line.partition("|")
        if other_source == source and re.search(rf"(^|[ ,]){re.escape(package)}([ ,(]|$)", needed):
            return True
    return False
