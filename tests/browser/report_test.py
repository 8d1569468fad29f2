#!/usr/bin/env python3
# SPDX-License-Identifier: ISC
"""Opens the pages of --report in Chromium, steps through them by keyboard and checks what is heard.

    report_test.py COMMAND

Without Chromium it is skipped (77), unless PUFFGUARD_BROWSER is "required".
"""

import array
import json
import math
import os
import random
import subprocess
import sys
import tempfile
import unittest
import wave
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
sys.dont_write_bytecode = True
from browser import Browser, is_installed # pylint: disable=wrong-import-position

RATE, SECONDS = 44100, 6
NAME = "a <b>'talk'<!-- & \"100%\" #1.wav" # each character means something in HTML, script or links
# Takes note of what goes to the loudspeakers.
EAR = """
window.heard = [];
const start = AudioBufferSourceNode.prototype.start;
AudioBufferSourceNode.prototype.start = function (when, offset) {
  const channels = [...Array(this.buffer.numberOfChannels).keys()];
  heard.push({ rate: this.buffer.sampleRate, offset,
               samples: channels.map((one) => Array.from(this.buffer.getChannelData(one))) });
  start.call(this, when, offset);
};
"""


def make_recording(path):
    """A buzz with noise and a burst of 50 Hz in each second, the second channel at half its level."""
    noise = random.Random(1)
    samples = array.array("h")
    for i in range(RATE * SECONDS):
        burst = i % RATE - RATE // 2
        level = 0.4 * math.exp(-burst / 1500) if burst >= 0 else 0
        value = (0.002 * noise.gauss(0, 1) + 0.05 * math.sin(2 * math.pi * 210 * i / RATE) +
                 level * math.sin(2 * math.pi * 50 * i / RATE))
        samples.extend((round(32767 * value), round(16383 * value)))
    with wave.open(str(path), "wb") as file:
        file.setparams((2, 2, RATE, 0, "NONE", ""))
        file.writeframes(samples.tobytes())
    return samples


class ReportTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        base = Path(cls.folder.name)
        cls.inputs, cls.pages = base / "in", base / "pages"
        cls.inputs.mkdir()
        cls.samples = make_recording(cls.inputs / NAME)
        (cls.inputs / "broken.wav").write_bytes(b"no audio")
        with wave.open(str(cls.inputs / "silence.wav"), "wb") as file:
            file.setparams((1, 2, 8000, 0, "NONE", ""))
            file.writeframes(bytes(2 * 8000 * 90))
        done = subprocess.run([COMMAND, "-r", cls.inputs, "-n", "--quiet", "--report", cls.pages,
                               "--events", base / "events.json"], timeout=60, check=False,
                              capture_output=True)
        assert done.returncode == 1, done.stderr # the broken one
        cls.events = [event for event in json.loads((base / "events.json").read_text())[0]["events"]
                      if event["prominent"]]
        cls.browser = cls.enterClassContext(Browser())
        cls.browser.call("Page.addScriptToEvaluateOnNewDocument", source=EAR)

    def setUp(self):
        self.browser.open(self.pages / (Path(NAME).stem + ".html"))

    def tearDown(self):
        self.assertEqual(self.browser.log, [])
        self.assertEqual([one[:80] for one in self.browser.requests
                          if not one.startswith(("file:", "data:"))], [])

    def value(self, script):
        return self.browser.value(script)

    def press(self, *keys):
        for key in keys:
            self.browser.press(key)

    def enter_rows(self):
        for _ in range(10):
            self.press("Tab")
            if self.value("document.activeElement.classList.contains('event')"):
                return
        self.fail("Tab doesn't lead to the rows")

    def current(self):
        return self.value("Number(document.activeElement.dataset.event)")

    def status(self):
        return self.value("document.getElementById('status').textContent")

    def test_each_event_has_a_row_that_keys_reach(self):
        self.assertGreaterEqual(len(self.events), SECONDS - 1)
        self.assertEqual(self.value("document.querySelector('h1').textContent"), NAME)
        self.assertTrue(self.value("document.title").startswith(NAME))
        times = self.value("[...document.querySelectorAll('.event h3')].map((h) => h.lastChild.textContent)")
        self.assertEqual(times, [f"{event['time']:.2f} s" for event in self.events])
        self.enter_rows()
        self.assertEqual(self.current(), 0)
        self.press("ArrowDown", "ArrowDown", "ArrowUp")
        self.assertEqual(self.current(), 1)
        self.press("End", "ArrowDown")
        self.assertEqual(self.current(), len(self.events) - 1)
        self.assertEqual(self.value("document.querySelectorAll('#marks .chosen').length"), 1)
        # Its own buttons come next, and nobody else's.
        self.press("Tab")
        self.assertEqual(self.value("document.activeElement.closest('.event').dataset.event"),
                         str(len(self.events) - 1))
        self.assertEqual(self.value("document.querySelectorAll('.event[tabindex=\"0\"]').length"), 1)

    def test_loudest_first_sorts_the_rows(self):
        self.value("document.querySelector('[value=level]').click()")
        levels = self.value("[...document.querySelectorAll('.numbers .before')]"
                            ".map((one) => parseFloat(one.textContent.replace('−', '-')))")
        self.assertEqual(levels, sorted(levels, reverse=True))

    def test_clips_are_the_recording_and_add_up(self):
        self.enter_rows()
        self.press("ArrowDown", "b")
        self.assertEqual(self.status(), "Playing event 2, before")
        self.assertEqual(self.value("document.querySelectorAll('[aria-pressed=true]').length"), 1)
        self.browser.wait("parseFloat(document.querySelector('.playing .head-mark').style.left) > 10")
        self.press("a")
        self.press("r")
        self.assertEqual(self.status(), "Playing event 2, what was removed")
        before, after, removed = self.value("heard")
        self.assertEqual(before["offset"], 0)
        self.assertGreater(after["offset"], 0.05) # goes on where the other was
        self.assertGreaterEqual(removed["offset"], after["offset"])
        start = self.value("JSON.parse(document.getElementById('clip-1').textContent).start")
        own = self.samples[2 * round(start * RATE):]
        for channel in (0, 1):
            heard = [round(32768 * one) for one in before["samples"][channel]]
            self.assertEqual(heard, list(own[channel:2 * len(heard):2]))
            for was, rest, gone in zip(*(one["samples"][channel] for one in (before, after, removed))):
                self.assertAlmostEqual(was, rest + gone, delta=1e-6)
        self.assertGreater(max(removed["samples"][0]), 0.1)
        self.browser.wait("document.getElementById('status').textContent === ''") # to its end
        self.press(" ")
        self.assertEqual(self.status(), "Playing event 2, what was removed")
        self.press("Escape")
        self.assertEqual(self.status(), "")

    def test_pictures_are_drawn_and_colours_follow_the_user(self):
        grounds = []
        for scheme in ("light", "dark"):
            self.browser.prefer(prefers_color_scheme=scheme, prefers_reduced_motion="reduce")
            grounds.append(self.value("getComputedStyle(document.body).backgroundColor"))
            self.assertEqual(self.value("getComputedStyle(document.querySelector('button')).transitionDuration"),
                             "0s")
        self.assertNotEqual(*grounds)
        for canvas in ("#before", "#after", "#wave", ".clip canvas"):
            self.value(f"document.querySelector('{canvas}').scrollIntoView()")
            # As many colours as something drawn has, and a blank canvas hasn't.
            self.browser.wait(f"""(() => {{
                const canvas = document.querySelector('{canvas}');
                const all = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
                return new Set(new Uint32Array(all.buffer)).size > 2; }})()""")

    def test_a_recording_without_events_has_a_page(self):
        self.browser.open(self.pages / "silence.html")
        times = self.value("[...document.querySelectorAll('.times span')].map((one) => one.textContent)")
        self.assertEqual(times[:3] + times[-1:], ["0", "10 s", "20 s", "1:30"])
        self.assertIn("1:00", times)
        self.assertEqual(self.value("document.querySelectorAll('.event').length"), 0)
        self.assertFalse(self.value("document.querySelector('.order').checkVisibility()"))
        self.press("Tab", "ArrowDown", "b")

    def test_the_index_leads_to_the_pages(self):
        self.browser.open(self.pages / "index.html")
        text = self.value("document.querySelector('tbody').innerText")
        self.assertIn("Failed: ", text)
        self.assertIn(NAME, text)
        self.value("document.querySelector('a').focus()")
        self.press("Enter")
        self.browser.wait("document.querySelectorAll('.event').length > 0")
        self.assertEqual(self.value("document.querySelector('h1').textContent"), NAME)


if __name__ == "__main__":
    COMMAND = sys.argv.pop(1)
    if not is_installed() and os.environ.get("PUFFGUARD_BROWSER") != "required":
        print("skipped: no chromium here; ./test without arguments installs it")
        sys.exit(77)
    unittest.main()
