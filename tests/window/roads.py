"""What the window's tests share: the sample homes, what a folder holds, and tests that follow each other."""

import hashlib
import os
import sys
import unittest
from pathlib import Path

from desktop_session import DesktopSession
from person import BUTTON, DIALOG, HEADING, ROW, Person, starting

APPLICATION, SAMPLE = (Path(argument).resolve() for argument in sys.argv[1:3])
PASSWORD = "lake house"
LAKE_HOUSE = starting("Lake House")


def contents(folder):
    """Everything that can change about a folder: names, kinds, bytes and times."""
    found = {}
    for path in [folder, *sorted(folder.rglob("*"))]:
        status = path.lstat()
        data = hashlib.sha256(path.read_bytes()).hexdigest() if path.is_file() and not path.is_symlink() else None
        found[str(path.relative_to(folder))] = (status.st_mode, status.st_size, status.st_mtime_ns, status.st_ctime_ns,
                                                data)
    return found


def staging_folders(folder):
    """What an export that has not ended leaves in its destination: hidden names."""
    return [name for name in os.listdir(folder) if name.startswith(".")]


def preferences(desktop):
    """The preferences as the file has them, by their keys."""
    file = desktop.home / ".config/Quillbook/Quillbook.conf"
    found, group = {}, ""
    for line in file.read_text().splitlines() if file.exists() else []:
        if line.startswith("["):
            group = line.strip("[]") + "."
            group = "" if group == "General." else group
        elif "=" in line:
            key, value = line.split("=", 1)
            found[group + key] = value
    return found


class WindowTest(unittest.TestCase):
    """A desktop for all tests of a class, which follow each other: after a failure the rest has no ground."""

    sample = ("--backup", "encrypted", "--password", PASSWORD, "--iterations", "1000", "--caches")
    broken = False

    @classmethod
    def setUpClass(cls):
        cls.desktop = DesktopSession()
        cls.addClassCleanup(cls.desktop.close)
        made = cls.desktop.run(SAMPLE, "--home", cls.desktop.home, *cls.sample)
        assert made.returncode == 0, made.stderr
        cls.library = cls.desktop.home / "Library"
        cls.downloads = cls.desktop.home / "Downloads"
        cls.prepare()
        cls.before = contents(cls.library)

    @classmethod
    def prepare(cls):
        """What a class changes about its home before its first test."""

    def setUp(self):
        if type(self).broken:
            self.skipTest("an earlier step failed")

    def run(self, result=None):
        result = result if result is not None else self.defaultTestResult()
        before = len(result.failures) + len(result.errors)
        super().run(result)
        if len(result.failures) + len(result.errors) > before:
            type(self).broken = True
            self.desktop.screenshot(f"failed-{self.id()}")
            sys.stderr.write(self.desktop.log("application") if (self.desktop.logs / "application").exists() else "")
        return result

    @classmethod
    def open(cls, watcher=()):
        cls.person = Person(cls.desktop, APPLICATION, watcher)
        return cls.person

    def shot(self, name):
        self.desktop.screenshot(name)

    def albums(self, folder=None):
        """The albums in a folder, the oldest first."""
        found = [path.parent for path in (folder or self.downloads).glob("[!.]*/index.html")]
        return sorted(found, key=lambda album: album.stat().st_ctime_ns)

    def guide_opens_and_closes(self):
        """The setup guide is on show; "Done" ends it."""
        self.person.find(DIALOG, "Getting your messages onto this Mac")
        self.person.reads("Back up your iPhone to this Mac")
        self.person.press(BUTTON, "Done")
        self.person.no_longer_reads("Back up your iPhone to this Mac")

    def skip_onboarding(self):
        self.person.press(BUTTON, "Skip")
        self.person.find(HEADING, "Conversations")

    def choose(self, name):
        """Takes a conversation of the list."""
        self.person.find(ROW, name).press()
        self.person.find(BUTTON, "Back Up This Conversation")

    def assert_library_untouched(self):
        self.assertEqual(contents(self.library), self.before)
