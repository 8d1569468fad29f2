#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Fails when code for one level of the processor could run on another.

    check_levels.py NM OBJDUMP NAMESPACE OBJECT...      objects of one level

All that these define is in the level's namespace or local. A shared inline function or template of
a library would exist once for each level, and the linker would keep any one of them. And none of
them fuses a multiplication with an addition, which would round differently from the other levels.
"""

import re
import subprocess
import sys


# What sanitizers add: marks of variables, and settings that are the same in every object.
ADDED = re.compile(r"__odr_asan|__msan_")
# As objdump prints them, for x86-64 and AArch64.
FUSED = re.compile(r":\t(?:\{\w+\} )?(v?fn?m(?:add|sub|la|ls)\w*)")


def run(*command):
    return subprocess.run(command, text=True, capture_output=True, check=True).stdout


def shared_symbols(nm, namespace, objects):
    """Names outside the namespace that other objects can see, and how many are inside."""
    # As the compiler writes what lies in the namespace, local classes of functions included.
    own = re.compile(f"_ZZ?NK?3DSP7Kernels{len(namespace)}{namespace}")
    shared = set()
    count = 0
    for line in run(nm, "--defined-only", "--format=posix", *objects).splitlines():
        words = line.split()
        # Name, kind, numbers; small letters are local symbols, but for those of weak ones.
        if len(words) > 2 and (words[1].isupper() or words[1] in "uvw"):
            if own.match(words[0]):
                count += 1
            elif not ADDED.match(words[0]):
                shared.add(words[0])
    return shared, count


def main():
    nm, objdump, namespace, *objects = sys.argv[1:]
    shared, count = shared_symbols(nm, namespace, objects)
    fused = set(FUSED.findall(run(objdump, "-d", "--no-show-raw-insn", *objects)))
    for what, names in (("shared", shared), ("fused", fused)):
        if names:
            print("\n  ".join([f"{what}:", *sorted(names)]))
    print(f"{count} of {namespace}")
    # No name at all would mean that the wrong objects were read.
    return 1 if shared or fused or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
