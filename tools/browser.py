# SPDX-License-Identifier: ISC
"""Chromium without a window, driven over a pipe by its own protocol: for tests and pictures of pages."""

import base64
import fcntl
import json
import os
import select
import shutil
import signal
import subprocess
import tempfile
import time
from pathlib import Path

SECONDS = 60 # for any single answer
OPTIONS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
           "--disable-extensions", "--disable-audio-output", "--hide-scrollbars",
           "--force-device-scale-factor=1", "--remote-debugging-pipe"]


def is_installed():
    return shutil.which("chromium") is not None


class Browser:
    """One page in a browser with a profile of its own; ends with the block that it is made in."""

    def __init__(self, width=1280, height=900):
        self.log, self.requests = [], [] # what the console holds; what was asked of any network or disk
        self.number, self.rest, self.session = 0, b"", None
        self.folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        reads, self.to = os.pipe()
        self.source, writes = os.pipe()
        # The protocol wants 3 and 4, which the pipes' own numbers must not be.
        ends = [fcntl.fcntl(end, fcntl.F_DUPFD, 10) for end in (reads, writes)]
        self.process = subprocess.Popen(
            ["bash", "-c", f'exec "$@" 3<&{ends[0]} 4>&{ends[1]}', "bash", "chromium", *OPTIONS,
             f"--user-data-dir={self.folder.name}", f"--window-size={width},{height}", "about:blank"],
            pass_fds=ends, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        for end in (reads, writes, *ends):
            os.close(end)
        target = next(one for one in self.call("Target.getTargets")["targetInfos"] if one["type"] == "page")
        self.session = self.call("Target.attachToTarget", targetId=target["targetId"],
                                 flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(domain + ".enable")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        # All that it has started is of its group.
        os.killpg(self.process.pid, signal.SIGKILL)
        self.process.wait()
        for end in (self.to, self.source):
            os.close(end)
        self.folder.cleanup()

    def receive(self, end):
        while b"\0" not in self.rest:
            if not select.select([self.source], [], [], max(0, end - time.monotonic()))[0]:
                raise TimeoutError("the browser doesn't answer")
            part = os.read(self.source, 1 << 20)
            if not part:
                raise EOFError("the browser has ended")
            self.rest += part
        message, self.rest = self.rest.split(b"\0", 1)
        message = json.loads(message)
        self.note(message.get("method"), message.get("params"))
        return message

    def note(self, method, params):
        if method == "Runtime.consoleAPICalled":
            self.log.append(" ".join(str(one.get("value", one)) for one in params["args"]))
        elif method == "Runtime.exceptionThrown":
            self.log.append(params["exceptionDetails"].get("exception", params["exceptionDetails"])
                            .get("description", "an exception"))
        elif method == "Log.entryAdded":
            self.log.append(params["entry"]["text"])
        elif method == "Network.requestWillBeSent":
            self.requests.append(params["request"]["url"])

    def call(self, method, **params):
        self.number += 1
        message = {"id": self.number, "method": method, "params": params}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.to, json.dumps(message).encode() + b"\0")
        end = time.monotonic() + SECONDS
        while True:
            answer = self.receive(end)
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]

    def open(self, path):
        self.call("Page.navigate", url=Path(path).resolve().as_uri())
        self.wait("document.readyState === 'complete'")

    def value(self, script):
        """What the script gives, or its promise."""
        answer = self.call("Runtime.evaluate", expression=script, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(f"{script}: {answer['exceptionDetails']}")
        return answer["result"].get("value")

    def wait(self, script, seconds=20):
        end = time.monotonic() + seconds
        while not self.value(script):
            if time.monotonic() > end:
                raise TimeoutError(script)
            time.sleep(0.02)

    def press(self, key, code=None):
        """A key as a user presses it, by its name in the events of the page."""
        codes = {"Tab": 9, "Enter": 13, "Escape": 27, " ": 32, "End": 35, "Home": 36, "ArrowUp": 38,
                 "ArrowDown": 40}
        number = code or codes.get(key) or ord(key.upper())
        text = {"text": "\r" if key == "Enter" else key} if len(key) == 1 or key == "Enter" else {}
        self.call("Input.dispatchKeyEvent", type="keyDown", key=key, windowsVirtualKeyCode=number, **text)
        self.call("Input.dispatchKeyEvent", type="keyUp", key=key, windowsVirtualKeyCode=number)

    def prefer(self, **features):
        """Settings of the user, such as prefers_color_scheme="dark"."""
        self.call("Emulation.setEmulatedMedia", features=[
            {"name": name.replace("_", "-"), "value": value} for name, value in features.items()])

    def picture(self, path, height=None):
        """A PNG of the page from its top, `height` pixels of it or what the window shows."""
        area = {}
        if height:
            width = self.value("innerWidth")
            area = {"clip": {"x": 0, "y": 0, "width": width, "height": height, "scale": 1},
                    "captureBeyondViewport": True}
        data = self.call("Page.captureScreenshot", format="png", **area)["data"]
        Path(path).write_bytes(base64.b64decode(data))
