#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""What a release has written, a folder for each target, as its first inputs: make_seeds.py RELEASE FOLDER."""

import struct
import sys
import zlib
from pathlib import Path

CONTROLS = (b'<Sliders><Slider Name="Slider" SliderID="0" Min="0" Max="1" Default="0" Value="0" Scale="0"/></Sliders>'
            b'<CheckBoxes><CheckBox Name="Box" CheckboxID="0" Value="1"/></CheckBoxes></LM6Pfgd>')
# With what no state holds.
TREE = (b'{"a":{"Type":"Array","Value":[{"Type":"UInt","Value":1},{"Type":"Bool","Value":true},'
        b'{"Type":"String","Value":"\\"\\\\ \xc3\xa4"}]}}')
SLOTS = "2F450000 01000000 01000000 2F450000 03000000 00000000"
# Two snapshots of a state of three bytes.
HISTORY = "5D603B00 01000000 503D0100 0300000000000000 AABBCC 01000000 41 503D0100 0000000000000000 02000000 C3A4"
DIALOG = "112B3A00 01000000 03000000 503D0100 03000000 AABBCC 01000000 41 503D0100 00000000 02000000 C3A4"


def main():
    release, folder = map(Path, sys.argv[1:])
    session, preset, settings = ((release / name).read_bytes()
                                 for name in ("session.chunk", "preset.xml", "settings.json"))
    state = zlib.decompress(session[4:])
    packed = struct.pack("<I", len(preset)) + zlib.compress(preset)
    seeds = {"chunk/raw": session, "chunk/text": state,
             "dictionary/state": state, "dictionary/tree": TREE,
             "history/two": bytes.fromhex(HISTORY + SLOTS),
             "history/dialog": bytes.fromhex(DIALOG + SLOTS),
             "preset/plain": preset, "preset/controls": preset.replace(b"</LM6Pfgd>", CONTROLS),
             "preset/compressed": packed, "compressed_preset/compressed": packed,
             "settings/file": settings,
             "settings/import": b"# comment\nName=number:3\nOther=text:some\nThird=binary:00ff\n"}
    for name, contents in seeds.items():
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        (folder / name).write_bytes(contents)


if __name__ == "__main__":
    main()
