#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Fails when a library exports anything but its entries: check_exports.py NM LIBRARY ENTRY..."""

import subprocess
import sys


def main():
    nm, library, *entries = sys.argv[1:]
    listing = subprocess.run([nm, "--dynamic", "--defined-only", "--format=posix", library],
                             text=True, capture_output=True, check=True).stdout
    names = sorted(line.split()[0] for line in listing.splitlines())
    if names == sorted(entries):
        return 0
    print("exported:", *names, sep="\n  ")
    return 1


if __name__ == "__main__":
    sys.exit(main())
