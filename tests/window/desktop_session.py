"""A desktop of its own: display, window manager, session bus, accessibility bus, notifications, portal, home folder.

Nothing of the machine's own desktop is used, and nothing is left of it: not a process, not a file.
"""

import atexit
import ctypes
import json
import os
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import zlib
from pathlib import Path

from gi.repository import Gio, GLib

LIMIT = float(os.environ.get("QUILLBOOK_WAIT_LIMIT", "30"))
SCREEN = (1400, 1000)
BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path={folder}/bus</listen><servicedir>{folder}/services</servicedir>
<policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy>
</busconfig>
"""
NOTIFICATIONS = """[global]
    mouse_left_click = do_action, close_current
    origin = top-right
    offset = 10x10
    width = 300
[urgency_normal]
    timeout = 0
"""


class Gone(Exception):
    """What was asked about is no longer there."""


def until(question, what, limit=None):
    """Asks until the answer is true, and gives it; what keeps being false is told."""
    end = time.monotonic() + (limit or LIMIT)
    while True:
        try:
            answer = question()
        except Gone:
            answer = None
        if answer:
            return answer
        if time.monotonic() > end:
            raise AssertionError("waited in vain: " + (what() if callable(what) else what))
        time.sleep(0.03)


def _adopt_orphans():
    """Processes that lose their parent become ours, so that they can be ended (prctl(2), PR_SET_CHILD_SUBREAPER)."""
    ctypes.CDLL(None, use_errno=True).prctl(36, 1, 0, 0, 0)


def _descendants(process):
    found = []
    for task in Path(f"/proc/{process}/task").glob("*/children"):
        try:
            children = [int(child) for child in task.read_text().split()]
        except OSError:
            continue
        for child in children:
            found += [child, *_descendants(child)]
    return found


class DesktopSession:
    """The processes of a desktop and the folders of its user. To be closed in every case."""

    def __init__(self):
        _adopt_orphans()
        self.base = Path(tempfile.mkdtemp(prefix="quillbook-window-"))
        self.processes = []
        self.logs = self.base / "logs"
        self.home = self.base / "home"
        atexit.register(self.close)
        try:
            self._make_folders()
            self._start()
        except BaseException:
            self.close()
            raise

    def _make_folders(self):
        for name in ("logs", "home", "run", "tmp", "screen", "services", "system-config", "home/.config/dunst",
                     "home/.local/share/applications", "home/Downloads"):
            (self.base / name).mkdir(parents=True, exist_ok=True)
        (self.base / "run").chmod(0o700)
        self.opened = self.base / "opened"
        self.record = self.base / "record"
        self.record.touch()
        (self.base / "bus.conf").write_text(BUS_CONFIGURATION.format(folder=self.base))
        (self.home / ".config/dunst/dunstrc").write_text(NOTIFICATIONS)
        browser = self.base / "browser"
        browser.write_text(f'#!/bin/sh\nprintf "%s\\n" "$1" >> "{self.opened}"\n')
        browser.chmod(0o755)
        (self.home / ".local/share/applications/recording-browser.desktop").write_text(
            "[Desktop Entry]\nType=Application\nName=Browser\nNoDisplay=true\n"
            f"Exec={browser} %u\nMimeType=text/html;x-scheme-handler/https;\n")
        (self.home / ".config/mimeapps.list").write_text(
            "[Default Applications]\ntext/html=recording-browser.desktop\n"
            "x-scheme-handler/https=recording-browser.desktop\n")
        self.environment = {
            "PATH": os.environ["PATH"], "HOME": str(self.home), "USER": os.environ.get("USER", "user"),
            "XDG_CONFIG_HOME": str(self.home / ".config"), "XDG_DATA_HOME": str(self.home / ".local/share"),
            "XDG_CACHE_HOME": str(self.home / ".cache"), "XDG_STATE_HOME": str(self.home / ".local/state"),
            "XDG_CONFIG_DIRS": str(self.base / "system-config"), "XDG_RUNTIME_DIR": str(self.base / "run"),
            "TMPDIR": str(self.base / "tmp"), "LC_ALL": "en_US.UTF-8", "TZ": "UTC", "CANBERRA_DRIVER": "null",
            "GSETTINGS_BACKEND": "memory", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "NO_AT_BRIDGE": "0"}

    def _start(self):
        read, write = os.pipe()
        self.start("display", "Xvfb", "-displayfd", write, "-screen", "0", "%dx%dx24" % SCREEN, "-nolisten", "tcp",
                   "-noreset", "-fbdir", self.base / "screen", pass_fds=(write,))
        os.close(write)
        with os.fdopen(read) as display:
            self.environment["DISPLAY"] = ":" + display.readline().strip()
        self.start("bus", "dbus-daemon", f"--config-file={self.base}/bus.conf", "--nofork", "--nosyslog")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.base}/bus"
        self.bus = until(lambda: self._connection(self.environment["DBUS_SESSION_BUS_ADDRESS"]), "the session bus")
        self.start("manager", "openbox", "--sm-disable")
        self.start("accessibility", "/usr/libexec/at-spi-bus-launcher", "--launch-immediately")
        self.services = self.start("services", sys.executable, Path(__file__).with_name("desktop_services.py"),
                                   self.record, stdin=subprocess.PIPE, text=True)
        self.start("notifications", "dunst")
        for name in ("org.a11y.Bus", "org.freedesktop.portal.Desktop", "org.freedesktop.Notifications"):
            until(lambda name=name: self.has_owner(name), name)
        self.accessibility = self._connection(
            self.call("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")[0])

    @staticmethod
    def _connection(address):
        try:
            return Gio.DBusConnection.new_for_address_sync(
                address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION,
                None, None)
        except GLib.Error:
            return None

    def start(self, log, *command, **options):
        """Starts a program of this desktop, in a group of its own."""
        with (self.logs / log).open("ab") as output:
            process = subprocess.Popen([str(part) for part in command], env=self.environment, cwd=self.base,
                                       start_new_session=True, stdout=output, stderr=output,
                                       stdin=options.pop("stdin", subprocess.DEVNULL), **options)
        self.processes.append(process)
        return process

    def run(self, *command):
        return subprocess.run([str(part) for part in command], env=self.environment, capture_output=True, text=True,
                              check=False, timeout=LIMIT)

    def log(self, name):
        return (self.logs / name).read_text(errors="replace")

    def call(self, service, path, interface, member, arguments=None):
        return self.bus.call_sync(service, path, interface, member, arguments, None, Gio.DBusCallFlags.NONE,
                                  int(LIMIT * 1000), None).unpack()

    def has_owner(self, name):
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
                         GLib.Variant("(s)", (name,)))[0]

    # What the desktop is told and what it has recorded.

    def tell(self, **command):
        """Gives the desktop's services an order and waits until they have it."""
        before = len(self.recorded("order"))
        self.services.stdin.write(json.dumps(command) + "\n")
        self.services.stdin.flush()
        until(lambda: len(self.recorded("order")) > before, "the desktop's services")

    def set(self, space, key, value):
        self.tell(setting=[space, key, value])

    def answer_folder(self, folder):
        """What the person will choose in the folder dialog; none is its "Cancel"."""
        self.tell(folder=str(folder) if folder else None)

    def recorded(self, kind):
        lines = self.record.read_text().split("\n")[:-1]
        return [line for line in map(json.loads, lines) if line["kind"] == kind]

    def pages_opened(self):
        return self.opened.read_text().splitlines() if self.opened.exists() else []

    def screenshot(self, name):
        """Writes the whole screen where QUILLBOOK_SCREENSHOTS says. The display keeps it in a file (xwd's format)."""
        folder = os.environ.get("QUILLBOOK_SCREENSHOTS")
        if not folder:
            return
        data = (self.base / "screen/Xvfb_screen0").read_bytes()
        header, width, height, line, colours = (struct.unpack_from(">I", data, at)[0] for at in (0, 16, 20, 48, 76))
        pixels = data[header + 12 * colours:]
        rows = bytearray()
        for row in range(height):
            part = pixels[row * line:row * line + 4 * width]
            rgb = bytearray(3 * width)
            for channel in range(3):
                rgb[channel::3] = part[2 - channel::4]
            rows += b"\0" + rgb
        Path(folder).mkdir(parents=True, exist_ok=True)
        with (Path(folder) / f"{name}.png").open("wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n")
            for kind, body in ((b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)),
                               (b"IDAT", zlib.compress(bytes(rows), 1)), (b"IEND", b"")):
                file.write(struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body)))

    def close(self):
        """Ends every process, the last started first, and removes every file. A second call does nothing."""
        atexit.unregister(self.close)
        for process in reversed(self.processes):
            self._end(process)
        self.processes.clear()
        # What those had started is ours by now: a number stays theirs until it is waited for.
        while left := _descendants(os.getpid()):
            os.kill(left[0], signal.SIGKILL)
            os.waitpid(left[0], 0)
        shutil.rmtree(self.base, ignore_errors=True)

    @staticmethod
    def _end(process):
        if process.stdin:
            process.stdin.close()
        for number in (signal.SIGTERM, signal.SIGKILL):
            if process.poll() is None:
                process.send_signal(number)
                try:
                    process.wait(5)
                except subprocess.TimeoutExpired:
                    continue
