# SPDX-License-Identifier: ISC
"""What was found clean needs no second look as long as nothing that it hangs on has changed."""

import hashlib
import re

INCLUDE = re.compile(rb'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


class Stamps:
    """An empty file in `folder` for each state of a source or header that was found clean.

    A state is the text of the file, those of all project headers that it reaches, and what the caller
    names: settings, version of the tool, command. The project's own place is left out of it, so that the
    folder also serves another clone. System headers are taken to change only along with a version;
    remove the folder to start anew.
    """

    def __init__(self, root, folder, *common):
        self.root = root
        self.folder = folder
        self.common = common
        self.contents = {}  # path: (hash of the file alone, the paths it includes)
        folder.mkdir(exist_ok=True)

    def of(self, path, *command):
        """The file that is there when `path` was found clean in this state."""
        whole = [f"{self._read(one)[0]} {one}" for one in self.reached(path)]
        state = "\n".join([*self.common, *command, *whole]).replace(str(self.root), "")
        return self.folder / hashlib.sha256(state.encode()).hexdigest()

    def reached(self, path):
        """The file and everything of the project that it includes, in a fixed order."""
        reached, waiting = set(), [path]
        while waiting:
            current = waiting.pop()
            if current not in reached:
                reached.add(current)
                waiting += self._read(current)[1]
        return sorted(reached)

    def _read(self, path):
        """What `contents` has for a file."""
        if path not in self.contents:
            text = path.read_bytes()
            named = [name.decode() for name in INCLUDE.findall(text)]
            found = [place / name for name in named for place in (self.root, path.parent)
                     if (place / name).is_file()]
            self.contents[path] = (hashlib.sha256(text).hexdigest(), found)
        return self.contents[path]
