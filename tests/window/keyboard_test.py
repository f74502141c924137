"""The whole road by keyboard alone, and what assistive programs are told on the way."""

import sys
import unittest

from desktop_session import Gone, until
from person import BUTTON, CHECK, DIALOG, ENTRY, FIELD, HEADING, LABEL, LIST, PROGRESS, ROW, SECRET, holding, starting
from roads import LAKE_HOUSE, PASSWORD, WindowTest, preferences

# What a person acts on needs a name; a group that holds it may go without.
CONTROLS = {BUTTON, CHECK, FIELD, ENTRY, ROW, LIST, PROGRESS, DIALOG, HEADING, LABEL, SECRET, "menu bar", "panel", "frame",
            "graphic", "image", "popup menu", "split pane", "alert message"}
NAMED = {BUTTON, CHECK, FIELD, ENTRY, ROW, LIST, PROGRESS, DIALOG, HEADING, LABEL}


class KeyboardAlone(WindowTest):
    """No mouse, no assistive action: keys only."""

    def walk_round(self, first_words):
        """Tab goes through every control of the screen and comes back; each time one control has the focus, in sight."""
        person = self.person
        person.reads(first_words)
        start = person.settled_focus()
        round_trip = [start]
        for _ in range(60):
            person.keys("Tab")
            until(lambda: person.focus and person.focus != [round_trip[-1]], lambda: f"Tab to leave {round_trip[-1]!r}")
            focus = person.settled_focus()
            if focus == start:
                break
            self.assertNotIn(focus, round_trip, f"Tab goes in a circle that leaves out {start!r}")
            round_trip.append(focus)
        else:
            self.fail(f"Tab does not come back: {round_trip}")
        person.keys("shift+Tab")
        until(lambda: person.focus == [round_trip[-1]], "Shift+Tab to go back")
        person.keys("Tab")
        until(lambda: person.focus == [start], "Tab to come back")
        self.look_over()
        return [each.name for each in round_trip]

    def look_over(self):
        """Everything on the screen has a role that fits and, where it is a control, a name."""
        for control in self.person.everything():
            try:
                role, name = control.role, control.name
            except Gone:
                continue
            self.assertIn(role, CONTROLS, f"“{name}” is a {role}")
            if role in NAMED:
                self.assertTrue(name, f"a {role} without a name at {control.box}")
            if role == SECRET:
                self.assertTrue(control.description, "a field without a word")

    def test_01_onboarding(self):
        person = self.open()
        person.focused_on(BUTTON, "Continue")
        self.assertEqual(set(self.walk_round("Step 1 of 3")), {"Continue", "Skip"})
        person.keys("Return")
        person.focused_on(BUTTON, "Continue")
        self.assertEqual(set(self.walk_round("Step 2 of 3")), {"Continue", "Skip"})
        person.keys("space")
        person.focused_on(BUTTON, "Get Started")
        self.assertEqual(set(self.walk_round("Step 3 of 3")),
                         {"Get Started", "Skip", "How to get your messages onto this Mac…"})

    def test_02_setup_guide(self):
        person = self.person
        person.tab_to(BUTTON, "How to get your messages onto this Mac…")
        person.keys("Return")
        person.focused_on(BUTTON, "Done")
        self.look_over()
        person.keys("Escape")
        person.no_longer_reads("Back up your iPhone to this Mac")
        person.focused_on(BUTTON, "How to get your messages onto this Mac…")

    def test_03_the_setup_guide_can_be_read_to_its_end(self):
        person = self.person
        person.keys("Return")
        person.focused_on(BUTTON, "Done")
        last = person.find(HEADING, "Getting your messages onto this Mac")
        before = last.box[1]
        person.keys("Page_Down")
        until(lambda: last.box[1] < before, "the guide to scroll")
        person.keys("Return")
        person.no_longer_reads("Back up your iPhone to this Mac")

    def test_04_list(self):
        person = self.person
        person.tab_to(BUTTON, "Get Started")
        person.keys("Return")
        person.focused_on(FIELD, "Name, number, or message")
        names = self.walk_round("Conversations")
        for name in ("Name, number, or message", "Conversations", "This Mac", "How to Get Your Messages",
                     "Hide Conversations"):
            self.assertIn(name, names)

    def test_05_search(self):
        person = self.person
        person.tab_to(FIELD, "Name, number, or message")
        person.types("nobody at all")
        person.find(HEADING, "No Conversations")
        self.look_over()
        person.keys("Escape")
        until(lambda: len(person.all(ROW)) > 5, "the whole list")
        person.keys("Down")
        until(lambda: person.focus and person.focus[0].role in (LIST, ROW), "the focus in the list")

    def test_06_the_list_is_left_and_shown(self):
        person = self.person
        person.tab_to(BUTTON, "Hide Conversations")
        person.keys("space")
        person.find(BUTTON, "Show Conversations")
        person.focused_on(BUTTON, "Show Conversations")
        self.look_over()
        person.keys("space")
        person.find(BUTTON, "Hide Conversations")

    def test_07_choosing(self):
        person = self.person
        way = [name for _, name in person.tab_to(LIST, "Conversations")]
        self.assertTrue(way)
        person.keys("Home")
        row = until(lambda: next((each for each in person.all(ROW) if each.has("selected")), None), "a chosen row")
        person.focused_on(ROW, row.name)
        for _ in range(20):
            if LAKE_HOUSE(person.settled_focus().name):
                break
            before = person.settled_focus()
            person.keys("Down")
            until(lambda: person.focus and person.focus != [before], "the next row")
        person.focused_on(ROW, LAKE_HOUSE)
        names = self.walk_round(LAKE_HOUSE)
        self.assertIn("Back Up This Conversation", names)

    def test_08_setup(self):
        person = self.person
        person.keys("ctrl+e")
        person.focused_on(BUTTON, "Back Up Now")
        person.find(BUTTON, "Recover now")
        names = self.walk_round("Ready to preserve")
        for name in ("JSON", "Markdown", "CSV", "Choose…", "Back", "Back Up Now", "Recover now"):
            self.assertIn(name, names)
        self.assertNotIn("Offline website", names)

    def test_09_a_format_is_switched_by_space_and_by_return(self):
        person = self.person
        person.tab_to(CHECK, "CSV")
        person.keys("space")
        until(lambda: person.look(CHECK, "CSV").has("checked"), "CSV to be on")
        self.assertEqual(preferences(self.desktop)["export.includeCSV"], "true")
        person.keys("Return")
        until(lambda: not person.look(CHECK, "CSV").has("checked"), "CSV to be off")
        until(lambda: preferences(self.desktop)["export.includeCSV"] == "false", "the preferences")

    def test_10_recovering(self):
        person = self.person
        person.tab_to(BUTTON, "Recover now")
        person.keys("Return")
        person.reads(starting("Searched this Mac’s Messages caches: "))
        # The pressed button is gone; the keyboard is with what followed it.
        person.focused_on(CHECK, "JSON")
        self.assertIn("Back Up Now", self.walk_round("Ready to preserve"))

    def test_11_a_folder_is_chosen(self):
        person = self.person
        folder = self.desktop.home / "Albums"
        folder.mkdir()
        self.desktop.answer_folder(folder)
        person.tab_to(BUTTON, "Choose…")
        person.keys("Return")
        person.reads(str(folder))
        person.focused_on(BUTTON, "Choose…")

    def test_12_exporting(self):
        person = self.person
        person.tab_to(BUTTON, "Back Up Now")
        person.keys("Return")
        person.find(HEADING, starting("272 messages and "), limit=60)
        person.focused_on(BUTTON, "Open Archive")
        names = self.walk_round(holding("safe in a portable archive"))
        for name in ("Open Archive", "Show in Finder", "Back Up Another Conversation"):
            self.assertIn(name, names)

    def test_13_the_backup_and_its_password(self):
        person = self.person
        person.tab_to(BUTTON, starting("Find this conversation in "))
        person.keys("Return")
        person.focused_on(SECRET, "")
        self.look_over()
        person.types("wrong")
        person.keys("Return")
        person.reads("The backup password is incorrect.")
        person.focused_on(BUTTON, "OK")
        self.look_over()
        person.keys("Return")
        person.no_longer_reads("The backup password is incorrect.")
        person.find(HEADING, "Conversations")

    def test_14_another_source(self):
        person = self.person
        self.to_source("This Mac")
        person.keys("Return")
        person.find(ENTRY, starting("Robin"))
        self.look_over()
        for _ in range(3):
            if any(each.role == ENTRY and each.name.startswith("Robin") for each in person.focus):
                break
            person.keys("Down")
            until(lambda: any(each.role == ENTRY for each in person.focus), "an entry")
        person.focused_on(ENTRY, starting("Robin"))
        person.keys("Return")
        person.focused_on(SECRET, "")
        person.types(PASSWORD)
        person.tab_to(BUTTON, "Unlock")
        person.keys("space")
        until(lambda: person.look(DIALOG, "Unlock Backup") is None, "the sheet to close")
        person.find(ROW, LAKE_HOUSE)
        self.assertTrue(person.settled_focus().name)

    def test_15_the_onboarding_again(self):
        person = self.person
        person.take_from_menu("alt+h", "How Quillbook Works")
        person.focused_on(BUTTON, "Continue")
        self.assertEqual(set(self.walk_round("Step 1 of 3")), {"Continue", "Done"})
        person.tab_to(BUTTON, "Done")
        person.keys("Return")
        person.find(HEADING, "Conversations")

    def test_16_about(self):
        person = self.person
        person.take_from_menu("alt+h", "About Quillbook")
        person.focused_on(BUTTON, "OK")
        self.look_over()
        person.keys("Return")
        until(lambda: person.look(DIALOG, "About Quillbook") is None, "the sheet to close")

    def test_17_quitting(self):
        self.assertEqual(self.person.quits(), 0)
        self.assert_library_untouched()

    def to_source(self, name):
        for _ in range(12):
            if self.person.settled_focus().name == name:
                return
            before = self.person.focus
            self.person.keys("Tab")
            until(lambda before=before: self.person.focus != before, "Tab")
        self.fail(f"no way to {name}")


class AccessByKeyboard(WindowTest):
    """The access screen, before there is a library."""

    @classmethod
    def prepare(cls):
        cls.library.rename(cls.desktop.home / "away")
        (cls.library / "Messages").mkdir(parents=True)

    def test_the_access_screen(self):
        person = self.open()
        person.focused_on(BUTTON, "Continue")
        person.tab_to(BUTTON, "Skip")
        person.keys("Return")
        person.focused_on(BUTTON, "Check Again")
        KeyboardAlone.walk_round(self, "Messages library not found")
        self.library.joinpath("Messages").rmdir()
        self.library.rmdir()
        (self.desktop.home / "away").rename(self.library)
        person.tab_to(BUTTON, "Check Again")
        person.keys("Return")
        person.focused_on(FIELD, "Name, number, or message")
        self.assertEqual(person.quits(), 0)

    look_over = KeyboardAlone.look_over


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
