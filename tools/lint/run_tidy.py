#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Runs clang-tidy over every source that a build knows: run_tidy.py ROOT BUILD [PATTERN].

PATTERN, a regular expression, chooses sources by path. A source found clean is skipped the next time
as long as nothing that it hangs on has changed; BUILD/tidy-clean remembers it. As many run at once as
there are processors, or as CMAKE_BUILD_PARALLEL_LEVEL says.
"""

import json
import os
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from stamps import Stamps

PROGRAM = "clang-tidy-22"
C_HEADERS = "frameworks/plugincore/entry/"
# A source that uses these goes without the static analyzer, which takes half a minute for their
# templates and holds that their counted pointers are used after their release.
UNANALYSED = re.compile(r"^#include <(boost/signals2|CLI)/", re.MULTILINE)


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
    if UNANALYSED.search(path.read_text(encoding="utf-8")):
        options.insert(0, "--checks=-clang-analyzer-*")
    result = subprocess.run([PROGRAM, "--quiet", *options],
                            text=True, capture_output=True, check=False)
    if result.returncode == 0:
        return ""
    return result.stdout or result.stderr or f"{path}: {PROGRAM} failed\n"


def main():
    root, build = (Path(argument).resolve() for argument in sys.argv[1:3])
    jobs = jobs_of(root, build, sys.argv[3] if len(sys.argv) > 3 else "")
    version = subprocess.run([PROGRAM, "--version"], text=True, capture_output=True, check=True).stdout
    stamps = Stamps(root, build / "tidy-clean", version, *settings_of(root))

    def check(path):
        stamp = stamps.of(path, jobs[path])
        if stamp.exists():
            return None
        found = tidy(path, jobs[path], build)
        if found:
            print(found, end="", flush=True)
        else:
            stamp.touch()
        return found

    with ThreadPoolExecutor(int(os.environ.get("CMAKE_BUILD_PARALLEL_LEVEL") or os.cpu_count())) as pool:
        results = list(pool.map(check, jobs))
    failed = sum(1 for found in results if found)
    print(f"{len(jobs)} sources, {results.count(None)} unchanged since they were clean, "
          f"{failed} with findings")
    # No source at all would mean that the wrong folder was read.
    return 1 if failed or not jobs else 0


if __name__ == "__main__":
    sys.exit(main())
