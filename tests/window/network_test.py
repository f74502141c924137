"""The whole road under strace: no network, and no socket but those to the desktop itself."""

import re
import sys
import unittest

from desktop_session import until
from person import BUTTON, CHECK, DIALOG, FIELD, HEADING, ROW, SECRET, starting
from roads import LAKE_HOUSE, PASSWORD, WindowTest

TRACE = ("strace", "-f", "--seccomp-bpf", "-s", "200", "-e", "trace=%network", "-e", "signal=none")
# A socket's family is the first argument of the calls that make one, and what every address begins with.
FAMILY = re.compile(r"\b(AF_[A-Z0-9]+|PF_[A-Z0-9]+)\b")
CONNECTED = re.compile(r'connect\(\d+, \{sa_family=AF_UNIX, sun_path=(@?)"([^"]*)"')


class Network(WindowTest):
    """One road through everything that the window can do, with each of its network calls on record."""

    def test_1_the_whole_road(self):
        type(self).trace = self.desktop.base / "network"
        person = self.open((*TRACE, "-o", self.trace))
        person.press(BUTTON, "Continue")
        person.press(BUTTON, "Continue")
        person.press(BUTTON, "How to get your messages onto this Mac…")
        self.guide_opens_and_closes()
        person.press(BUTTON, "Get Started")
        person.find(ROW, LAKE_HOUSE)
        person.types("Lake House")
        until(lambda: len(person.all(ROW)) < 5, "the search")
        self.choose(LAKE_HOUSE)
        person.press(BUTTON, "Back Up This Conversation")
        person.press(BUTTON, "Recover now")
        person.reads(starting("Searched this Mac’s Messages caches: "))
        person.press(CHECK, "CSV")
        person.press(BUTTON, "Choose…")
        until(lambda: self.desktop.recorded("folder dialog"), "the folder dialog")
        self.album_is_made()
        person.press(BUTTON, "Show in Finder")
        person.press(BUTTON, "Open Archive")
        until(self.desktop.pages_opened, "the browser")
        person.press(BUTTON, starting("Find this conversation in "))
        person.focused_on(SECRET, "")
        person.types(PASSWORD)
        person.keys("Return")
        until(lambda: person.look(DIALOG, "Unlock Backup") is None, "the sheet to close")
        self.choose(LAKE_HOUSE)
        person.press(BUTTON, "Back Up This Conversation")
        self.album_is_made()
        person.press(BUTTON, "Back Up Another Conversation")
        person.find(FIELD, "Name, number, or message")
        self.assertEqual(person.quits(), 0)
        self.assertEqual(len(self.albums()), 2)

    def test_2_the_record_holds_the_whole_road(self):
        calls = self.calls()
        self.assertGreater(len(calls), 50)
        self.assertTrue(any("+++ exited with 0 +++" in line for line in self.trace.read_text().splitlines()))

    def test_3_every_socket_is_a_local_one(self):
        families = {family for line in self.calls() for family in FAMILY.findall(line)}
        self.assertEqual(families, {"AF_UNIX"}, [line for line in self.calls() if "AF_UNIX" not in line and
                                                 FAMILY.search(line)][:5])

    def test_4_they_lead_to_the_desktop_alone(self):
        display = self.desktop.environment["DISPLAY"].lstrip(":")
        allowed = {f"/tmp/.X11-unix/X{display}", str(self.desktop.base / "bus")}
        below = str(self.desktop.base / "run/at-spi") + "/"
        reached = {path for line in self.calls() for _, path in CONNECTED.findall(line)}
        self.assertTrue(allowed <= reached, reached)
        self.assertEqual({path for path in reached - allowed if not path.startswith(below)}, set())

    def test_5_nothing_listens(self):
        self.assertEqual([line for line in self.calls() if re.search(r"\b(listen|accept4?)\(", line)], [])

    def test_6_the_library_is_as_it_was(self):
        self.assert_library_untouched()

    def album_is_made(self):
        self.person.press(BUTTON, "Back Up Now")
        self.person.find(HEADING, starting("272 messages and "), limit=60)

    def calls(self):
        return [line for line in self.trace.read_text(errors="replace").splitlines() if "(" in line]


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
