#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Fails on every source that clang-format would change: check_format.py ROOT.

Returns 77, which ctest takes for skipped, where that program isn't installed. Its version is a fixed
one, since each formats a little differently.
"""

import shutil
import subprocess
import sys

from sources import sources

PROGRAM = "clang-format-14"
SKIPPED = 77


def main():
    root = sys.argv[1]
    if shutil.which(PROGRAM) is None:
        print(f"skipped: {PROGRAM} isn't installed")
        return SKIPPED
    files = [str(path) for path in sources(root)]
    result = subprocess.run([PROGRAM, "--dry-run", "--Werror", "--ferror-limit=1", *files],
                            text=True, capture_output=True, check=False)
    print(f"{result.stderr}{len(files)} files")
    return 1 if result.returncode != 0 or not files else 0


if __name__ == "__main__":
    sys.exit(main())
