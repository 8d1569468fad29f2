#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""The example host must make of a recording what the command makes of it, to the last bit.

    example_host_test.py HOST MODULE COMMAND
"""

import array
import math
import random
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

RATE, SECONDS = 48000, 3


def pops():
    """Quiet noise with bursts of 50 Hz that the repair takes down."""
    noise = random.Random(1)
    samples = array.array("f")
    for i in range(RATE * SECONDS + 77): # no whole number of blocks
        burst = i % RATE - RATE // 2
        level = 0.5 * math.exp(-burst / 1500) if burst >= 0 else 0
        samples.append(0.001 * noise.gauss(0, 1) + level * math.sin(2 * math.pi * 50 * i / RATE))
    return samples.tobytes()


def as_wav(data):
    form = struct.pack("<HHIIHH", 3, 1, RATE, RATE * 4, 4, 32)
    body = b"WAVEfmt " + struct.pack("<I", len(form)) + form + b"data" + struct.pack("<I", len(data))
    return b"RIFF" + struct.pack("<I", len(body) + len(data)) + body + data


def samples_of(wav):
    at = 12
    while wav[at:at + 4] != b"data":
        at += 8 + struct.unpack("<I", wav[at + 4:at + 8])[0]
    length = struct.unpack("<I", wav[at + 4:at + 8])[0]
    return wav[at + 8:at + 8 + length]


def main():
    host, module, command = sys.argv[1:]
    sound = pops()
    by_host = subprocess.run([host, module], input=sound, capture_output=True, check=True, timeout=60)
    with tempfile.TemporaryDirectory() as name:
        recording, result = Path(name) / "in.wav", Path(name) / "out.wav"
        recording.write_bytes(as_wav(sound))
        subprocess.run([command, recording, "--strength", "8", "--quiet", "-o", result], check=True,
                       timeout=60)
        by_command = samples_of(result.read_bytes())
    print(f"{len(sound)} bytes in, {len(by_host.stdout)} and {len(by_command)} out")
    # Without a repair the two would be equal for nothing.
    return 0 if by_host.stdout == by_command != sound else 1


if __name__ == "__main__":
    sys.exit(main())
