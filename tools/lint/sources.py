# SPDX-License-Identifier: ISC
"""The files that the checks of this folder read."""

from pathlib import Path

FOLDERS = ("frameworks", "restoration", "wrappers", "tests", "bench", "tools", "docs")
CODE = (".h", ".cpp", ".c")


def sources(root, suffixes=CODE):
    """All files of the project that end so, sorted."""
    return [path for folder in FOLDERS for path in sorted((Path(root) / folder).rglob("*"))
            if path.suffix in suffixes and path.is_file()]
