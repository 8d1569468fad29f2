#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Fails on every #include that no arrow of the architecture allows.

    check_includes.py ROOT       reads the project
    check_includes.py --self-test

Below the wrappers, headers use the standard library alone, and sources also what PLATFORM and
LIBRARIES name; a wrapper may use any library. Project headers are included by their path from the root, in quotes.
"""

import re
import sys
import tempfile
from pathlib import Path

UTIL, ENTRY = "frameworks/qobase/util", "frameworks/plugincore/entry"
KERNELS, SIGNAL = "frameworks/plugincore/dsp/kernels", "frameworks/plugincore/dsp/signal"
ELEMENTS, PATH = "frameworks/plugincore/dsp/elements", "frameworks/plugincore/dsp/path"
DSP = {KERNELS, SIGNAL, ELEMENTS, PATH}
CONTROLLER = "frameworks/plugincore/controller"
PRESET, PRESETS = "frameworks/plugincore/preset/file", "frameworks/plugincore/preset/manager"
HISTORY, HISTORY_DIALOG = "frameworks/plugincore/ui/model/historyfile", "restoration/ui/dialog/historyfile"
DEFINITION, CORE = "frameworks/plugincore/product", "frameworks/plugincore/instance"
DISPATCH = "frameworks/plugincore/dispatch"
FAMILY, REPAIR = "restoration/plugin", "restoration/dsp/puffguard"
PRODUCT = "restoration/plugin_LM_Puffguard"
COMMAND = "wrappers/cli/"
LEVEL = "PUFFGUARD_LEVEL" # stands in headers of the kernels that know the level they are compiled for

# Folder: the folders that its files may include, besides itself. The longest match counts.
ARROWS = {
    UTIL: set(),
    ENTRY: set(),
    KERNELS: set(),
    SIGNAL: {KERNELS, UTIL},
    ELEMENTS: {SIGNAL, UTIL},
    PATH: {ELEMENTS, SIGNAL, ENTRY, UTIL},
    CONTROLLER: {ELEMENTS, UTIL},
    PRESET: {PATH, ELEMENTS, UTIL},
    PRESETS: {PRESET, UTIL},
    HISTORY: {UTIL},
    HISTORY_DIALOG: {HISTORY, UTIL},
    DEFINITION: {ENTRY, UTIL},
    CORE: {DEFINITION, CONTROLLER, PRESETS, PRESET, HISTORY, PATH, ELEMENTS, SIGNAL, ENTRY, UTIL},
    DISPATCH: {CORE, DEFINITION, ENTRY, UTIL},
    FAMILY: {PRESET, PATH, ELEMENTS, UTIL},
    REPAIR: {PATH, ELEMENTS, SIGNAL, KERNELS, ENTRY, UTIL},
    PRODUCT: {DISPATCH, DEFINITION, CORE, FAMILY, REPAIR, HISTORY_DIALOG, PRESET, UTIL},
    "wrappers/common": {ENTRY}, # the one wrapper that fills the records of the entry
    COMMAND + "text": set(),
    COMMAND + "files": {"wrappers/common"},
    COMMAND + "audio": {COMMAND + "files", COMMAND + "text", "wrappers/common"},
    COMMAND + "effect": {COMMAND + "files", COMMAND + "text", "wrappers/common"},
    COMMAND + "report": {COMMAND + "files", COMMAND + "text", "wrappers/common"},
    COMMAND + "plot": {COMMAND + "files", COMMAND + "report"},
    COMMAND + "run": {COMMAND + "audio", COMMAND + "effect", COMMAND + "files", COMMAND + "plot",
                      COMMAND + "report", COMMAND + "text", "wrappers/common"},
    "wrappers/lv2": {"wrappers/common"},
    "wrappers/clap": {"wrappers/common"},
    "wrappers/vst3": {"wrappers/common"},
}
EVERYTHING = set(ARROWS) | {"tests/support"}
ARROWS |= {
    # These act as hosts of the finished module, and know no more than a host does.
    "tests/contract": {ENTRY, "tests/support"},
    "tests/realtime": {ENTRY, UTIL, "tests/contract", "tests/support"}, # UTIL for the names of locks
    "tests/support": EVERYTHING,
    # They lend their hosts to the contract, and watch runs of their own.
    "tests/wrappers": EVERYTHING | {"tests/contract", "tests/realtime"},
    "tests": EVERYTHING,
    "bench": EVERYTHING,
    "tools": EVERYTHING,
}

WITHOUT_LIBRARIES = ("frameworks/", "restoration/")
# Operating system and processor headers, for sources only: the seams towards a platform.
PLATFORM = {
    UTIL: {"xmmintrin.h", "emmintrin.h", "unistd.h", "fcntl.h", "pwd.h", "sys/file.h", "sys/random.h",
           "sys/stat.h"},
    CORE: {"dlfcn.h"},
}
# Libraries that a folder's sources may use.
LIBRARIES = {
    UTIL: ("json/", "zlib.h"),
    ELEMENTS: ("boost/signals2/",),
    CONTROLLER: ("boost/signals2/",),
    PRESET: ("pugixml.hpp",),
    PRESETS: ("boost/signals2/",),
    CORE: ("boost/signals2/",),
}
C_HEADERS = {name + ".h" for name in (
    "assert complex ctype errno fenv float inttypes iso646 limits locale math setjmp signal stdalign"
    " stdarg stdatomic stdbool stddef stdint stdio stdlib stdnoreturn string tgmath threads time"
    " uchar wchar wctype").split()}
SOURCE_ENDINGS = {".h", ".hpp", ".inc", ".c", ".cc", ".cpp", ".cxx", ".in"}
INCLUDE = re.compile(r"^\s*(?:#|%:)\s*(?:include(?:_next)?|import)\b\s*(.*?)\s*$", re.MULTILINE)
# Strings come first, so that "//" inside one starts no comment.
COMMENT = re.compile(r'("(?:\\.|[^"\\\n])*")|//[^\n]*|/\*.*?\*/', re.DOTALL)


def folder_of(path):
    """The longest folder of the table that holds `path`, or None."""
    matches = [folder for folder in ARROWS if path.startswith(folder + "/")]
    return max(matches, key=len, default=None)


def includes(text):
    text = text.replace("\\\n", "")
    return INCLUDE.findall(COMMENT.sub(lambda match: match.group(1) or " ", text))


def fault_of_library(path, folder, name):
    if not path.startswith(WITHOUT_LIBRARIES):
        return None
    if "." not in name and "/" not in name or name in C_HEADERS:
        return None
    allowed = name in PLATFORM.get(folder, ()) or name.startswith(LIBRARIES.get(folder, ("/",)))
    if allowed and not path.endswith(".h"):
        return None
    return f"no library or platform header here: <{name}>"


def fault_of(root, path, target):
    """What is wrong with this include, or None."""
    folder = folder_of(path)
    if folder is None:
        return "folder without arrows: add it to the table"
    if target.startswith("<") and target.endswith(">"):
        name = target[1:-1]
        if (root / name).exists():
            return f"a header of the project, in angle brackets: {target}"
        return fault_of_library(path, folder, name)
    if not (target.startswith('"') and target.endswith('"')):
        return f"not a plain file name: {target}"
    name = target[1:-1]
    # The public headers are installed into a folder of their own, so they name each other plainly.
    if folder == ENTRY and (root / ENTRY / name).is_file():
        return None
    if not (root / name).is_file() or ".." in Path(name).parts:
        return f"no path from the project's root: {target}"
    aim = folder_of(name)
    if aim is None or not (aim == folder or aim in ARROWS[folder]):
        return f"no arrow leads from {folder} to {aim}: {target}"
    if aim == KERNELS and folder != KERNELS and LEVEL in (root / name).read_text(encoding="utf-8"):
        return f"for sources that are compiled for each level: {target}"
    return None


def faults(root):
    result = []
    for top in ("frameworks", "restoration", "wrappers", "tests", "bench", "tools"):
        for file in sorted((root / top).rglob("*")):
            if file.suffix not in SOURCE_ENDINGS or not file.is_file():
                continue
            path = file.relative_to(root).as_posix()
            for target in includes(file.read_text(encoding="utf-8", errors="replace")):
                fault = fault_of(root, path, target)
                if fault:
                    result.append(f"{path}: {fault}")
    return result


GOOD = {
    f"{UTIL}/A.h": "#include <string>\n",
    f"{ENTRY}/E.h": "#include <stdint.h>\n",
    f"{ENTRY}/F.h": '#include "E.h"\n',
    "tests/contract/T.cpp": '#include "tests/support/S.h"\n',
    "tests/support/S.h": "#include <vector>\n",
    f"{ELEMENTS}/D.h": f'#include "{UTIL}/A.h"\n',
    f"{ELEMENTS}/D.cpp": f'#include "{ELEMENTS}/D.h"\n// #include "{CORE}/C.h"\n/* \n#include <zlib.h>\n*/\n',
    f"{CORE}/C.h": f'#include "{ELEMENTS}/D.h"\nconst char* u = "http://x"; /*\n#include <zlib.h> */\n',
    f"{KERNELS}/Set.h": "#include <array>\n",
    f"{KERNELS}/Lanes.h": f'#include "{KERNELS}/Set.h"\nnamespace PUFFGUARD_LEVEL {{}}\n',
    f"{KERNELS}/Set.cpp": f'#include "{KERNELS}/Lanes.h"\n',
    f"{SIGNAL}/K.cpp": f'#include "{KERNELS}/Set.h"\n',
    f"{ELEMENTS}/L.cpp": "#include <boost/signals2/signal.hpp>\n",
    f"{CORE}/C.cpp": "#include <dlfcn.h>\n",
    "wrappers/common/M.h": f'#include "{ENTRY}/E.h"\n',
    "wrappers/cli/run/W.cpp": '#include "wrappers/common/M.h"\n#include <sndfile.h>\n',
    "tests/a/T.cpp": f'#include "{CORE}/C.h"\n#include <gtest/gtest.h>\n',
}
BAD = {
    f"{ELEMENTS}/Up.cpp": f'#include "{CORE}/C.h"\n',
    f"{UTIL}/Up.h": f'  #  include "{ENTRY}/E.h"\n',
    f"{ENTRY}/Up.h": f'#include "{UTIL}/A.h"\n',
    f"{REPAIR}/Up.cpp": f'#include \\\n"{CORE}/C.h"\n',
    "wrappers/cli/run/Deep.cpp": f'#include "{ELEMENTS}/D.h"\n',
    "wrappers/cli/run/Entry.cpp": f'#include "{ENTRY}/E.h"\n',
    "wrappers/lv2/Aside.cpp": '#include "wrappers/cli/run/W.cpp"\n',
    "wrappers/vst/New.cpp": f'#include "{ENTRY}/E.h"\n',
    "tests/contract/Inside.cpp": f'#include "{CORE}/C.h"\n',
    f"{SIGNAL}/Level.cpp": f'#include "{KERNELS}/Lanes.h"\n',
    f"{CORE}/Angle.cpp": f'#include <{ELEMENTS}/D.h>\n',
    f"{CORE}/Relative.cpp": '#include "C.h"\n',
    f"{CORE}/Dots.cpp": f'#include "{CORE}/../plugincore/C.h"\n',
    f"{CORE}/Library.cpp": "#include <sndfile.h>\n",
    f"{ELEMENTS}/Library.h": "#include <boost/signals2/signal.hpp>\n",
    f"{CORE}/Platform.h": "#include <dlfcn.h>\n",
    f"{CORE}/Macro.cpp": "#include HEADER\n",
    f"{CORE}/Digraph.cpp": "%:include <zlib.h>\n",
    f"{CORE}/String.cpp": 'const char* s = "/*";\n#include <zlib.h>\nconst char* t = "*/";\n',
    f"{CORE}/Behind.cpp": "/* a */ #include <zlib.h>\n",
}


def self_test():
    with tempfile.TemporaryDirectory() as name:
        root = Path(name)
        for path, text in {**GOOD, **BAD}.items():
            (root / path).parent.mkdir(parents=True, exist_ok=True)
            (root / path).write_text(text, encoding="utf-8")
        found = faults(root)
    named = {fault.split(": ", 1)[0] for fault in found}
    wrong = [f"not found: {path}" for path in sorted(BAD.keys() - named)]
    wrong += [f"found without reason: {fault}" for fault in found if fault.split(": ")[0] in GOOD]
    return wrong


def main():
    found = self_test() if sys.argv[1] == "--self-test" else faults(Path(sys.argv[1]))
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
