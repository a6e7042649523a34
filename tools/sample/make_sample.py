#!/usr/bin/env python3
"""Makes the sample interview of resources/sample: two media files, transcript.json and transcript.txt.

    make_sample.py [OUTPUT_FOLDER]

Needs Python 3 alone, the espeak-ng library, ffmpeg and ffprobe. The results are kept in the repository, so nobody has to run
this to build or to test; the same versions of both tools give the same files again.
"""
import array
import json
import math
import pathlib
import random
import subprocess
import sys
import tempfile
import wave

import espeak
import story

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "resources" / "sample"

# Levels are RMS over a line in dB below full scale, measured as the energy analysis does it: at 1000 samples a second.
LEVELS = {story.CLOSE: -23.5, story.ASIDE: -27.5, story.FAR: -50.5}
LEVEL_SWAY = 0.6  # each line is off its level by at most this many dB, as nobody speaks evenly
ROOM_TONE_DB = -70.0
FAR_LOW_PASS_HZ = 2200.0
CHANNEL_GAP_DB = {"harbour_interview_01": 10.0, "harbour_interview_02": 0.0}  # how far right lies below left

VOICES = {  # espeak-ng voice, words per minute, pitch, pitch range
    "subject": ("en+f2", 140, 46, 62),
    "interviewer": ("en-us+m3", 150, 40, 50),
}

LEAD_IN, LEAD_OUT = 1.2, 1.6  # seconds of room tone before the first line and after the last
BETWEEN_LINES = (0.38, 0.52)  # seconds between two lines of one turn
BETWEEN_TURNS = (1.1, 1.7)

ENVELOPE_RATE = 16000
ENVELOPE_STEP = 320  # samples: 20 ms
ENVELOPE_FLOOR_DB = -90

ENCODER = ["-c:a", "aac", "-b:a", "80k", "-ar", "48000", "-ac", "2"]


def ffmpeg(arguments, data=None):
    command = ["ffmpeg", "-hide_banner", "-nostats", "-loglevel", "error", *arguments]
    return subprocess.run(command, input=data, stdout=subprocess.PIPE, check=True).stdout


def decode(path, arguments):
    return array.array("h", ffmpeg(["-i", str(path), *arguments, "-f", "s16le", "-"]))


def rms_db(samples):
    power = sum(value * value for value in samples) / max(1, len(samples))
    return 10.0 * math.log10(max(power, 1e-9) / 32768.0 ** 2)


def level_at_1000(samples, rate):
    raw = array.array("h", (max(-32768, min(32767, int(value))) for value in samples))
    low = ffmpeg(["-f", "s16le", "-ar", str(rate), "-ac", "1", "-i", "-", "-af", "aresample=1000", "-f", "s16le", "-"],
                 raw.tobytes())
    return rms_db(array.array("h", low))


def low_pass(samples, rate, corner):
    """Two one-pole filters in a row: a voice from across the room has lost its edges."""
    share = 1.0 - math.exp(-2.0 * math.pi * corner / rate)
    for _ in range(2):
        state, result = 0.0, []
        for value in samples:
            state += share * (value - state)
            result.append(state)
        samples = result
    return samples


def room_tone(count, generator):
    """Brownish noise with the slow breath of a room near the sea."""
    state, result = 0.0, []
    for index in range(count):
        state = 0.94 * state + generator.uniform(-1.0, 1.0)
        result.append(state * (1.0 + 0.25 * math.sin(index / 52000.0)))
    scale = 32768.0 * 10.0 ** (ROOM_TONE_DB / 20.0) / math.sqrt(sum(v * v for v in result) / max(1, count))
    return [value * scale for value in result]


def speak(speaker, nearness, text, generator):
    who = "interviewer" if nearness == story.FAR else "subject"
    samples, words = speaker.say(text, *VOICES[who])
    shaped = low_pass(samples, speaker.rate, FAR_LOW_PASS_HZ) if nearness == story.FAR else list(samples)
    wanted = LEVELS[nearness] + generator.uniform(-LEVEL_SWAY, LEVEL_SWAY)
    gain = 10.0 ** ((wanted - level_at_1000(shaped, speaker.rate)) / 20.0)
    return who, [value * gain for value in shaped], words


