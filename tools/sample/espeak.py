"""Speech and word times from the espeak-ng library, through ctypes.

The library reports an event with a position in the audio for every word that it begins to speak. Those positions are
the word starts. A word ends where the next one starts, or earlier, where its sound has died away (before a comma's
pause, for instance).
"""
import array
import ctypes
import ctypes.util
import re

_RETRIEVAL = 1  # the library hands the samples to a callback and plays nothing
_CHARS_UTF8 = 1
_PARAMETER_RATE, _PARAMETER_PITCH, _PARAMETER_RANGE = 1, 3, 4
_EVENT_LIST_END, _EVENT_WORD = 0, 1

QUIET_SHARE = 0.04  # a 10 ms step below this share of the line's peak counts as silence


class _Id(ctypes.Union):
    _fields_ = [("number", ctypes.c_int), ("name", ctypes.c_char_p), ("string", ctypes.c_char * 8)]


class _Event(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("unique_identifier", ctypes.c_uint), ("text_position", ctypes.c_int),
                ("length", ctypes.c_int), ("audio_position", ctypes.c_int), ("sample", ctypes.c_int),
                ("user_data", ctypes.c_void_p), ("id", _Id)]


_CALLBACK = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.POINTER(ctypes.c_short), ctypes.c_int, ctypes.POINTER(_Event))


class Speaker:
    """One library instance; `say` gives samples and word times."""

    def __init__(self):
        name = ctypes.util.find_library("espeak-ng") or "libespeak-ng.so.1"
        self._library = ctypes.CDLL(name)
        self.rate = self._library.espeak_Initialize(_RETRIEVAL, 0, None, 0)
        if self.rate <= 0:
            raise SystemExit("espeak-ng could not be initialised")

    def say(self, text, voice, words_per_minute, pitch, pitch_range):
        """Samples (signed 16 bit) and [(word, start, end)] in seconds from the first sample."""
        samples = array.array("h")
        events = []

        def take(wave, count, event):
            if wave and count > 0:
                samples.extend(wave[:count])
            index = 0
            while event[index].type != _EVENT_LIST_END:
                if event[index].type == _EVENT_WORD:
                    # text_position counts characters from 1, audio_position milliseconds
                    events.append((event[index].text_position - 1, event[index].audio_position / 1000.0))
                index += 1
            return 0

        callback = _CALLBACK(take)
        self._library.espeak_SetSynthCallback(callback)
        if self._library.espeak_SetVoiceByName(voice.encode()) != 0:
            raise SystemExit(f"espeak-ng has no voice {voice}")
        for parameter, value in ((_PARAMETER_RATE, words_per_minute), (_PARAMETER_PITCH, pitch),
                                 (_PARAMETER_RANGE, pitch_range)):
            self._library.espeak_SetParameter(parameter, value, 0)
        data = text.encode()
        self._library.espeak_Synth(data, len(data) + 1, 0, 1, 0, _CHARS_UTF8, None, None)
        self._library.espeak_Synchronize()
        return samples, _word_times(text, events, samples, self.rate)


def _syllables(word):
    return max(1, len(re.findall(r"[aeiouy]+", word.lower())))


def _word_times(text, events, samples, rate):
    words = [(match.group(), match.start()) for match in re.finditer(r"\S+", text)]
    starts = [None] * len(words)
    for position, seconds in events:
        for index, (word, offset) in enumerate(words):
            if offset <= position < offset + len(word) and starts[index] is None:
                starts[index] = seconds
    total = len(samples) / rate
    _fill_missing(words, starts, total)
    result = []
    for index, (word, _) in enumerate(words):
        limit = starts[index + 1] if index + 1 < len(words) else total
        result.append((word, starts[index], _end_of_sound(samples, rate, starts[index], limit)))
    return result


def _fill_missing(words, starts, total):
    """Words that were run together in one event share its span by their syllables."""
    if starts[0] is None:
        starts[0] = 0.0
    index = 1
    while index < len(words):
        if starts[index] is not None:
            index += 1
            continue
        stop = index
        while stop < len(words) and starts[stop] is None:
            stop += 1
        begin, end = starts[index - 1], starts[stop] if stop < len(words) else total
        weights = [_syllables(word) for word, _ in words[index - 1:stop]]
        passed = 0
        for place in range(index, stop):
            passed += weights[place - index]
            starts[place] = begin + (end - begin) * passed / sum(weights)
        index = stop


def _end_of_sound(samples, rate, start, limit):
    step = rate // 100
    first, last = int(start * rate), min(int(limit * rate), len(samples))
    threshold = QUIET_SHARE * max(1, max(abs(value) for value in samples))
    while last - step > first and max(abs(value) for value in samples[last - step:last]) < threshold:
        last -= step
    return last / rate
