"""Reads gcovr's JSON summary from standard input and prints how many lines of each folder of src/ the tests run.

    by_folder.py PERCENT     marks the folders that lie below that share
"""

import json
import sys


def shares(summary: dict) -> dict[str, tuple[int, int]]:
    """The lines and the lines run, by folder of src/, in the order of their names."""
    counted: dict[str, tuple[int, int]] = {}
    for file in summary["files"]:
        parts = file["filename"].split("/")
        if parts[0] != "src" or len(parts) < 3:
            continue
        lines, run = counted.get(parts[1], (0, 0))
        counted[parts[1]] = (lines + file["line_total"], run + file["line_covered"])
    return dict(sorted(counted.items()))


def table(counted: dict[str, tuple[int, int]], aim: float) -> str:
    rows = [f"{'folder':<12}{'lines':>8}{'run':>8}{'share':>10}"]
    for folder, (lines, run) in counted.items():
        share = 100.0 * run / lines if lines else 100.0
        rows.append(f"{folder:<12}{lines:>8}{run:>8}{share:>8.1f} %{'' if share >= aim else f'   below {aim:g} %'}")
    return "\n".join(rows)


if __name__ == "__main__":
    folders = shares(json.load(sys.stdin))
    if not folders:
        sys.exit("gcovr has counted no line of src/.")
    print(table(folders, float(sys.argv[1])))
