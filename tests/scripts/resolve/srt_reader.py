"""A strict reader of SRT text, written for the tests alone."""

import re
from typing import NamedTuple

TIMES = re.compile(r"(\d\d+):([0-5]\d):([0-5]\d),(\d{3}) --> (\d\d+):([0-5]\d):([0-5]\d),(\d{3})")


class Entry(NamedTuple):
    number: int
    start: int  # milliseconds
    end: int
    text: str


def milliseconds(fields: tuple[str, ...]) -> int:
    hours, minutes, seconds, thousandths = map(int, fields)
    return ((hours * 60 + minutes) * 60 + seconds) * 1000 + thousandths


def read_srt(text: str) -> list[Entry]:
    """The entries of a file; a ValueError that says what is wrong otherwise.

    Each entry is its number, its times, one line of text that is not empty, and an empty line, without which the last
    one may end. Numbers rise from 1 by one.
    """
    if text == "":
        return []
    lines = text.split("\n")
    if len(lines) % 4:
        raise ValueError(f"{len(lines)} lines are no whole number of entries")
    entries = []
    for at in range(0, len(lines), 4):
        number, times, caption, gap = lines[at:at + 4]
        if number != str(at // 4 + 1):
            raise ValueError(f"line {at + 1} is no number {at // 4 + 1}: {number!r}")
        match = TIMES.fullmatch(times)
        if not match:
            raise ValueError(f"line {at + 2} holds no times: {times!r}")
        if caption == "" or caption != " " and caption != caption.strip():
            raise ValueError(f"line {at + 3} is neither a caption nor a single blank: {caption!r}")
        if gap != "":
            raise ValueError(f"line {at + 4} is not empty: {gap!r}")
        fields = match.groups()
        entries.append(Entry(int(number), milliseconds(fields[:4]), milliseconds(fields[4:]), caption))
    return entries
