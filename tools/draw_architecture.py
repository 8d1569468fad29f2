#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Draws docs/images/architecture.svg from the arrows that the tests check; needs graphviz.

    draw_architecture.py           draws
    draw_architecture.py --check   fails when the picture shows other arrows than those of today

An arrow that follows from others is left out, and so are the two folders that everything may know.
Folders without a file yet are dashed.
"""

import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PICTURE = ROOT / "docs/images/architecture.svg"
sys.path.insert(0, str(ROOT / "tests/layout"))
sys.dont_write_bytecode = True
from arrows import ARROWS, ENTRY, UTIL # pylint: disable=wrong-import-position

# Folder: its words in the picture, and the colour of what lies below it.
GROUPS = {
    "wrappers": ("wrappers: hosts of the module", "#dbe9f6"),
    "wrappers/cli": ("cli: the command", "#c6dbef"),
    "restoration": ("restoration: the product and its repair", "#e5f5e0"),
    "frameworks/qobase": ("frameworks/qobase", "#eeeeee"),
    "frameworks/plugincore": ("frameworks/plugincore", "#fff5d6"),
    "frameworks/plugincore/dsp": ("dsp", "#fde6b0"),
    "frameworks/plugincore/preset": ("preset", "#fde6b0"),
    "frameworks/plugincore/ui": ("ui", "#fde6b0"),
}
# An arrow that is no #include: the loader finds the module, and they share the C header alone.
LOADS = ("wrappers/common", "restoration/plugin_LM_Puffguard")


def folders():
    return [folder for folder in ARROWS
            if folder.startswith(("wrappers", "restoration", "frameworks")) and folder not in (UTIL, ENTRY)]


def reaches(start, goal):
    """Whether `goal` can be reached from `start` by more than one arrow."""
    seen, waiting = set(), [step for step in ARROWS[start] if step != goal]
    while waiting:
        folder = waiting.pop()
        if folder == goal:
            return True
        if folder not in seen:
            seen.add(folder)
            waiting += ARROWS[folder]
    return False


def drawn_arrows():
    drawn = folders()
    return sorted((start, goal) for start in drawn for goal in ARROWS[start]
                  if goal in drawn and not reaches(start, goal))


def has_files(folder):
    return any(path.suffix in (".h", ".cpp") for path in (ROOT / folder).glob("*"))


def group_of(folder):
    return max((group for group in GROUPS if folder.startswith(group + "/")), key=len, default="")


def cluster(group):
    """The text of one group with what lies inside it."""
    title, colour = GROUPS[group]
    lines = [f'subgraph "cluster_{group}" {{', f'label="{title}" bgcolor="{colour}" color="#888888"']
    for folder in folders():
        if group_of(folder) == group:
            style = "filled,rounded" if has_files(folder) else "filled,dashed,rounded"
            lines.append(f'"{folder}" [label="{folder[len(group) + 1:]}" style="{style}"]')
    lines += [cluster(inner) for inner in GROUPS
              if inner.startswith(group + "/") and inner.count("/") == group.count("/") + 1]
    return "\n".join([*lines, "}"])


def graph():
    tops = [group for group in GROUPS if not any(group.startswith(other + "/") for other in GROUPS)]
    arrows = [f'"{start}" -> "{goal}"' for start, goal in drawn_arrows()]
    return "\n".join([
        "digraph architecture {",
        'fontname="sans-serif" fontsize=13 labeljust=l nodesep=0.25 ranksep=0.4',
        'node [shape=box fontname="sans-serif" fontsize=12 fillcolor=white height=0.3]',
        'edge [arrowsize=0.7 color="#444444"]',
        f'"{LOADS[0]}" -> "{LOADS[1]}" [style=dotted label="loads" fontname="sans-serif" fontsize=10]',
        *[cluster(group) for group in tops], *arrows,
        f'base [label="under all of it: {UTIL} and {ENTRY} (the C header)" style="filled,rounded" '
        'fillcolor="#eeeeee" width=9]',
        *[f'"{folder}" -> base [style=invis]' for folder in folders()
          if not ARROWS[folder] & set(folders())], "}"])


def signature():
    """Stands in the picture, so that one of other arrows shows, whatever version drew it."""
    return "arrows: " + "; ".join(f"{start} to {goal}" for start, goal in drawn_arrows())


def main():
    if sys.argv[1:] == ["--check"]:
        if PICTURE.exists() and signature() in PICTURE.read_text(encoding="utf-8"):
            return 0
        print("docs/images/architecture.svg shows other arrows: run tools/draw_architecture.py")
        return 1
    drawing = subprocess.run(["dot", "-Tsvg"], input=graph(), text=True, capture_output=True,
                             check=True, timeout=60).stdout
    body = drawing[drawing.index("<svg"):]
    end = body.index(">") + 1
    PICTURE.write_text(f"{body[:end]}\n<desc>{signature()}</desc>{body[end:]}", encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
