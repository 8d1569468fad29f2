#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Fails when code for one level of the processor could run on another.

    check_levels.py NM NAMESPACE OBJECT...      objects of one level

All that these define is in the level's namespace or local. A shared inline function or template of
a library would exist once for each level, and the linker would keep any one of them.
"""

import subprocess
import sys


def main():
    nm, namespace, *objects = sys.argv[1:]
    listing = subprocess.run([nm, "--defined-only", "--demangle", "--format=posix", *objects],
                             text=True, capture_output=True, check=True).stdout
    own = f"DSP::Kernels::{namespace}::"
    shared = []
    tables = 0
    for line in listing.splitlines():
        # Name (may hold blanks), kind, then one or two numbers; small letters are local symbols,
        # but for those of weak ones.
        words = line.split()
        kinds = [i for i, word in enumerate(words) if i > 0 and len(word) == 1 and word.isalpha()]
        if not kinds:
            continue
        kind = words[kinds[-1]]
        name = " ".join(words[:kinds[-1]])
        if kind.isupper() or kind in "uvw":
            tables += name.startswith(own)
            if not name.startswith(own):
                shared.append(name)
    print("\n  ".join(["shared:", *sorted(set(shared))]) if shared else f"{tables} of {namespace}")
    # No name at all would mean that the wrong objects were read.
    return 1 if shared or tables == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
