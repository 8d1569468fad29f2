#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""The example host must make of a recording what the command makes of it, to the last bit.

    example_host_test.py HOST MODULE COMMAND
"""

import array
import math
import random
import subprocess
import sys

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


def main():
    host, module, command = sys.argv[1:]
    sound = pops()
    same = True
    # As a stream, and a region of the whole.
    for times, options in ([], []), (["1.4", "1.7"], ["--region", "1.4-1.7"]):
        by_host = subprocess.run([host, module, *times], input=sound, capture_output=True, check=True,
                                 timeout=60).stdout
        by_command = subprocess.run([command, "-", "-o", "-", "--raw", f"f32,{RATE},1", "--strength", "8",
                                     "--quiet", *options],
                                    input=sound, capture_output=True, check=True, timeout=60).stdout
        print(f"{times}: {len(sound)} bytes in, {len(by_host)} and {len(by_command)} out")
        # Without a repair the two would be equal for nothing.
        same = same and by_host == by_command != sound
    return 0 if same else 1


if __name__ == "__main__":
    sys.exit(main())
