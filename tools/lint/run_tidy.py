#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Runs clang-tidy over every source that a build knows: run_tidy.py ROOT BUILD [PATTERN].

PATTERN, a regular expression, chooses sources by path. A source found clean is skipped the next time
as long as it, the project's headers that it includes, the settings, its compile command and the
version of clang-tidy stay the same: BUILD/tidy-clean has one empty file for each such state.
System headers are taken to change only along with a version; remove the folder to start anew.
"""

import hashlib
import json
import os
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

PROGRAM = "clang-tidy-22"
INCLUDE = re.compile(rb'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)
C_HEADERS = "frameworks/plugincore/entry/"


class Hashes:
    """Hash of a file and of all that it includes from the project."""

    def __init__(self, root):
        self.root = root
        self.contents = {}  # path: (hash of the file alone, the paths it includes)

    def read(self, path):
        """What `contents` has for a file."""
        if path not in self.contents:
            text = path.read_bytes()
            named = [name.decode() for name in INCLUDE.findall(text)]
            found = [place / name for name in named for place in (self.root, path.parent)
                     if (place / name).is_file()]
            self.contents[path] = (hashlib.sha256(text).hexdigest(), found)
        return self.contents[path]

    def whole(self, path):
        """The hashes of the file and of everything below it, in a fixed order."""
        reached, waiting = set(), [path]
        while waiting:
            current = waiting.pop()
            if current not in reached:
                reached.add(current)
                waiting += self.read(current)[1]
        return [f"{self.read(one)[0]} {one}" for one in sorted(reached)]


def jobs_of(root, build, pattern):
    """(source, compile command) of each source that isn't generated, and of the C headers."""
    commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    jobs = {Path(entry["file"]): entry["command"] for entry in commands
            if build not in Path(entry["file"]).parents}
    for header in sorted((root / C_HEADERS).glob("*.h")):
        jobs[header] = f"-x c -std=c11 -I{root}"
    return {path: command for path, command in jobs.items()
            if re.search(pattern, path.relative_to(root).as_posix())}


def settings_of(root):
    """Every .clang-tidy, since a folder takes over what its parents have."""
    return [path.read_text(encoding="utf-8") for path in sorted(root.glob("**/.clang-tidy"))]


def tidy(path, command, build):
    """What clang-tidy finds; the empty text where all is well."""
    options = ["-p", str(build), str(path)]
    if path.suffix == ".h":
        options = [str(path), "--", *command.split()]
    result = subprocess.run([PROGRAM, "--quiet", *options],
                            text=True, capture_output=True, check=False)
    if result.returncode == 0:
        return ""
    return result.stdout or result.stderr or f"{path}: {PROGRAM} failed\n"


def main():
    root, build = (Path(argument).resolve() for argument in sys.argv[1:3])
    jobs = jobs_of(root, build, sys.argv[3] if len(sys.argv) > 3 else "")
    version = subprocess.run([PROGRAM, "--version"], text=True, capture_output=True, check=True).stdout
    hashes, common = Hashes(root), [version, *settings_of(root)]
    clean = build / "tidy-clean"
    clean.mkdir(exist_ok=True)

    def check(path):
        state = "\n".join([*common, jobs[path], *hashes.whole(path)])
        stamp = clean / hashlib.sha256(state.encode()).hexdigest()
        if stamp.exists():
            return None
        found = tidy(path, jobs[path], build)
        if found:
            print(found, end="", flush=True)
        else:
            stamp.touch()
        return found

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(check, jobs))
    failed = sum(1 for found in results if found)
    print(f"{len(jobs)} sources, {results.count(None)} unchanged since they were clean, "
          f"{failed} with findings")
    # No source at all would mean that the wrong folder was read.
    return 1 if failed or not jobs else 0


if __name__ == "__main__":
    sys.exit(main())
