"""The subtitle cards without Resolve: the functions of the script, driven in this process."""

import contextlib
import importlib.util
import io

from script_fixture import SCRIPTS

_definition = importlib.util.spec_from_file_location("subtitle_cards", SCRIPTS / "subtitle_cards.py")
cards = importlib.util.module_from_spec(_definition)
_definition.loader.exec_module(cards)

Words = list[dict]


def spoken(*times: tuple[float, float]) -> Words:
    """Spoken words from (start, end) each."""
    return [{"word": "x", "start": start, "end": end} for start, end in times]


def seconds_of_words(count: int, seconds: float = 1.0) -> Words:
    """So many words without pauses, each as long."""
    return spoken(*[(i * seconds, (i + 1) * seconds) for i in range(count)])


def numbered(count: int) -> str:
    """A translation of so many words: "w1 w2 w3"."""
    return " ".join(f"w{i + 1}" for i in range(count))


def position(start: float, end: float, translation: str, seg_idx: int = 0) -> dict:
    return {"seg_idx": seg_idx, "start_sec": start, "end_sec": end, "translation": translation, "chapter": ""}


class Walked:
    """What a walk over clips has made and printed."""

    def __init__(self, *positions: dict, words: dict | None = None, fps: float = 24.0) -> None:
        self.walk = cards.SubtitleWalk(fps)
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            for pos_i, each in enumerate(positions):
                self.walk.add_segment(pos_i, each, words or {})
        self.printed = printed.getvalue().splitlines()
        self.lines = self.walk.srt_lines
        self.entries = [(self.lines[i + 1], self.lines[i + 2]) for i in range(0, len(self.lines), 4)]
        self.captions = [text for _, text in self.entries if text != " "]


def walked(duration: float, translation: str, words: Words | None = None, fps: float = 24.0) -> Walked:
    """A walk over one clip from the timeline's start."""
    return Walked(position(0.0, duration, translation), words={0: words} if words is not None else None, fps=fps)


def printed_by(function, *arguments) -> tuple[object, list[str]]:
    """What a function gives, and the lines that it prints."""
    printed = io.StringIO()
    with contextlib.redirect_stdout(printed):
        result = function(*arguments)
    return result, printed.getvalue().splitlines()
