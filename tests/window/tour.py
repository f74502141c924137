"""A tour of the screens: opens the real window on the sample library, in light and in dark, and keeps a picture of each
screen. tour.py QUILLBOOK QUILLBOOK-SAMPLE FOLDER."""

import sys
from pathlib import Path

from desktop_session import DesktopSession, until
from person import BUTTON, CHECK, ENTRY, FIELD, HEADING, PROGRESS, ROW, SECRET, Person, holding, starting

APPLICATION, SAMPLE, FOLDER = (Path(argument).resolve() for argument in sys.argv[1:4])
PASSWORD = "lake house"
LONG = ("--messages", "90000", "--attachments", "2000", "--one-chat")


class Tour:
    """One way through the application under one colour scheme."""

    def __init__(self, scheme, number):
        self.scheme, self.number = scheme, number
        self.person = None

    def picture(self, name):
        """Keeps what the window shows once it has come to rest."""
        before, shown = None, self.desktop.base / "shown.ppm"

        def rests():
            nonlocal before
            self.keep(shown)
            now = shown.read_bytes()
            same, before = now == before, now
            return same

        until(rests, f"{name} to come to rest")
        self.keep(FOLDER / f"{name}-{self.scheme}.png")

    def keep(self, file):
        made = self.desktop.run("import", "-window", self.person.window_number, file)
        assert made.returncode == 0, made.stderr

    def open_desktop(self, *sample):
        self.desktop = DesktopSession()
        made = self.desktop.run(SAMPLE, "--home", self.desktop.home, *sample)
        assert made.returncode == 0, made.stderr
        self.desktop.set("org.freedesktop.appearance", "color-scheme", self.number)
        # Out of the way: nothing is to look hovered.
        self.desktop.run("xdotool", "mousemove", "5", "995")

    def open(self):
        self.person = Person(self.desktop, APPLICATION)

    def take(self):
        self.open_desktop("--backup", "encrypted", "--password", PASSWORD, "--iterations", "1000", "--caches")
        try:
            self.first_run()
            self.conversations()
            self.setup()
            self.completion()
            self.backup()
        finally:
            self.desktop.close()
        self.open_desktop(*LONG)
        try:
            self.progress()
        finally:
            self.desktop.close()

    def first_run(self):
        library = self.desktop.home / "Library"
        away = self.desktop.home / "away"
        library.rename(away)
        (library / "Messages").mkdir(parents=True)
        self.open()
        person = self.person
        person.find(HEADING, "Back up a conversation. Keep every memory.")
        self.picture("onboarding-1")
        person.press(BUTTON, "Continue")
        person.find(HEADING, "You get an album, not a file")
        self.picture("onboarding-2")
        person.press(BUTTON, "Continue")
        person.find(HEADING, "A few things to know")
        self.picture("onboarding-3")
        person.press(BUTTON, "How to get your messages onto this Mac…")
        person.reads("Back up your iPhone to this Mac")
        self.picture("setup-guide")
        person.press(BUTTON, "Done")
        person.press(BUTTON, "Get Started")
        person.reads("Messages library not found")
        self.picture("access")
        (library / "Messages").rmdir()
        library.rmdir()
        away.rename(library)
        person.press(BUTTON, "Check Again")

    def conversations(self):
        person = self.person
        person.find(ROW, starting("Lake House"))
        self.picture("list")
        person.find(ROW, starting("Lake House")).press()
        person.find(BUTTON, "Back Up This Conversation")
        self.picture("conversation")
        person.tab_to(FIELD, "Name, number, or message")
        person.types("no such words")
        person.find(HEADING, "No Conversations")
        person.press(BUTTON, "Clear Search")
        person.find(ROW, starting("Lake House"))

    def setup(self):
        person = self.person
        person.press(BUTTON, "Back Up This Conversation")
        person.find(BUTTON, "Recover now")
        self.picture("setup")
        person.press(BUTTON, "Recover now")
        person.reads(starting("Searched this Mac’s Messages caches"))
        person.press(CHECK, "CSV")
        self.picture("setup-recovered")

    def completion(self):
        person = self.person
        person.press(BUTTON, "Back Up Now")
        person.find(HEADING, holding("are safe in a portable archive."))
        self.picture("complete")
        person.press(BUTTON, "Back Up Another Conversation")
        person.find(ROW, starting("Lake House")).press()
        person.press(BUTTON, "Back Up This Conversation")
        person.reads("No new messages since then")
        person.tab_to(BUTTON, "Choose…")
        self.picture("setup-again")
        person.press(BUTTON, "Back")

    def backup(self):
        person = self.person
        person.find(ROW, starting("Lake House"))
        until(lambda: next((each for each in person.everything() if each.name == "This Mac"), None),
              "the source menu").press()
        entry = person.find(ENTRY, "Robin’s iPhone")
        self.picture("sources")
        entry.press()
        person.focused_on(SECRET, "")
        self.picture("password")
        person.types("wrong")
        person.keys("Return")
        person.reads("The backup password is incorrect.")
        self.picture("alert")
        person.press(BUTTON, "OK")
        self.person.quits()

    def progress(self):
        self.open()
        person = self.person
        person.press(BUTTON, "Skip")
        person.find(ROW, starting("Group")).press()
        person.press(BUTTON, "Back Up This Conversation")
        person.press(BUTTON, "Back Up Now")
        person.find(PROGRESS, "Export progress")
        person.reads(holding(" of 2,000"))
        self.keep(FOLDER / f"exporting-{self.scheme}.png")
        person.press(BUTTON, "Cancel")
        person.find(HEADING, "Ready to preserve")
        person.quits()


if __name__ == "__main__":
    FOLDER.mkdir(parents=True, exist_ok=True)
    for each, value in (("light", 2), ("dark", 1)):
        Tour(each, value).take()
    print(f"{len(list(FOLDER.glob('*.png')))} pictures in {FOLDER}")
