#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Fails on every header that doesn't compile by itself: check_headers.py ROOT BUILD C++-COMPILER C-COMPILER.

What the build has shown already is not compiled again: a source that includes its header before
anything else has compiled it alone. Nor is a header that was fine in the same state: BUILD/headers-alone
remembers it. All others are compiled, those of the entry as strict C11 too, since wrappers may be
written in C. Libraries are looked for where the sources beside a header find them, as
compile_commands.json in BUILD says.
"""

import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools/lint"))
sys.dont_write_bytecode = True
from stamps import Stamps # pylint: disable=wrong-import-position

FOLDERS = ("frameworks", "restoration", "wrappers", "tests")
C_FOLDER = "frameworks/plugincore/entry/"
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror"]
# What brings in something before the first line of a source, or something that a header is made by.
FOREIGN = ("-include", "-DPUFFGUARD_")
FIRST = re.compile(r'^[^#]*#\s*include\s+"([^"]+)"') # a comment in front has no "#"
GUARD = re.compile(r"^\s*#\s*(pragma\s+once|ifndef)\b", re.MULTILINE)


def library_folders(root, commands):
    """For each folder with sources: the options that name folders of libraries."""
    found = {}
    for entry in commands:
        words = shlex.split(entry["command"])
        options = found.setdefault(os.path.relpath(os.path.dirname(entry["file"]), root), [])
        for word, following in zip(words, words[1:]):
            if word == "-isystem":
                options += [word, following]
            elif word.startswith("-I") and word != f"-I{root}":
                options.append(word)
    return found


def compiled_first(commands):
    """For each header that a source includes before anything else: the object of that source."""
    found = {}
    for entry in commands:
        words = shlex.split(entry["command"])
        first = FIRST.match(Path(entry["file"]).read_text(encoding="utf-8"))
        if first and not any(word.startswith(FOREIGN) for word in words):
            found[first.group(1)] = Path(entry["directory"], words[words.index("-o") + 1])
    return found


def is_younger(made, sources):
    """Whether `made` is there, and none of the sources was written after it."""
    return made.is_file() and all(path.stat().st_mtime <= made.stat().st_mtime for path in sources)


def compile_alone(root, command, header):
    """What the compiler reports of it; twice in a row, so that a missing guard shows."""
    text = f'#include "{header}"\n' * 2
    result = subprocess.run([*command, "-I", root, "-fsyntax-only", "-"],
                            input=text, text=True, capture_output=True, check=False)
    return "" if result.returncode == 0 else f"{header} ({command[0]}):\n{result.stderr}"


def main():
    root, build, cxx, c = sys.argv[1:]
    commands = json.loads((Path(build) / "compile_commands.json").read_text(encoding="utf-8"))
    libraries, shown = library_folders(root, commands), compiled_first(commands)
    versions = [subprocess.run([compiler, "--version"], text=True, capture_output=True, check=True).stdout
                for compiler in (cxx, c)]
    stamps = Stamps(Path(root), Path(build) / "headers-alone", *versions)

    def was_built(header):
        path = Path(root, header)
        return (header in shown and GUARD.search(path.read_text(encoding="utf-8"))
                and is_younger(shown[header], stamps.reached(path)))

    def check(job):
        command, header = job
        stamp = stamps.of(Path(root, header), *command)
        if stamp.exists():
            return None
        fault = compile_alone(root, command, header)
        if not fault:
            stamp.touch()
        return fault

    headers = [path.relative_to(root).as_posix()
               for folder in FOLDERS for path in sorted((Path(root) / folder).rglob("*.h"))]
    jobs = [([cxx, "-x", "c++", "-std=c++20", *WARNINGS, *libraries.get(os.path.dirname(header), [])],
             header) for header in headers if not was_built(header)]
    jobs += [([c, "-x", "c", "-std=c11", *WARNINGS, "-pedantic-errors"], header)
             for header in headers if header.startswith(C_FOLDER)]
    with ThreadPoolExecutor(int(os.environ.get("CMAKE_BUILD_PARALLEL_LEVEL") or os.cpu_count())) as pool:
        faults = list(pool.map(check, jobs))
    print("".join(filter(None, faults)) + f"{len(headers)} headers: {len(jobs)} compilations beside "
          f"the build's own, {faults.count(None)} of them unchanged since they were fine")
    # No header at all would mean that the wrong folder was read.
    return 1 if any(faults) or not headers else 0


if __name__ == "__main__":
    sys.exit(main())
