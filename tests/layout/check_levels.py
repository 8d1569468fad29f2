#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Fails when code for one level of the processor could run on another.

    check_levels.py NM NAMESPACE OBJECT...      objects of one level

All that these define is in the level's namespace or local. A shared inline function or template of
a library would exist once for each level, and the linker would keep any one of them.
"""

import re
import subprocess
import sys


def main():
    nm, namespace, *objects = sys.argv[1:]
    listing = subprocess.run([nm, "--defined-only", "--format=posix", *objects],
                             text=True, capture_output=True, check=True).stdout
    # As the compiler writes what lies in the namespace, local classes of functions included.
    own = re.compile(f"_ZZ?NK?3DSP7Kernels{len(namespace)}{namespace}")
    shared = []
    count = 0
    for words in (line.split() for line in listing.splitlines()):
        # Name, kind, numbers; small letters are local symbols, but for those of weak ones.
        if len(words) > 2 and (words[1].isupper() or words[1] in "uvw"):
            if own.match(words[0]):
                count += 1
            else:
                shared.append(words[0])
    print("\n  ".join(["shared:", *sorted(set(shared))]) if shared else f"{count} of {namespace}")
    # No name at all would mean that the wrong objects were read.
    return 1 if shared or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
