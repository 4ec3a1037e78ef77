"""Drives a headless Chromium by its debugging pipe: keys as a user types them, scripts, pictures."""

import base64
import json
import os
import shutil
import subprocess
import tempfile

KEYS = {"Enter": 13, "Escape": 27, "PageUp": 33, "PageDown": 34, "End": 35, "Home": 36, "ArrowUp": 38, "ArrowDown": 40}


def find_chromium():
    """The browser's program, or None."""
    return shutil.which("chromium")


class Browser:
    """One browser with one page. Use it in a `with` statement, which ends the browser."""

    def __init__(self, width=1280, height=800):
        self._profile = tempfile.TemporaryDirectory(prefix="almcfg_page.", ignore_cleanup_errors=True)
        to_browser, self._out = os.pipe()
        self._in, from_browser = os.pipe()

        def use_descriptors():  # The browser reads from 3 and writes to 4. Duplicates first: a pipe may have these numbers.
            read, write = os.dup(to_browser), os.dup(from_browser)
            os.dup2(read, 3)
            os.dup2(write, 4)

        self._process = subprocess.Popen(
            [find_chromium(), "--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
             "--hide-scrollbars", "--remote-debugging-pipe", f"--user-data-dir={self._profile.name}", "about:blank"],
            preexec_fn=use_descriptors, close_fds=False, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)
        os.close(to_browser)
        os.close(from_browser)
        self._unread = b""
        self._last = 0
        self._events = []
        self._session = None
        target = next(t for t in self.call("Target.getTargets")["targetInfos"] if t["type"] == "page")
        self._session = self.call("Target.attachToTarget", targetId=target["targetId"], flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Network", "Log"):
            self.call(domain + ".enable")
        self.resize(width, height)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._session = None
        self.call("Browser.close")
        try:
            self._process.wait(timeout=20)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        os.close(self._in)
        os.close(self._out)
        self._profile.cleanup()

    def _read(self):
        while b"\0" not in self._unread:
            piece = os.read(self._in, 1 << 20)
            if not piece:
                raise RuntimeError("the browser ended")
            self._unread += piece
        message, self._unread = self._unread.split(b"\0", 1)
        return json.loads(message)

    def call(self, method, **parameters):
        """Sends a command and returns its result. Events that arrive meanwhile are kept."""
        self._last += 1
        message = {"id": self._last, "method": method, "params": parameters}
        if self._session:
            message["sessionId"] = self._session
        os.write(self._out, json.dumps(message).encode() + b"\0")
        while True:
            answer = self._read()
            if answer.get("id") == self._last:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']['message']}")
                return answer["result"]
            self._events.append(answer)

    def events(self, method):
        """The parameters of the events of that name since the last `open`."""
        return [event["params"] for event in self._events if event.get("method") == method]

    def open(self, path):
        """Opens a file and returns when the page has loaded and is drawn."""
        self._events = []
        self.call("Page.navigate", url="file://" + os.path.abspath(path))
        while not self.events("Page.loadEventFired"):
            self._events.append(self._read())
        self.settle()

    def run(self, script):
        """The value of an expression in the page; a promise is awaited."""
        result = self.call("Runtime.evaluate", expression=script, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in result:
            raise RuntimeError(result["exceptionDetails"]["exception"].get("description", "exception"))
        return result["result"].get("value")

    def settle(self):
        """Waits until the page has been drawn with all that was asked of it so far."""
        self.run("new Promise((done) => requestAnimationFrame(() => setTimeout(done)))")

    def press(self, key, shift=False, control=False):
        """Presses and releases a key: a character, or a name of KEYS or "Tab"."""
        event = {"key": key, "modifiers": 8 * shift + 2 * control}
        if len(key) == 1 and not control:
            event.update(text=key, windowsVirtualKeyCode=ord(key.upper()))
        else:
            event.update(windowsVirtualKeyCode=KEYS.get(key, 9), code=key)
        self.call("Input.dispatchKeyEvent", type="keyDown", **event)
        self.call("Input.dispatchKeyEvent", type="keyUp", **event)
        self.settle()

    def type(self, text):
        for character in text:
            self.press(character)

    def click(self, selector):
        box = self.run(f"""(() => {{ const box = document.querySelector({json.dumps(selector)}).getBoundingClientRect();
                            return [box.x + box.width / 2, box.y + box.height / 2]; }})()""")
        for kind in ("mousePressed", "mouseReleased"):
            self.call("Input.dispatchMouseEvent", type=kind, x=box[0], y=box[1], button="left", clickCount=1)
        self.settle()

    def resize(self, width, height):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)

    def dark(self, wanted=True):
        scheme = "dark" if wanted else "light"
        self.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])

    def picture(self, path):
        """Writes what is in view as a PNG."""
        with open(path, "wb") as file:
            file.write(base64.b64decode(self.call("Page.captureScreenshot", format="png")["data"]))

    def print(self):
        """The page on paper, as the bytes of a PDF."""
        return base64.b64decode(self.call("Page.printToPDF")["data"])
