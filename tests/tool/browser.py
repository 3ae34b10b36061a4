"""A headless browser for tests of pages, spoken to through a pipe by the DevTools protocol."""

import base64
import json
import os
import shutil
import subprocess
import tempfile

WAIT = 30  # seconds for anything


class Browser:
    """One window. Whatever the page logs, throws or asks the network for is kept."""

    def __init__(self):
        if shutil.which("chromium") is None:
            raise RuntimeError("there is no chromium; scripts/setup --browser installs it")
        self.profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        to_browser, self.pipe_out = os.pipe()
        self.pipe_in, from_browser = os.pipe()
        command = ["chromium", "--headless=new", "--disable-gpu", "--remote-debugging-pipe",
                   "--no-first-run", f"--user-data-dir={self.profile.name}"]  # fmt: skip
        if os.geteuid() == 0:
            command.append("--no-sandbox")
        # It reads from descriptor 3 and writes to 4.
        redirect = f'exec "$@" 3<&{to_browser} 4>&{from_browser}'
        self.process = subprocess.Popen(
            ["bash", "-c", redirect, "bash", *command, "about:blank"],
            pass_fds=(to_browser, from_browser),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        os.close(to_browser)
        os.close(from_browser)
        self.unread = b""
        self.number = 0
        self.session = None
        self.events = []
        target = self.send("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.send("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.send(domain + ".enable")

    def close(self):
        os.close(self.pipe_out)  # ends it
        try:
            self.process.wait(WAIT)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        os.close(self.pipe_in)
        self.profile.cleanup()

    def receive(self):
        """The next message: each ends with a zero byte."""
        while b"\0" not in self.unread:
            block = os.read(self.pipe_in, 1 << 20)
            if not block:
                raise RuntimeError("the browser has ended")
            self.unread += block
        message, self.unread = self.unread.split(b"\0", 1)
        return json.loads(message)

    def send(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.pipe_out, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.receive()
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]
            self.events.append(answer)

    def open(self, url, width, height=800, scheme="light"):
        """Shows the page in a window of that many pixels, and returns once it has loaded."""
        self.send("Emulation.setDeviceMetricsOverride", width=width, height=height,
                  deviceScaleFactor=1, mobile=width < 600)  # fmt: skip
        self.send("Emulation.setEmulatedMedia",
                  features=[{"name": "prefers-color-scheme", "value": scheme}])  # fmt: skip
        self.events.clear()
        self.send("Page.navigate", url=url)
        while not any(event.get("method") == "Page.loadEventFired" for event in self.events):
            self.events.append(self.receive())

    def evaluate(self, expression):
        """The value of a JavaScript expression, awaited where it is a promise."""
        answer = self.send("Runtime.evaluate", expression=expression, returnByValue=True,
                           awaitPromise=True)  # fmt: skip
        if "exceptionDetails" in answer:
            raise RuntimeError(json.dumps(answer["exceptionDetails"]))
        return answer["result"].get("value")

    def complaints(self):
        """What the page logged, threw, or had refused."""
        kinds = ("Runtime.consoleAPICalled", "Runtime.exceptionThrown", "Log.entryAdded")
        return [event["params"] for event in self.events if event.get("method") in kinds]

    def requests(self):
        """The addresses that were asked for, but for those that carry their data themselves."""
        asked = [event["params"]["request"]["url"] for event in self.events
                 if event.get("method") == "Network.requestWillBeSent"]  # fmt: skip
        return [url for url in asked if not url.startswith("data:")]

    def screenshot(self, path):
        """Of the whole page, as PNG."""
        answer = self.send("Page.captureScreenshot", captureBeyondViewport=True)
        path.write_bytes(base64.b64decode(answer["data"]))
