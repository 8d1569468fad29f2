#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Makes two pictures of docs/images again, of the sample recording, in Chromium: report.png, the page
that --auto --report makes of it, and modes.png, what --auto and the controls do to it."""

import json
import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
IMAGES = ROOT / "docs/images"
sys.dont_write_bytecode = True
from browser import Browser # pylint: disable=wrong-import-position


def make_page(path, *options):
    """Makes the page; gives what it holds of the recording."""
    subprocess.run([ROOT / "build/bin/puffguard", ROOT / "tools/sample/plosives.flac", "--dry-run",
                    "--quiet", *options, "--report", path], check=True)
    data = re.search(r'id="data">(.*?)</script>', path.read_text(encoding="utf-8"), re.DOTALL)
    return json.loads(data[1])


def changed(report):
    return next(fact["value"] for fact in report["facts"] if "changed" in fact["label"])


def make_modes(path, automatic, controls):
    """A page with the recording, and what each mode makes of it, one below the other."""
    panels = [
        {"title": "As it was recorded", "note": "", "report": automatic, "side": "before"},
        {"title": "--auto", "report": automatic, "side": "after",
         "note": f"{len(automatic['events'])} pops, {changed(automatic)} of the time changed"},
        {"title": "The controls at their defaults", "report": controls, "side": "after",
         "note": f"{len(controls['events'])} prominent plosives, {changed(controls)} of the time changed"}]
    page = (ROOT / "tools/modes.html").read_text(encoding="utf-8")
    for name in ("sound.js", "picture.js"):
        script = (ROOT / "wrappers/cli/page/web" / name).read_text(encoding="utf-8")
        page = page.replace("{{" + name + "}}", script)
    data = json.dumps({"panels": panels}).replace("<", "\\u003c")
    path.write_text(page.replace("{{data}}", data), encoding="utf-8")


def main():
    with tempfile.TemporaryDirectory() as folder, Browser(1200, 620) as browser:
        page, modes = Path(folder) / "auto.html", Path(folder) / "modes.html"
        automatic = make_page(page, "--auto")
        make_modes(modes, automatic, make_page(Path(folder) / "controls.html"))
        browser.open(modes)
        browser.wait("document.title === 'drawn'")
        browser.picture(IMAGES / "modes.png", browser.value("document.body.scrollHeight"))
        browser.call("Emulation.setDeviceMetricsOverride", width=1180, height=1270, deviceScaleFactor=1,
                     mobile=False)
        browser.prefer(prefers_color_scheme="dark")
        browser.open(page)
        browser.value("document.querySelector('.event').focus({ preventScroll: true })")
        browser.press("ArrowDown")
        browser.value("scrollTo(0, 0)")
        time.sleep(1) # the rows in view are drawn one after another
        browser.picture(IMAGES / "report.png")
        assert not browser.log, browser.log


if __name__ == "__main__":
    main()
