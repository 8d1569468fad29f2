#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Makes tools/sample/plosives.flac again: synthetic speech with bursts of air at its "p" and "b".
Beside it, voice.flac is the same voice without them, at its own rate, for tests that add their own.

    apt-get install libespeak-ng1 flac && tools/make-sample.py

Every run gives the same audio with the same version of espeak-ng. The bursts follow what recordings
of real ones show: 20 to 100 ms long, two or three swings of 20 to 140 Hz, a fast onset 10 to 20 ms
after the lips part, peaks of -17 to -2 dB, some rumble of noise.
"""

import ctypes
import math
import random
import struct
import subprocess
import sys
import tempfile
import wave
from pathlib import Path

TEXT = ("Peter packed the picnic basket. Please pass the paper plates, "
        "and bring a big bottle of apple punch.")
FOLDER = Path(__file__).resolve().parent / "sample"
SAMPLE_RATE = 44100
SPEECH_PEAK = 0.45
NOISE_RMS = 10 ** (-74 / 20)
PLOSIVES = {"p": 1.0, "b": 0.6}  # share of the full burst level
LEVELS = (0.55, 0.35, 0.8, 0.25)  # peaks in turn, full scale 1

SYNCHRONOUS, PHONEME_EVENTS, LIST_END, PHONEME = 2, 1, 0, 7  # constants of speak_lib.h


class EventId(ctypes.Union):
    _fields_ = [("number", ctypes.c_int), ("name", ctypes.c_char_p), ("text", ctypes.c_char * 8)]


class Event(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("identifier", ctypes.c_uint),
                ("text_position", ctypes.c_int), ("length", ctypes.c_int),
                ("audio_position", ctypes.c_int), ("sample", ctypes.c_int),
                ("user_data", ctypes.c_void_p), ("id", EventId)]


def speak(text):
    """Samples (-1..1), their rate, and [(phoneme, seconds)]."""
    library = ctypes.CDLL("libespeak-ng.so.1")
    rate = library.espeak_Initialize(SYNCHRONOUS, 0, None, PHONEME_EVENTS)
    if rate <= 0:
        sys.exit("espeak-ng could not be started")
    samples, phonemes = [], []

    def collect(data, count, events):
        if data and count:
            samples.extend(data[i] / 32768 for i in range(count))
        index = 0
        while events[index].type != LIST_END:
            if events[index].type == PHONEME:
                phonemes.append((events[index].id.text.decode(), events[index].audio_position / 1000))
            index += 1
        return 0

    callback = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.POINTER(ctypes.c_short), ctypes.c_int,
                                ctypes.POINTER(Event))(collect)
    library.espeak_SetSynthCallback(callback)
    library.espeak_SetVoiceByName(b"en-gb")
    library.espeak_SetParameter(1, 145, 0)  # words a minute
    encoded = text.encode() + b"\0"
    library.espeak_Synth(encoded, len(encoded), 0, 1, 0, 1, None, None)
    library.espeak_Synchronize()
    return samples, rate, phonemes


def double_rate(samples):
    """Twice the rate by a windowed sinc, 32 samples to each side."""
    reach = 32
    taps = [math.sin(math.pi * (k + 0.5)) / (math.pi * (k + 0.5))
            * math.cos(math.pi * (k + 0.5) / (2 * reach + 1)) ** 2 for k in range(reach)]
    padded = [0.0] * reach + samples + [0.0] * reach
    result = []
    for i in range(reach, reach + len(samples)):
        result.append(padded[i])
        result.append(sum(t * (padded[i - k] + padded[i + 1 + k]) for k, t in enumerate(taps)))
    return result


def burst(level, generator):
    """One burst of air: a swing that slows down under a fast rise and a slower fall."""
    seconds = generator.uniform(0.030, 0.090)
    start_hz = generator.uniform(1.6, 2.6) / seconds
    count = int(2.2 * seconds * SAMPLE_RATE)
    phase, rumble, shape = 0.0, 0.0, []
    for i in range(count):
        time = i / SAMPLE_RATE
        envelope = (1 - math.exp(-time / 0.004)) * math.exp(-((time / seconds) ** 2) * 1.6)
        phase += 2 * math.pi * start_hz * (1 - 0.35 * min(time / seconds, 1.0)) / SAMPLE_RATE
        rumble += 0.03 * (generator.gauss(0, 1) - rumble)  # low-pass near 200 Hz
        shape.append(envelope * (math.sin(phase) + 1.2 * rumble))
    peak = max(abs(value) for value in shape)
    return [value * level / peak for value in shape]


def make_voice(speech):
    """The voice alone."""
    generator = random.Random(7)
    scale = SPEECH_PEAK / max(abs(value) for value in speech)
    return [value * scale + generator.gauss(0, NOISE_RMS) for value in speech]


def make(speech, rate, phonemes):
    generator = random.Random(7)
    while rate * 2 <= SAMPLE_RATE:
        speech, rate = double_rate(speech), rate * 2
    if rate != SAMPLE_RATE:
        sys.exit(f"espeak-ng speaks at an unexpected rate ({rate} Hz)")
    scale = SPEECH_PEAK / max(abs(value) for value in speech)
    audio = [value * scale + generator.gauss(0, NOISE_RMS) for value in speech]
    number = 0
    for name, seconds in phonemes:
        if name[:1] not in PLOSIVES:
            continue
        level = PLOSIVES[name[:1]] * LEVELS[number % len(LEVELS)]
        begin = int((seconds + generator.uniform(0.010, 0.020)) * SAMPLE_RATE)
        for offset, value in enumerate(burst(level, generator)):
            if begin + offset < len(audio):
                audio[begin + offset] += value
        print(f"{begin / SAMPLE_RATE:7.3f} s  {name}  {20 * math.log10(level):6.1f} dB")
        number += 1
    peak = max(abs(value) for value in audio)
    return [value * min(1.0, 0.98 / peak) for value in audio]


def write(name, audio, rate):
    FOLDER.mkdir(exist_ok=True)
    target = FOLDER / name
    with tempfile.TemporaryDirectory() as folder:
        plain = Path(folder) / "sample.wav"
        with wave.open(str(plain), "wb") as file:
            file.setparams((1, 2, rate, 0, "NONE", ""))
            file.writeframes(struct.pack(f"<{len(audio)}h", *(round(v * 32767) for v in audio)))
        subprocess.run(["flac", "--silent", "--best", "--force", "-o", target, plain], check=True)
    print(f"{target}: {len(audio) / rate:.1f} s, {target.stat().st_size} bytes")


def main():
    speech, rate, phonemes = speak(TEXT)
    write("voice.flac", make_voice(speech), rate)
    write("plosives.flac", make(speech, rate, phonemes), SAMPLE_RATE)


if __name__ == "__main__":
    main()
