#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Breaks the code on purpose, in one place after the other, and shows which test sees it.

    tools/breaks/breaks.py [--all] [--list FILE] [--tree FOLDER] [--jobs N] [NUMBER...]
    tools/breaks/breaks.py --check

The checkout is copied to build-breaks, or another folder, and every change of changes.py is written into it as a choice
that PUFFGUARD_BREAK=<number> makes while the programs run; so all of it is built once. First the
programs run without a change and must be green, then once for each change up to the first test that
fails; --all goes on to the last. A change whose place isn't there exactly once is an error, and --check looks for nothing else.
Ends with 0 when each change was seen.
"""
import argparse
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

from changes import CHANGES

ROOT = Path(__file__).resolve().parents[2]
CHOICE = "tools/breaks/Break.h"
TIMEOUT = 300  # seconds for one program, which a change may leave in an endless loop


def pattern_of(text):
    """The surrounding text as a pattern; group 1 is what is replaced."""
    before, rest = text.split("«")
    old, after = rest.split("»")
    loose = [r"\s+".join(map(re.escape, part.split())) for part in (before, old, after)]
    gap = [r"\s*" if part and part[edge].isspace() else "" for part, edge in ((before, -1), (after, 0))]
    return re.compile(loose[0] + gap[0] + "(" + loose[1] + ")" + gap[1] + loose[2])


def choice(number, old, new):
    if old[-1] in ";}":
        return f"if (Break::IsChosen({number})) {{ {new} }} else {{ {old} }}"
    return f"(Break::IsChosen({number}) ? ({new}) : ({old}))"


def broken(path, content):
    """A file's text with all changes that are in it, each as a choice."""
    places = []
    for number, change in enumerate(CHANGES, 1):
        if change.file == path:
            found = list(pattern_of(change.text).finditer(content))
            if len(found) != 1:
                sys.exit(f"change {number}: its text is {len(found)} times in {path}: {change.text}")
            places.append((found[0].span(1), number, change.new))
    if not places:
        return content
    places.sort()
    for (before, one, _), (after, two, _) in zip(places, places[1:]):
        if after[0] < before[1]:
            sys.exit(f"changes {one} and {two} are at the same place in {path}")
    for (start, end), number, new in reversed(places):
        content = content[:start] + choice(number, content[start:end], new) + content[end:]
    return f'#include "{CHOICE}"\n' + content


def check():
    """Ends with a message unless every change has its place."""
    for path in {change.file for change in CHANGES}:
        broken(path, (ROOT / path).read_text())


def copy_to(tree):
    """Writes only what differs, so that the build does no more than it must."""
    listed = subprocess.run(["git", "-C", ROOT, "ls-files", "-z"], check=True, capture_output=True)
    paths = {path for path in listed.stdout.decode().split("\0") if (ROOT / path).is_file()}
    missing = {change.file for change in CHANGES} - paths
    if missing:
        sys.exit(f"no such file: {', '.join(sorted(missing))}")
    for path in paths:
        target = tree / path
        text = (ROOT / path).read_bytes()
        if path in {change.file for change in CHANGES}:
            text = broken(path, text.decode()).encode()
        if not target.exists() or target.read_bytes() != text:
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(text)
            shutil.copymode(ROOT / path, target)
    for folder, folders, names in os.walk(tree):
        if Path(folder) == tree:
            folders[:] = [name for name in folders if name != "build"]
        for name in names:
            path = Path(folder, name)
            if str(path.relative_to(tree)) not in paths:
                path.unlink()


def build(tree, programs, options):
    material = f"-DPUFFGUARD_MATERIAL={options.material}"
    subprocess.run(["cmake", "--preset", "release", material], cwd=tree, check=True,
                   stdout=subprocess.DEVNULL)
    subprocess.run(["ninja", "-C", tree / "build", "-j", str(options.jobs), *programs], check=True)


def run(tree, program, number, to_the_end):
    """Names of the tests that fail; a crash or a standstill has that of the test it was in."""
    path = next(path for path in tree.glob(f"build/tests/**/{program}") if path.is_file())
    options = [] if to_the_end else ["--gtest_fail_fast"]
    environment = {**os.environ, "PUFFGUARD_BREAK": str(number)}
    with subprocess.Popen([path, *options], cwd=path.parent, env=environment, text=True,
                          errors="replace", start_new_session=True, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT) as process:
        try:
            output, _ = process.communicate(timeout=TIMEOUT)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, 9)  # also those that the program has started
            output, _ = process.communicate()
    failed = list(dict.fromkeys(re.findall(r"^\[  FAILED  \] (\w+\S*?),? ", output + " ", re.M)))
    failed = [name for name in failed if "." in name]
    if process.returncode != 0 and not failed:
        began = re.findall(r"^\[ RUN      \] (\S+)", output, re.M)
        end = "standstill" if process.returncode == -9 else "crash"
        failed = [f"{began[-1] if began else program} ({end})"]
    return failed


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--check", action="store_true", help="whether each change has its place")
    parser.add_argument("--all", action="store_true", help="name every test that sees a change")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="of the build")
    parser.add_argument("--material", default=f"{ROOT}/../shared", help="recordings and vectors")
    parser.add_argument("--tree", type=Path, default=ROOT / "build-breaks", help="what is built")
    parser.add_argument("--list", type=Path, help="writes the result to a file, too")
    parser.add_argument("numbers", nargs="*", type=int, help="changes; all without any")
    options = parser.parse_args()
    if options.check:
        check()
        return 0

    numbers = options.numbers or range(1, len(CHANGES) + 1)
    chosen = [(number, CHANGES[number - 1]) for number in numbers]
    tree = options.tree.resolve()
    copy_to(tree)
    programs = sorted({program for _, change in chosen for program in change.tests})
    build(tree, programs, options)
    for program in programs:
        if failed := run(tree, program, 0, False):
            sys.exit(f"{program} fails without any change: {failed[0]}")

    lines = []
    unseen = 0
    for number, change in chosen:
        seen = []
        for program in change.tests:
            if not seen or options.all:
                seen += [f"{program}: {name}" for name in run(tree, program, number, options.all)]
        unseen += not seen
        lines.append(f"{number:2}  {change.file}: {change.fault}\n      {'; '.join(seen) or 'NOT SEEN'}")
        print(lines[-1], flush=True)
        if options.list:
            options.list.write_text("\n".join(lines) + "\n")
    print(f"{len(chosen) - unseen} of {len(chosen)} changes were seen")
    return 1 if unseen else 0


if __name__ == "__main__":
    sys.exit(main())
