"""Opens an album's page in Chromium and reads what it came to: the elements of the page and the lines of the console."""

import html.parser
import json
import os
import subprocess
import sys
import tempfile
import threading
import time

VOID = {"area", "base", "br", "col", "embed", "hr", "img", "input", "link", "meta", "source", "track", "wbr"}


class Element:
    def __init__(self, tag, attributes):
        self.tag = tag
        self.attributes = dict(attributes)
        self.children = []

    @property
    def classes(self):
        return (self.attributes.get("class") or "").split()

    def all(self, tag=None, name=None):
        """Every element below this one with a tag and a class, in the page's order."""
        for child in self.children:
            if isinstance(child, Element):
                if (tag is None or child.tag == tag) and (name is None or name in child.classes):
                    yield child
                yield from child.all(tag, name)

    def one(self, tag=None, name=None):
        found = list(self.all(tag, name))
        assert len(found) == 1, f"{len(found)} elements {tag or ''}.{name or ''}"
        return found[0]

    @property
    def text(self):
        return "".join(child if isinstance(child, str) else child.text for child in self.children)

    def texts(self, tag=None, name=None):
        return [element.text for element in self.all(tag, name)]


class PageParser(html.parser.HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.root = Element("", [])
        self.open = [self.root]

    def handle_starttag(self, tag, attrs):
        element = Element(tag, attrs)
        self.open[-1].children.append(element)
        if tag not in VOID:
            self.open.append(element)

    def handle_startendtag(self, tag, attrs):
        self.open[-1].children.append(Element(tag, attrs))

    def handle_endtag(self, tag):
        if tag in (element.tag for element in self.open[1:]):
            while self.open.pop().tag != tag:
                pass

    def handle_data(self, data):
        self.open[-1].children.append(data)


def chromium(profile, *arguments):
    """The command that starts the browser with a profile of its own and its console on standard error."""
    return [os.environ.get("QUILLBOOK_CHROMIUM", "chromium"), "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
            "--disable-background-networking", "--disable-dev-shm-usage", "--no-first-run", f"--user-data-dir={profile}",
            "--enable-logging=stderr", "--v=0", *arguments]


def console_lines(standard_error):
    return [line for line in standard_error.splitlines() if "CONSOLE" in line]


class Page:
    """A page as it stands when its scripts have come to rest."""

    def __init__(self, folder, height=800):
        with tempfile.TemporaryDirectory(prefix="quillbook-chromium-") as profile:
            run = subprocess.run(
                chromium(profile, f"--window-size=1200,{height}", "--virtual-time-budget=8000", "--dump-dom",
                         f"file://{folder}/index.html"),
                capture_output=True, encoding="utf-8", timeout=100, check=True)
        parser = PageParser()
        parser.feed(run.stdout)
        parser.close()
        self.root = parser.root
        self.console = console_lines(run.stderr)

    @property
    def html(self):
        return self.root.one("html")

    def message(self, number):
        found = [element for element in self.root.all("article") if element.attributes.get("data-id") == str(number)]
        assert len(found) == 1, f"message {number} stands {len(found)} times"
        return found[0]


# Becomes the browser, with the two pipes where it looks for them. Copies come first, lest one pipe take the other's place.
PLUMBING = """
import fcntl, os, sys
pipes = [fcntl.fcntl(int(pipe), fcntl.F_DUPFD_CLOEXEC, 16) for pipe in sys.argv[1:3]]
os.dup2(pipes[0], 3)
os.dup2(pipes[1], 4)
os.execvp(sys.argv[3], sys.argv[3:])
"""


class LivePage:
    """
    A page in a browser that draws frame by frame, as scrolling needs: `result` is what the script came to in it.

    Speaks the DevTools protocol over the two pipes that Chromium expects as descriptors 3 and 4, one message up to each zero byte.
    """

    def __init__(self, folder, script):
        to_browser, self._commands = os.pipe()
        self._answers, from_browser = os.pipe()
        with tempfile.TemporaryDirectory(prefix="quillbook-chromium-") as profile, tempfile.TemporaryFile() as errors:
            command = chromium(profile, "--window-size=1200,800", "--remote-debugging-pipe")
            browser = subprocess.Popen(
                [sys.executable, "-c", PLUMBING, str(to_browser), str(from_browser), *command],
                pass_fds=(to_browser, from_browser), stderr=errors)
            os.close(to_browser)
            os.close(from_browser)
            watchdog = threading.Timer(60, browser.kill)
            watchdog.start()
            try:
                self._received = b""
                self._number = 0
                self.result = self._run(folder, script)
                self._send("Browser.close")
                browser.wait(20)
            finally:
                watchdog.cancel()
                browser.kill()
                browser.wait()
                os.close(self._commands)
                os.close(self._answers)
            errors.seek(0)
            self.console = console_lines(errors.read().decode("utf-8", "replace"))

    def _run(self, folder, script):
        target = self._call("Target.createTarget", url="about:blank")["targetId"]
        session = self._call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        self._call("Page.navigate", session, url=f"file://{folder}/index.html")
        while self._evaluate(session, "location.protocol + document.readyState") != "file:complete":
            time.sleep(0.05)
        return self._evaluate(session, f"({script})()")

    def _evaluate(self, session, expression):
        answer = self._call("Runtime.evaluate", session, expression=expression, awaitPromise=True, returnByValue=True)
        if "exceptionDetails" in answer:
            raise AssertionError(answer["exceptionDetails"])
        return answer["result"]["value"]

    def _send(self, method, session=None, **parameters):
        self._number += 1
        message = {"id": self._number, "method": method, "params": parameters} | ({"sessionId": session} if session else {})
        os.write(self._commands, json.dumps(message).encode() + b"\0")
        return self._number

    def _call(self, method, session=None, **parameters):
        number = self._send(method, session, **parameters)
        while True:
            message = self._receive()
            if message.get("id") == number:
                if "error" in message:
                    raise AssertionError(message["error"])
                return message["result"]

    def _receive(self):
        while b"\0" not in self._received:
            block = os.read(self._answers, 65536)
            if not block:
                raise AssertionError("The browser ended")
            self._received += block
        text, self._received = self._received.split(b"\0", 1)
        return json.loads(text)
