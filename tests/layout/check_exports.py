#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Fails when the module exports anything but its entry: check_exports.py NM MODULE."""

import subprocess
import sys


def main():
    nm, module = sys.argv[1:]
    listing = subprocess.run([nm, "--dynamic", "--defined-only", "--format=posix", module],
                             text=True, capture_output=True, check=True).stdout
    names = sorted(line.split()[0] for line in listing.splitlines())
    if names == ["PluginCoreCallback"]:
        return 0
    print("exported:", *names, sep="\n  ")
    return 1


if __name__ == "__main__":
    sys.exit(main())
