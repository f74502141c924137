"""A desktop to measure on: a display whose pixels are read straight from its memory, a window manager, a bus, a keyboard.

The window manager puts each window at the display's corner, without a frame. The bus starts no services: no address book
answers, no settings, no assistive programs.
"""

import ctypes
import mmap
import os
import shutil
import signal
import struct
import subprocess
import tempfile
import time
from pathlib import Path

WIDTH, HEIGHT = 1280, 900
# Often enough for a hundredth of a second, and seldom enough to leave the processor to what is measured.
GLANCE = 0.002
LIMIT = 120
BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path={folder}/bus</listen>
<policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy>
</busconfig>
"""
MANAGER = """<?xml version="1.0"?>
<openbox_config xmlns="http://openbox.org/3.4/rc"><applications><application class="*">
<decor>no</decor><focus>yes</focus><position force="yes"><x>0</x><y>0</y></position></application></applications>
</openbox_config>
"""


def until(question, what):
    end = time.monotonic() + LIMIT
    while not (answer := question()):
        if time.monotonic() > end:
            raise SystemExit(f"waited in vain for {what}")
        time.sleep(0.02)
    return answer


class Screen:
    """The pixels on show: four bytes each, blue first."""

    def __init__(self, file):
        with open(file, "rb") as opened:
            self.memory = mmap.mmap(opened.fileno(), 0, access=mmap.ACCESS_READ)
        # The file is an image as xwd writes it: a header and a table of colours, then the rows.
        header, line, colours = (struct.unpack_from(">I", self.memory, at)[0] for at in (0, 48, 76))
        self.start, self.line = header + 12 * colours, line

    def column(self, x, top, bottom):
        """The blue of one column."""
        return self.memory[self.start + top * self.line + 4 * x:self.start + bottom * self.line:self.line]

    def rows(self, left, top, right, bottom, step=1):
        return b"".join(self.memory[self.start + y * self.line + 4 * left:self.start + y * self.line + 4 * right]
                        for y in range(top, bottom, step))


class Keyboard:
    """Keys as a keyboard gives them, by the display's own test extension."""

    def __init__(self, display):
        self.library, self.test = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXtst.so.6")
        self.library.XOpenDisplay.restype = self.library.XStringToKeysym.restype = ctypes.c_void_p
        self.display = ctypes.c_void_p(self.library.XOpenDisplay(display.encode()))

    def press(self, name):
        """The moment before the key goes down."""
        symbol = ctypes.c_ulong(self.library.XStringToKeysym(name.encode()))
        code = self.library.XKeysymToKeycode(self.display, symbol)
        moment = time.monotonic()
        for is_down in (1, 0):
            self.test.XTestFakeKeyEvent(self.display, code, is_down, ctypes.c_ulong(0))
        self.library.XSync(self.display, 0)
        return moment

    def leave(self):
        """No window has the keyboard any more."""
        self.library.XSetInputFocus(self.display, ctypes.c_ulong(0), 0, ctypes.c_ulong(0))
        self.library.XSync(self.display, 0)

    def close(self):
        self.library.XCloseDisplay(self.display)


class Desktop:
    """To be used in a with statement: nothing of it stays."""

    def __enter__(self):
        self.base = Path(tempfile.mkdtemp(prefix="quillbook-bench-"))
        self.processes = []
        try:
            self.open()
        except BaseException:
            self.__exit__()
            raise
        return self

    def open(self):
        for name in ("run", "config", "cache", "data", "tmp"):
            (self.base / name).mkdir(mode=0o700)
        (self.base / "bus.conf").write_text(BUS.format(folder=self.base))
        (self.base / "manager.xml").write_text(MANAGER)
        self.environment = {
            "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", "TZ": "UTC", "XDG_CONFIG_HOME": f"{self.base}/config",
            "XDG_CACHE_HOME": f"{self.base}/cache", "XDG_DATA_HOME": f"{self.base}/data",
            "XDG_RUNTIME_DIR": f"{self.base}/run", "TMPDIR": f"{self.base}/tmp", "HOME": str(self.base),
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.base}/bus", "CANBERRA_DRIVER": "null"}
        read, write = os.pipe()
        self.start("Xvfb", "-displayfd", write, "-screen", "0", f"{WIDTH}x{HEIGHT}x24", "-nolisten", "tcp", "-noreset",
                   "-fbdir", self.base, pass_fds=(write,))
        os.close(write)
        with os.fdopen(read) as display:
            self.environment["DISPLAY"] = ":" + display.readline().strip()
        self.screen = Screen(self.base / "Xvfb_screen0")
        self.start("dbus-daemon", f"--config-file={self.base}/bus.conf", "--nofork", "--nosyslog")
        until((self.base / "bus").exists, "the bus")
        self.manager = self.start("openbox", "--sm-disable", "--config-file", self.base / "manager.xml")
        self.keyboard = Keyboard(self.environment["DISPLAY"])
        # The manager has no window of its own to wait for, and later windows need it at once.
        time.sleep(1)

    def start(self, *command, **options):
        environment = self.environment | options.pop("environment", {})
        process = subprocess.Popen([str(word) for word in command], env=environment, stdin=subprocess.DEVNULL,
                                   stdout=options.pop("stdout", subprocess.DEVNULL),
                                   stderr=options.pop("stderr", subprocess.DEVNULL), start_new_session=True, **options)
        self.processes.append(process)
        return process

    def end(self, process):
        self.processes.remove(process)
        for number in (signal.SIGTERM, signal.SIGKILL):
            if process.poll() is None:
                process.send_signal(number)
                try:
                    process.wait(10)
                except subprocess.TimeoutExpired:
                    continue

    def watch(self, look, act, quiet=1.5):
        """Acts, and gives the moment of the act and those of each change of what `look` gives, until it stays the same for so
        long."""
        seen, changes = look(), []
        start = act()
        while not changes or time.monotonic() - changes[-1] < quiet:
            time.sleep(GLANCE)
            found = look()
            if found != seen:
                seen = found
                changes.append(time.monotonic())
            if time.monotonic() - start > LIMIT or (changes and changes[-1] - start > LIMIT):
                raise SystemExit("the window does not come to rest")
        return start, changes

    def __exit__(self, *_):
        if hasattr(self, "keyboard"):
            self.keyboard.close()
        for process in reversed(list(self.processes)):
            self.end(process)
        shutil.rmtree(self.base, ignore_errors=True)
