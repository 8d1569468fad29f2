#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Whether OUTPUT is as long as INPUT, and to the last bit what REFERENCE is up to there:
same_sound.py REFERENCE OUTPUT INPUT, all of them WAV files of 32-bit floats."""
import struct
import sys

FLOATS = 3
EXTENSIBLE = 0xFFFE


def chunks(contents):
    """Name and bytes of each."""
    position = 12
    while position + 8 <= len(contents):
        name, size = struct.unpack_from("<4sI", contents, position)
        yield name, contents[position + 8 : position + 8 + size]
        position += 8 + size + size % 2


def read(path):
    """Channels, and the samples as they lie in the file."""
    with open(path, "rb") as file:
        contents = file.read()
    found = dict(chunks(contents))
    if contents[:4] != b"RIFF" or not {b"fmt ", b"data"} <= found.keys():
        sys.exit(f"{path} is no whole WAV file")
    tag, channels, _, _, _, bits = struct.unpack_from("<HHIIHH", found[b"fmt "])
    if tag == EXTENSIBLE:
        (tag,) = struct.unpack_from("<H", found[b"fmt "], 24)
    if (tag, bits) != (FLOATS, 32):
        sys.exit(f"{path} holds no 32-bit floats")
    return channels, found[b"data"]


def main():
    (channels, expected), (same_channels, output), (_, source) = map(read, sys.argv[1:4])
    frame = 4 * channels
    if (channels, len(source)) != (same_channels, len(output)):
        sys.exit(f"{same_channels} channels of {len(output) // (4 * same_channels)} samples, not "
                 f"{channels} of {len(source) // frame}")
    expected = expected[: len(output)]
    if len(expected) < len(output):
        sys.exit("the reference is too short")
    if expected != output:
        first = next(i for i in range(len(output)) if expected[i] != output[i])
        sys.exit(f"another sound from sample {first // frame} on")


if __name__ == "__main__":
    main()