def lay_out(speaker, lines, generator):
    """The left channel as floats and the transcript lines with their times in the file."""
    track, transcript, previous = [0.0] * int(LEAD_IN * speaker.rate), [], None
    for nearness, text in lines:
        who, samples, words = speak(speaker, nearness, text, generator)
        if previous is not None:
            pause = generator.uniform(*(BETWEEN_LINES if who == previous else BETWEEN_TURNS))
            track.extend([0.0] * int(pause * speaker.rate))
        begin = len(track) / speaker.rate
        track.extend(samples)
        timed = [{"word": w, "start": round(begin + s, 3), "end": round(begin + e, 3)} for w, s, e in words]
        transcript.append({"start": timed[0]["start"], "end": timed[-1]["end"], "speaker": who, "text": text,
                           "words": timed})
        previous = who
    track.extend([0.0] * int(LEAD_OUT * speaker.rate))
    tone = room_tone(len(track), generator)
    return [a + b for a, b in zip(track, tone)], transcript


def write_stereo(path, left, rate, gap_db):
    peak = max(abs(value) for value in left)
    if peak > 32000:
        raise SystemExit(f"{path.name}: a peak of {peak:.0f} would clip; lower LEVELS")
    share = 10.0 ** (-gap_db / 20.0)
    frames = array.array("h")
    for value in left:
        frames.append(round(value))
        frames.append(round(value * share))
    with tempfile.TemporaryDirectory() as folder:
        plain = pathlib.Path(folder) / "plain.wav"
        with wave.open(str(plain), "wb") as out:
            out.setnchannels(2)
            out.setsampwidth(2)
            out.setframerate(rate)
            out.writeframes(frames.tobytes())
        ffmpeg(["-y", "-i", str(plain), *ENCODER, "-fflags", "+bitexact", "-flags:a", "+bitexact",
                "-movflags", "+faststart", str(path)])


def envelope(path):
    """One whole dB figure for each 20 ms of the mono downmix at 16 kHz."""
    samples = decode(path, ["-ac", "1", "-ar", str(ENVELOPE_RATE)])
    steps = [samples[at:at + ENVELOPE_STEP] for at in range(0, len(samples) - ENVELOPE_STEP + 1, ENVELOPE_STEP)]
    return [max(ENVELOPE_FLOOR_DB, round(rms_db(step))) for step in steps]


def container_duration(path):
    command = ["ffprobe", "-v", "quiet", "-show_entries", "format=duration", "-of", "csv=p=0", str(path)]
    return float(subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout)


def check(path, lines, duration):
    """Prints what a run of the program will find, so that a change of levels can be judged."""
    samples = decode(path, ["-af", "pan=1c|c0=c0,aresample=1000", "-ac", "1", "-ar", "1000"])
    print(f"{path.name}: {duration:.3f} s, {path.stat().st_size} bytes")
    for line in lines:
        level = rms_db(samples[int(line["start"] * 1000):int(line["end"] * 1000)])
        print(f"  {line['start']:7.3f} - {line['end']:7.3f}  {level:6.1f} dB  {line['speaker']:11}  {line['text']}")


def readable(files):
    text = []
    for file in files:
        text.append(f"{file['name']} ({file['duration']:.1f} s)\n")
        text += [f"[{line['start']:.1f}-{line['end']:.1f}s] {line['speaker']}: {line['text']}" for line in file["lines"]]
        text.append("")
    return "\n".join(text)


def main():
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else FOLDER
    folder.mkdir(parents=True, exist_ok=True)
    speaker, generator, files = espeak.Speaker(), random.Random(31), []
    for name, script in story.INTERVIEW.items():
        path = folder / f"{name}.m4a"
        left, lines = lay_out(speaker, script, generator)
        write_stereo(path, left, speaker.rate, CHANNEL_GAP_DB[name])
        levels, duration = envelope(path), container_duration(path)
        check(path, lines, duration)
        files.append({"name": path.name, "duration": round(duration, 3), "lines": lines, "envelope": levels})
    truth = {"language": "english", "envelopeStepSeconds": ENVELOPE_STEP / ENVELOPE_RATE, "files": files}
    (folder / "transcript.json").write_text(json.dumps(truth, separators=(",", ":")) + "\n", encoding="utf-8")
    (folder / "transcript.txt").write_text(readable(files), encoding="utf-8")


if __name__ == "__main__":
    main()
