#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Fails on every NOLINT without the name of its check and a reason.

    check_nolint.py ROOT
    check_nolint.py --self-test

It reads `// NOLINT(check-name): reason`; NOLINTNEXTLINE and NOLINTBEGIN likewise. NOLINTEND only
repeats the names.
"""

import re
import sys

from sources import sources

MARK = re.compile(r"\bNOLINT(NEXTLINE|BEGIN|END)?\b")
WHOLE = re.compile(r"\bNOLINT(NEXTLINE|BEGIN)?\([a-z][\w.,-]+\): \S+")
END = re.compile(r"\bNOLINTEND\([a-z][\w.,-]+\)")


def is_explained(line):
    """Whether every mark in this line has what it must."""
    return len(MARK.findall(line)) == len(WHOLE.findall(line)) + len(END.findall(line))


def self_test():
    """Whether it finds what it should, and nothing else."""
    good = ["// NOLINT(misc-x): because", "// NOLINTNEXTLINE(a-b,c-d): two reasons",
            "// NOLINTBEGIN(a-b): why", "// NOLINTEND(a-b)", "no mark"]
    bad = ["// NOLINT", "// NOLINT(misc-x)", "// NOLINT: because", "// NOLINTNEXTLINE(a-b)",
           "// NOLINT(*): all", "// NOLINTBEGIN(a-b):", "// NOLINTEND"]
    wrong = [line for line in good if not is_explained(line)]
    wrong += [line for line in bad if is_explained(line)]
    print("\n".join(wrong) or f"{len(good) + len(bad)} lines judged rightly")
    return 1 if wrong else 0


def main():
    if sys.argv[1] == "--self-test":
        return self_test()
    found = 0
    for path in sources(sys.argv[1]):
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            if not is_explained(line):
                print(f"{path}:{number}: NOLINT without check or reason: {line.strip()}")
                found += 1
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
