"""Timecodes counted with the rounded frame rate, without dropped frames."""

import re

TIMECODE = re.compile(r"(\d{2,}):([0-5]\d):([0-5]\d)[:;](\d{2,})")
DEFAULT_RATE = 24.0


def rate_of(value):
    """Frames per second of a setting, 24 if it is none that one can count by."""
    try:
        rate = float(value)
    except (TypeError, ValueError):
        return DEFAULT_RATE
    return rate if 1 <= rate <= 1000 else DEFAULT_RATE


def frames_of(timecode, rate):
    """The frame of a timecode, or None if the text is none."""
    match = TIMECODE.fullmatch(timecode) if isinstance(timecode, str) else None
    if not match:
        return None
    hours, minutes, seconds, frames = (int(field) for field in match.groups())
    if frames >= round(rate):
        return None
    return (hours * 3600 + minutes * 60 + seconds) * round(rate) + frames


def timecode_of(frame, rate):
    """The timecode of a frame from 0 on."""
    seconds, frames = divmod(frame, round(rate))
    return f"{seconds // 3600:02d}:{seconds // 60 % 60:02d}:{seconds % 60:02d}:{frames:02d}"
