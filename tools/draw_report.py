#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Makes docs/images/report.png again: the page that --report makes of the sample recording, as Chromium
shows it.

    draw_report.py [OPTION...]     options of the command
"""

import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PICTURE = ROOT / "docs/images/report.png"
sys.path.insert(0, str(ROOT / "tests/browser"))
sys.dont_write_bytecode = True
from browser import Browser # pylint: disable=wrong-import-position


def main():
    with tempfile.TemporaryDirectory() as folder, Browser(1180, 1160) as browser:
        page = Path(folder) / "report.html"
        subprocess.run([ROOT / "build/bin/puffguard", ROOT / "tools/sample/plosives.flac", "--dry-run",
                        "--quiet", *sys.argv[1:], "--report", page], check=True)
        browser.prefer(prefers_color_scheme="dark")
        browser.open(page)
        browser.value("document.querySelector('.event').focus({ preventScroll: true })")
        browser.press("ArrowDown")
        time.sleep(1) # the rows in view are drawn one after another
        browser.picture(PICTURE)
        assert not browser.log, browser.log


if __name__ == "__main__":
    main()
