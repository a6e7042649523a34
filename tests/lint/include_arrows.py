#!/usr/bin/env python3
"""Holds the include lines to the arrows between the folders: each layer sees only what lies below it.

    include_arrows.py ROOT

Prints each wrong include as "file:line: reason" and ends with 1 if there is one, or if there was nothing to look at.
"""

import re
import sys
from pathlib import Path

# What each folder under src/ may include besides itself and what those may include in turn.
DIRECT = {
    "base": [],
    "model": ["base"],
    "exporters": ["model"],
    "steps": ["model"],
    "platform": ["model"],
    "resolve": ["platform", "steps"],
    "pipeline": ["resolve", "platform", "steps"],
    "account": ["platform"],
    "plugin": ["account"],  # asks the account service for the newest version
    "ui": ["pipeline", "account", "plugin", "exporters"],
    "app": ["ui"],
    "cli": ["pipeline", "account", "plugin", "exporters"],
    # Not under src/: the stand-in is a tool on the pure layers, and some tests of the exporters read with Qt's reader.
    "standin": ["steps"],
    "exporters_xml": ["exporters"],
}

# The folders that compile without Qt, so that they can be fuzzed and measured alone.
DOMAIN = ["base", "model", "exporters", "steps"]

# Tests of these layers run against the stand-in.
TESTED_WITH_STANDIN = ["platform", "resolve", "pipeline", "account", "plugin", "ui", "cli"]

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
QT_HEADER = re.compile(r"^(Q[A-Z]|Qt|qcoro|QCoro|q[a-z]+\.h$)")


def allowed_layers(layer: str) -> set[str]:
    found = {layer}
    for below in DIRECT[layer]:
        found |= allowed_layers(below)
    return found


def place_of(path: Path) -> tuple[str, str]:
    """("layer", name), ("test", name of the layer under test or "") or ("other", "") of a path below the root."""
    parts = path.parts
    if parts[0] == "src":
        return "layer", parts[1]
    if parts[:2] == ("tools", "standin"):
        return "layer", "standin"
    if parts[0] == "tests":
        return "test", parts[2] if parts[1:2] == ("unit",) and len(parts) > 3 else ""
    return "other", ""


def wrong_include(path: Path, quote: str, header: str) -> str | None:
    """Why the file at `path` (below the root) must not include the header, or None."""
    kind, layer = place_of(path)
    if header.endswith((".cpp", ".cc", ".c")):
        return f'"{header}" is a source, not a header'
    if quote == "<":
        if layer in DOMAIN and QT_HEADER.match(header):
            return f"<{header}> is of Qt, which begins above {layer}/"
        return None
    folder = header.split("/")[0]
    if kind == "layer":
        if layer not in DIRECT:
            return f"{layer}/ has no place among the layers"
        if header.endswith(".moc"):
            return None
        if "/" not in header or folder not in DIRECT:
            return f'"{header}" is not written from the include root'
        if folder not in allowed_layers(layer):
            return f'{layer}/ must not see {folder}/ ("{header}")'
    if kind == "test" and layer in DIRECT and folder in DIRECT:
        seen = allowed_layers(layer)
        if layer in TESTED_WITH_STANDIN:
            seen |= allowed_layers("standin")
        if folder not in seen:
            return f'tests of {layer}/ must not see {folder}/ ("{header}")'
    return None


def check(root: Path) -> tuple[list[str], int]:
    """The complaints, and how many files were looked at."""
    complaints = []
    count = 0
    for top in ("src", "tools", "tests", "benchmarks"):
        for path in sorted((root / top).rglob("*")):
            if path.suffix not in (".h", ".cpp") or not path.is_file():
                continue
            count += 1
            below = path.relative_to(root)
            for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), start=1):
                match = INCLUDE.match(line)
                if match:
                    reason = wrong_include(below, match.group(1), match.group(2))
                    if reason:
                        complaints.append(f"{below}:{number}: {reason}")
    return complaints, count


def main() -> int:
    if len(sys.argv) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    complaints, count = check(Path(sys.argv[1]))
    for complaint in complaints:
        print(complaint)
    if count == 0:
        print("No source was found.")
        return 1
    if not complaints:
        print(f"{count} files, every include points downward")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
