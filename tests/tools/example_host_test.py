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
    by_host = subprocess.run([host, module], input=sound, capture_output=True, check=True, timeout=60)
    by_command = subprocess.run([command, "-", "-o", "-", "--raw", f"f32,{RATE},1", "--strength", "8",
                                 "--quiet"],
                                input=sound, capture_output=True, check=True, timeout=60).stdout
    print(f"{len(sound)} bytes in, {len(by_host.stdout)} and {len(by_command)} out")
    # Without a repair the two would be equal for nothing.
    return 0 if by_host.stdout == by_command != sound else 1


if __name__ == "__main__":
    sys.exit(main())
