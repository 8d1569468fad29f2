#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Compiles every header by itself: check_headers.py ROOT BUILD C++-COMPILER C-COMPILER.

Headers of the entry are compiled as strict C11 too, since wrappers may be written in C. Libraries
are looked for where the sources beside a header find them, as compile_commands.json in BUILD says.
"""

import json
import os
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

FOLDERS = ("frameworks", "restoration", "wrappers", "tests")
C_FOLDER = "frameworks/plugincore/entry/"
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror"]


def library_folders(root, build):
    """For each folder with sources: the options that name folders of libraries."""
    found = {}
    commands = json.loads((Path(build) / "compile_commands.json").read_text(encoding="utf-8"))
    for entry in commands:
        words = shlex.split(entry["command"])
        options = found.setdefault(os.path.relpath(os.path.dirname(entry["file"]), root), [])
        for word, following in zip(words, words[1:]):
            if word == "-isystem":
                options += [word, following]
            elif word.startswith("-I") and word != f"-I{root}":
                options.append(word)
    return found


def compile_alone(root, command, header):
    """What the compiler says against it; twice in a row, so that a missing guard shows."""
    text = f'#include "{header}"\n' * 2
    result = subprocess.run([*command, *WARNINGS, "-I", root, "-fsyntax-only", "-"],
                            input=text, text=True, capture_output=True, check=False)
    return "" if result.returncode == 0 else f"{header} ({command[0]}):\n{result.stderr}"


def main():
    root, build, cxx, c = sys.argv[1:]
    libraries = library_folders(root, build)
    headers = [path.relative_to(root).as_posix()
               for folder in FOLDERS for path in sorted((Path(root) / folder).rglob("*.h"))]
    jobs = [([cxx, "-x", "c++", "-std=c++20", *libraries.get(os.path.dirname(header), [])], header)
            for header in headers]
    jobs += [([c, "-x", "c", "-std=c11", "-pedantic-errors"], header)
             for header in headers if header.startswith(C_FOLDER)]
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        said = list(pool.map(lambda job: compile_alone(root, *job), jobs))
    print("".join(said) + f"{len(jobs)} compilations of {len(headers)} headers")
    # No header at all would mean that the wrong folder was read.
    return 1 if any(said) or not headers else 0


if __name__ == "__main__":
    sys.exit(main())
