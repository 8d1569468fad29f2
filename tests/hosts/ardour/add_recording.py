#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Puts a recording on the track "Voice" of a session: add_recording.py SESSION_FOLDER WAV.

The host's scripts can't import audio, so this writes what it would have: the file into the
session's folder; a source for each channel, a region, its place on the track and the session's range
into the document."""

import os
import re
import shutil
import struct
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))
sys.dont_write_bytecode = True
from same_sound import chunks # pylint: disable=wrong-import-position

TICKS = 282240000  # of the host's clock, in a second


def wav_format(path):
    """Channels, rate and frames of a RIFF file."""
    with open(path, "rb") as file:
        found = dict(chunks(file.read()))
    _, channels, rate, _, width, _ = struct.unpack_from("<HHIIHH", found[b"fmt "])
    return channels, rate, len(found[b"data"]) // width


def region(number, whole, channels, length):
    sources = " ".join(f'source-{c}="{9000 + c}" master-source-{c}="{9000 + c}"' for c in range(channels))
    return (
        f'<Region name="take" muted="0" opaque="1" locked="0" automatic="0" whole-file="{whole}" import="0" '
        f'external="0" sync-marked="0" left-of-split="0" right-of-split="0" hidden="0" position-locked="0" '
        f'valid-transients="0" start="a0" length="a{length}@a0" sync-position="a0" ancestral-start="a0" '
        f'ancestral-length="a0@a0" stretch="1" shift="1" layering-index="0" envelope-active="0" '
        f'default-fade-in="0" default-fade-out="0" fade-in-active="0" fade-out-active="0" '
        f'scale-amplitude="1" id="{number}" type="audio" first-edit="nothing" {sources} channels="{channels}"/>')


def main():
    folder, recording = sys.argv[1:3]
    channels, rate, frames = wav_format(recording)
    length = frames * TICKS // rate
    audio = os.path.join(folder, "interchange", os.path.basename(folder), "audiofiles")
    os.makedirs(audio, exist_ok=True)
    shutil.copy(recording, os.path.join(audio, "take.wav"))

    document = os.path.join(folder, "puffguard.ardour")
    with open(document, encoding="utf-8") as file:
        text = file.read()

    def replace(pattern, replacement):
        nonlocal text
        text, count = re.subn(pattern, lambda match: replacement(match), text, count=1)
        if count != 1:
            raise ValueError(f"{document} has nothing like {pattern}")

    sources = "".join(
        f'<Source name="take.wav" take-id="" type="audio" flags="" id="{9000 + c}" channel="{c}" '
        f'origin="take.wav" gain="1"/>' for c in range(channels))
    replace(r"<Sources/>", lambda _: f"<Sources>{sources}</Sources>")
    replace(r"<Regions/>", lambda _: f"<Regions>{region(9100, 1, channels, length)}</Regions>")
    replace(r'(<Playlist [^>]*name="Voice"[^>]*)/>',
            lambda match: f"{match[1]}>{region(9101, 0, channels, length)}</Playlist>")
    replace(r"<Locations/>",
            lambda _: '<Locations><Location id="9200" name="session" start="a0" '
            f'end="a{length}" flags="IsSessionRange" locked="0"/></Locations>')
    with open(document, "w", encoding="utf-8") as file:
        file.write(text)


if __name__ == "__main__":
    main()
