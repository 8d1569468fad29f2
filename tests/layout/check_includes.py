#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Fails on every #include, and every forward declaration, that no arrow of the architecture allows.

    check_includes.py ROOT       reads the project
    check_includes.py --self-test

arrows.py holds the arrows. Below the wrappers, headers use the standard library alone, and sources also what PLATFORM and
LIBRARIES name; a wrapper may use any library. Project headers are included by their path from the
root, in quotes. A class of another folder may be declared where its header may be included.
"""

import re
import sys
import tempfile
from pathlib import Path

from arrows import (ARROWS, CORE, ELEMENTS, ENTRY, KERNELS, KNOTS, LEVEL, LIBRARIES, PLATFORM,
                    REPAIR, SIGNAL, UI, UTIL, WITHOUT_LIBRARIES)

C_HEADERS = {name + ".h" for name in (
    "assert complex ctype errno fenv float inttypes iso646 limits locale math setjmp signal stdalign"
    " stdarg stdatomic stdbool stddef stdint stdio stdlib stdnoreturn string tgmath threads time"
    " uchar wchar wctype").split()}
SOURCE_ENDINGS = {".h", ".hpp", ".inc", ".c", ".cc", ".cpp", ".cxx", ".in"}
INCLUDE = re.compile(r"^\s*(?:#|%:)\s*(?:include(?:_next)?|import)\b\s*(.*?)\s*$", re.MULTILINE)
# Strings come first, so that "//" inside one starts no comment.
# What changes the namespace or declares a class, outside of comments and strings.
SCOPES = re.compile(r'"(?:\\.|[^"\\\n])*"|\bnamespace\s+([\w:]+)\s*\{|([{}])|'
                    r'\b(?:class|struct|enum\s+class)\s+(\w+)\s*(?:final\s*)?(:[^;{]*)?([;{])')
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


def classes(text):
    """Yields (qualified name, whether it is defined here) of every class in a namespace."""
    scopes = [] # of each open brace: the namespace it opens, or None
    for match in SCOPES.finditer(COMMENT.sub(lambda found: found.group(1) or " ", text)):
        namespace, brace, name, _, end = match.groups()
        if name and None not in scopes:
            yield "::".join([*scopes, name]), end == "{"
        if namespace or brace == "{" or end == "{":
            scopes.append(namespace)
        elif brace == "}" and scopes:
            scopes.pop()


def faults_of_declarations(texts):
    """`texts`: by path. Classes that are declared in a folder which may not include their header."""
    homes, declared = {}, []
    for path, text in texts.items():
        if not path.startswith(WITHOUT_LIBRARIES):
            continue
        for name, defined in classes(text):
            if defined:
                homes.setdefault(name, set()).add(folder_of(path))
            else:
                declared.append((path, name))
    for path, name in declared:
        folder = folder_of(path)
        allowed = {folder} | ARROWS.get(folder, set())
        if name in homes and not homes[name] & allowed and name not in KNOTS.get(folder, ()):
            yield f"{path}: no arrow leads from {folder} to {', '.join(homes[name])}: class {name};"


def faults(root):
    texts = {}
    for top in ("frameworks", "restoration", "wrappers", "tests", "bench", "tools"):
        for file in sorted((root / top).rglob("*")):
            if file.suffix in SOURCE_ENDINGS and file.is_file():
                path = file.relative_to(root).as_posix()
                texts[path] = file.read_text(encoding="utf-8", errors="replace")
    result = [f"{path}: {fault}" for path, text in texts.items() for target in includes(text)
              if (fault := fault_of(root, path, target))]
    return result + list(faults_of_declarations(texts))


# What the bad ones go by; that nothing is found without reason shows in the project itself.
GOOD = {
    f"{UTIL}/A.h": "#include <string>\n",
    f"{ENTRY}/E.h": "#include <stdint.h>\n",
    f"{ELEMENTS}/D.h": f'#include "{UTIL}/A.h"\n',
    f"{ELEMENTS}/D.cpp": f'#include "{ELEMENTS}/D.h"\n// #include "{CORE}/C.h"\n/* \n#include <zlib.h>\n*/\n',
    f"{CORE}/C.h": f'#include "{ELEMENTS}/D.h"\nconst char* u = "http://x"; /*\n#include <zlib.h> */\n',
    f"{KERNELS}/Set.h": "#include <array>\n",
    f"{KERNELS}/Lanes.h": f'#include "{KERNELS}/Set.h"\nnamespace PUFFGUARD_LEVEL {{}}\n',
    f"{CORE}/Declared.h": "namespace Core {\nstruct Declared {};\nclass Upper {\n    class Inner;\n};\n}\n",
    f"{UI}native/x11/Window.cpp": "#include <xcb/xcb.h>\n",
    "wrappers/cli/run/W.cpp": "#include <sndfile.h>\n",
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
    f"{UTIL}/Declares.h": "namespace Core {\nstruct Declared; // of above\n}\n",
    f"{UI}window/Window.cpp": "#include <xcb/xcb.h>\n",
    f"{UI}draw/Context.cpp": f'#include "{UI}native/x11/Window.cpp"\n',
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
