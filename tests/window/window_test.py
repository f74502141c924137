"""The real window on a desktop of its own, used as a person would."""

import shutil
import sys
import unittest

from desktop_session import until
from person import BUTTON, CHECK, DIALOG, ENTRY, FIELD, HEADING, PROGRESS, ROW, SECRET, holding, starting
from roads import LAKE_HOUSE, PASSWORD, WindowTest, contents, preferences, staging_folders

APP_KEYS = {"export.includeJSON", "export.includeMarkdown", "export.includeCSV", "onboarding.completed"}
GUIDE = "How to Get Your Messages…"


class WholeRoad(WindowTest):
    """From the first start to the last album."""

    @classmethod
    def prepare(cls):
        # The library and the backup come only later.
        cls.away = cls.desktop.home / "away"

    def test_01_a_first_start_shows_the_onboarding(self):
        self.library.rename(self.away)
        (self.library / "Messages").mkdir(parents=True)
        person = self.open()
        person.find(HEADING, "Back up a conversation. Keep every memory.")
        person.reads("Step 1 of 3")
        person.focused_on(BUTTON, "Continue")
        self.shot("01-onboarding-1")

    def test_02_the_pages_follow_each_other(self):
        self.person.press(BUTTON, "Continue")
        self.person.find(HEADING, "You get an album, not a file")
        self.person.reads("Photos, videos and voice notes are copied at their original quality.")
        self.person.reads("Step 2 of 3")
        self.shot("02-onboarding-2")
        self.person.press(BUTTON, "Continue")
        self.person.find(HEADING, "A few things to know")
        self.person.reads("Step 3 of 3")
        self.assertIsNotNone(self.person.look(BUTTON, "Skip"))
        self.shot("03-onboarding-3")

    def test_03_the_last_page_opens_the_setup_guide(self):
        self.person.press(BUTTON, "How to get your messages onto this Mac…")
        self.person.find(DIALOG, "Getting your messages onto this Mac")
        self.shot("04-setup-guide")
        self.guide_opens_and_closes()

    def test_04_without_a_library_the_access_screen_tells(self):
        self.person.press(BUTTON, "Get Started")
        self.person.find(HEADING, "Two permissions, then you’re ready")
        self.person.reads("Messages library not found")
        self.person.reads("Open Messages and allow it to finish syncing, then check again.")
        self.person.reads(holding("~/Library/Messages"))
        self.assertIsNone(self.person.look(BUTTON, "Open Full Disk Access…"))
        self.shot("05-access")

    def test_05_the_access_screen_opens_the_setup_guide(self):
        self.person.press(BUTTON, "Not sure your messages are all on this Mac?")
        self.guide_opens_and_closes()

    def test_06_checking_again_without_a_library_stays(self):
        self.person.press(BUTTON, "Check Again")
        self.person.reads("Messages library not found")

    def test_07_checking_again_with_a_library_shows_the_list(self):
        shutil.rmtree(self.library)
        self.away.rename(self.library)
        type(self).before = contents(self.library)
        self.person.press(BUTTON, "Check Again")
        self.person.find(HEADING, "Conversations")
        self.person.find(ROW, LAKE_HOUSE)
        self.person.find(HEADING, "Choose a Conversation")
        self.shot("06-list")

    def test_08_names_come_out_of_the_address_book(self):
        row = self.person.find(ROW, LAKE_HOUSE)
        self.assertIn("272 messages", row.description)
        self.assertIn("31 attachments", row.description)
        self.assertIn("We'll put ours right beside it.", row.description)
        self.assertFalse([each.name for each in self.person.all(ROW) if each.name.startswith("+447700900141")])

    def test_09_searching_finds(self):
        self.person.focused_on(FIELD, "Name, number, or message")
        self.person.types("lake house")
        until(lambda: [each.name.split(" 🛶")[0] for each in self.person.all(ROW)][:1] == ["Lake House"]
              and len(self.person.all(ROW)) < 5, "the search")
        self.shot("07-search")

    def test_10_searching_finds_nothing(self):
        self.person.types(" qqq")
        self.person.find(HEADING, "No Conversations")
        self.person.reads("Try a different search, or check that Messages has finished syncing.")
        self.assertEqual(self.person.all(ROW), [])
        self.shot("08-search-nothing")

    def test_11_clearing_the_search_shows_all(self):
        self.person.press(BUTTON, "Clear Search")
        until(lambda: len(self.person.all(ROW)) > 5, "the whole list")
        self.assertEqual(self.person.find(FIELD, "Name, number, or message").text, "")

    def test_12_the_toolbar_opens_the_setup_guide(self):
        self.person.press(BUTTON, "How to Get Your Messages")
        self.guide_opens_and_closes()

    def test_13_the_menus_and_their_keys_open_the_setup_guide(self):
        for keys in ("ctrl+i", "ctrl+alt+i"):
            self.person.keys(keys)
            self.guide_opens_and_closes()
        for menu in ("alt+f", "alt+b"):
            self.person.take_from_menu(menu, GUIDE)
            self.guide_opens_and_closes()

    def test_14_a_conversation_is_chosen_with_the_keyboard(self):
        self.person.tab_to("list", "Conversations")
        self.person.keys("Home")
        for _ in range(30):
            row = until(lambda: next((each for each in self.person.all(ROW) if each.has("selected")), None), "a row")
            if LAKE_HOUSE(row.name):
                break
            self.person.keys("Down")
            until(lambda row=row: not row.has("selected") or LAKE_HOUSE(row.name), "the next row")
        self.person.find(HEADING, LAKE_HOUSE)
        self.person.reads("6 people, including you")
        self.person.reads("272 Messages")
        self.person.reads("31 Attachments")
        self.person.reads("The original Messages library will not be changed.")
        self.shot("09-detail")

    def test_15_return_goes_on_to_the_setup(self):
        self.person.keys("Return")
        self.person.find(HEADING, "Ready to preserve")
        self.person.reads("Messages, 272")
        self.person.reads("Attachments, 31")
        self.person.focused_on(BUTTON, "Back Up Now")

    def test_16_the_storage_row_tells_what_is_missing(self):
        type(self).storage = self.person.reads(holding(" of 31 "))
        self.person.find(BUTTON, "Recover now")
        self.shot("10-setup-report")

    def test_17_recovering_changes_the_counts(self):
        self.person.press(BUTTON, "Recover now")
        self.person.no_longer_reads(self.storage)
        changed = self.person.reads(holding(" of 31 "))
        self.assertNotEqual(changed, self.storage)
        self.person.reads(starting("Searched this Mac’s Messages caches: no recoverable copies of the "))
        self.shot("11-setup-recovered")
        self.assert_library_untouched()

    def test_18_the_formats_are_kept_over_a_restart(self):
        on = {title: self.person.find(CHECK, title).has("checked") for title in
              ("Offline website", "JSON", "Markdown", "CSV")}
        self.assertEqual(on, {"Offline website": True, "JSON": True, "Markdown": True, "CSV": False})
        # The locked one stays as it is.
        self.person.press(CHECK, "Offline website")
        self.person.press(CHECK, "CSV")
        self.person.press(CHECK, "Markdown")
        until(lambda: preferences(self.desktop).get("export.includeMarkdown") == "false", "the preferences")
        self.assertTrue(self.person.find(CHECK, "Offline website").has("checked"))
        self.assertEqual(self.person.quits(), 0)
        self.open()
        self.person.find(HEADING, "Conversations")
        self.choose(LAKE_HOUSE)
        self.person.press(BUTTON, "Back Up This Conversation")
        on = {title: self.person.find(CHECK, title).has("checked") for title in ("JSON", "Markdown", "CSV")}
        self.assertEqual(on, {"JSON": True, "Markdown": False, "CSV": True})

    def test_19_the_preferences_hold_four_keys(self):
        self.assertEqual(preferences(self.desktop), {
            "export.includeJSON": "true", "export.includeMarkdown": "false", "export.includeCSV": "true",
            "onboarding.completed": "true"})

    def test_20_no_answer_of_the_folder_dialog_changes_nothing(self):
        self.desktop.answer_folder(None)
        self.person.press(BUTTON, "Choose…")
        asked = until(lambda: self.desktop.recorded("folder dialog"), "the folder dialog")[-1]
        self.assertEqual(asked["title"], "Choose Export Folder")
        self.assertEqual(asked["options"]["accept_label"], "Choose")
        self.assertEqual(asked["options"]["current_folder"].rstrip("\0"), str(self.downloads))
        self.assertTrue(self.desktop.recorded("folder dialog")[-1]["options"]["directory"])
        self.person.reads(str(self.downloads))

    def test_21_a_folder_that_cannot_be_written_to_is_told(self):
        gone = self.desktop.home / "Lost folder"
        gone.mkdir()
        self.desktop.answer_folder(gone)
        self.person.press(BUTTON, "Choose…")
        self.person.reads(str(gone))
        gone.rmdir()
        self.person.press(BUTTON, "Back Up Now")
        self.person.reads("This folder can’t be written to. Choose a different location to save the album.")
        self.person.find(DIALOG, "Quillbook")
        self.person.focused_on(BUTTON, "OK")
        self.shot("12-unwritable")
        self.person.press(BUTTON, "OK")
        self.person.find(HEADING, "Ready to preserve")

    def test_22_another_folder_is_chosen(self):
        type(self).folder = self.desktop.home / "Our albums"
        self.folder.mkdir()
        self.desktop.answer_folder(self.folder)
        self.person.press(BUTTON, "Choose…")
        self.person.reads(str(self.folder))
        self.person.reads("Our albums")

    def test_23_the_export_ends_in_an_album(self):
        self.person.press(BUTTON, "Back Up Now")
        self.person.find(HEADING, starting("272 messages and "), limit=60)
        self.assertEqual(len(self.albums(self.folder)), 1)
        self.assertEqual(staging_folders(self.folder), [])
        album = self.albums(self.folder)[0]
        self.assertTrue(list(album.rglob("*.csv")))
        self.assertFalse(list(album.rglob("*.md")))
        self.person.find(HEADING, holding(" attachments are safe in a portable archive."))
        self.person.focused_on(BUTTON, "Open Archive")
        self.shot("13-complete")

    def test_24_the_completion_tells_what_is_missing(self):
        self.person.reads("Some attachments aren’t on this Mac")
        self.person.reads(holding("attachments are kept in iCloud and weren’t downloaded to this Mac"))
        self.person.reads("If you deleted these messages on another device, they may no longer be downloadable.")

    def test_25_the_album_opens_in_the_browser(self):
        self.person.press(BUTTON, "Open Archive")
        opened = until(self.desktop.pages_opened, "the browser")
        self.assertEqual(opened, [str(self.albums(self.folder)[0] / "index.html")])

    def test_26_the_file_manager_shows_the_album(self):
        self.person.press(BUTTON, "Show in Finder")
        shown = until(lambda: self.desktop.recorded("shown"), "the file manager")
        self.assertEqual([each["addresses"] for each in shown], [[self.albums(self.folder)[0].as_uri()]])

    def test_27_an_active_window_gets_no_notification(self):
        self.assertEqual(self.desktop.recorded("notification"), [])

    def test_28_another_conversation_can_be_backed_up(self):
        self.person.press(BUTTON, "Back Up Another Conversation")
        self.person.find(HEADING, "Choose a Conversation")
        self.assertFalse([each for each in self.person.all(ROW) if each.has("selected")])

    def test_29_the_earlier_album_is_told(self):
        self.choose(LAKE_HOUSE)
        self.person.press(BUTTON, "Back Up This Conversation")
        self.person.find(HEADING, "Previously archived")
        self.person.reads(starting("Last archived, "))
        self.person.reads("No new messages since then")
        self.shot("14-previously-archived")

    def test_30_a_notification_tells_who_looks_elsewhere(self):
        other = self.desktop.start("other", "xev", "-name", "Elsewhere", "-geometry", "300x300+20+20")
        number = until(lambda: self.desktop.run("xdotool", "search", "--onlyvisible", "--name", "Elsewhere")
                       .stdout.split(), "another window")[-1]
        self.desktop.run("xdotool", "windowactivate", "--sync", number)
        until(lambda: not self.person.window.has("active"), "the window to be inactive")
        self.person.press(BUTTON, "Back Up Now")
        self.person.find(HEADING, starting("272 messages and "), limit=60)
        notification = until(lambda: self.desktop.recorded("notification"), "the notification")
        self.assertEqual(len(notification), 1)
        self.assertEqual(notification[0]["title"], "Album ready")
        self.assertRegex(notification[0]["body"], r"^Lake House .*has been saved\.$")
        self.assertEqual(len(self.albums(self.folder)), 2)
        self.shot("15-notification")
        other.terminate()

    def test_31_the_notification_leads_to_the_album(self):
        window = until(lambda: self.desktop.run("xdotool", "search", "--onlyvisible", "--class", "Dunst").stdout.split(),
                       "the notification's window")[-1]
        self.desktop.run("xdotool", "mousemove", "--window", window, "40", "20", "click", "1")
        shown = until(lambda: self.desktop.recorded("shown")[1:], "the file manager")
        self.assertEqual([each["addresses"] for each in shown], [[self.albums(self.folder)[1].as_uri()]])

    def test_32_the_badge_is_gone_after_an_export(self):
        badges = self.desktop.recorded("badge")
        self.assertTrue(badges)
        self.assertTrue(badges[-1]["application"].endswith(".desktop"))
        self.assertFalse(badges[-1]["facts"]["count-visible"])
        self.assertFalse(badges[-1]["facts"]["progress-visible"])

    def test_33_the_conversation_is_looked_for_in_the_backup(self):
        self.person.activate()
        self.person.press(BUTTON, starting("Find this conversation in "))
        self.person.find(DIALOG, "Unlock Backup")
        self.person.reads(holding("The password is used only on this Mac and is not saved."))
        self.person.focused_on(SECRET, "")
        self.assertEqual(self.person.find(SECRET, "").description,
                         "Backup password\nThe password used when this device backup was encrypted")
        # Without a password nothing happens.
        self.person.press(BUTTON, "Unlock")
        self.person.find(BUTTON, "Unlock")
        self.shot("16-password")

    def test_34_a_wrong_password_closes_the_sheet_and_is_told(self):
        self.person.types("lake horse")
        self.person.press(BUTTON, "Unlock")
        self.person.reads("The backup password is incorrect.")
        self.assertIsNone(self.person.look(DIALOG, "Unlock Backup"))
        self.shot("17-wrong-password")
        self.person.press(BUTTON, "OK")
        self.person.no_longer_reads("The backup password is incorrect.")

    def test_35_the_source_menu_marks_the_source_in_use(self):
        self.assertEqual(self.source_entries(), {"This Mac": True, starting_of(self.source_names(), "Robin"): False})

    def test_36_the_right_password_opens_the_backup(self):
        self.open_source_menu()
        self.person.press(ENTRY, starting("Robin"))
        self.person.focused_on(SECRET, "")
        self.person.types(PASSWORD)
        self.person.keys("Return")
        until(lambda: self.person.look(DIALOG, "Unlock Backup") is None, "the sheet to close")
        until(lambda: self.source_entries() ==
              {"This Mac": False, starting_of(self.source_names(), "Robin"): True}, "the backup in use")
        self.shot("18-backup-list")

    def test_37_an_album_out_of_the_backup(self):
        self.person.find(ROW, LAKE_HOUSE)
        self.choose(LAKE_HOUSE)
        self.person.press(BUTTON, "Back Up This Conversation")
        self.person.find(HEADING, "Ready to preserve")
        self.assertIsNone(self.person.look(BUTTON, "Check this Mac for recoverable copies…"))
        self.person.press(BUTTON, "Back Up Now")
        self.person.find(HEADING, starting("272 messages and "), limit=60)
        self.assertEqual(len(self.albums(self.folder)), 3)
        self.assertIsNone(self.person.look(BUTTON, starting("Find this conversation in ")))
        self.shot("19-complete-backup")

    def test_38_the_onboarding_is_shown_again(self):
        self.person.take_from_menu("alt+h", "How Quillbook Works")
        self.person.find(HEADING, "Back up a conversation. Keep every memory.")
        self.person.find(BUTTON, "Done")
        self.assertIsNone(self.person.look(BUTTON, "Skip"))
        self.person.press(BUTTON, "Continue")
        self.person.press(BUTTON, "Continue")
        self.person.find(HEADING, "A few things to know")
        self.assertIsNone(self.person.look(BUTTON, "Get Started"))
        self.assertEqual(len([each for each in self.person.all(BUTTON) if each.name == "Done"]), 2)
        self.shot("20-replayed")
        self.person.press(BUTTON, "Done")
        self.person.find(HEADING, "Conversations")

    def test_39_the_colours_follow_the_desktop(self):
        self.desktop.set("org.freedesktop.appearance", "color-scheme", 1)
        self.choose(LAKE_HOUSE)
        self.shot("21-dark")
        self.desktop.set("org.gnome.desktop.interface", "text-scaling-factor", 2.0)
        until(lambda: self.person.look(HEADING, "Conversations").box[3] > 40, "larger words")
        self.shot("22-dark-large")

    def test_40_closing_the_window_ends_the_application(self):
        self.person.keys("alt+F4")
        self.assertEqual(self.person.waits_for_end(), 0)
        self.assertEqual(list((self.desktop.base / "tmp").iterdir()), [])

    def test_41_the_library_is_as_it_was(self):
        self.assert_library_untouched()

    def test_42_the_preferences_hold_four_keys_at_the_end(self):
        self.assertEqual(set(preferences(self.desktop)), APP_KEYS)

    def open_source_menu(self):
        if not self.person.all(ENTRY):
            button = until(lambda: next((each for each in self.person.everything()
                                         if each.role in (BUTTON, "push button menu", "button menu")
                                         and each.name in self.source_titles), None), "the source menu")
            button.press()
        until(lambda: len(self.person.all(ENTRY)) == 2, "the sources")

    source_titles = ("This Mac", "Robin’s iPhone")

    def source_names(self):
        return list(self.source_titles)

    def source_entries(self):
        """The sources with their check marks; the menu is closed again."""
        self.open_source_menu()
        found = {each.name: each.has("checked") for each in self.person.all(ENTRY)}
        self.shot("source-menu")
        self.person.keys("Escape")
        until(lambda: not self.person.all(ENTRY), "the menu to close")
        return found


def starting_of(names, start):
    return next(name for name in names if name.startswith(start))


class Skipping(WindowTest):
    """The first page's "Skip" leads to the list at once."""

    def test_skip_ends_the_onboarding(self):
        self.open()
        self.skip_onboarding()
        self.person.find(ROW, LAKE_HOUSE)
        self.assertEqual(preferences(self.desktop)["onboarding.completed"], "true")
        self.assertEqual(self.person.quits(), 0)


class LongExport(WindowTest):
    """An export that takes its time can be left."""

    sample = ("--messages", "90000", "--attachments", "2000", "--one-chat")

    def test_1_an_export_is_cancelled_by_the_button(self):
        self.open()
        self.skip_onboarding()
        self.choose(starting("Group"))
        self.person.press(BUTTON, "Back Up This Conversation")
        self.start()
        self.shot("30-exporting")
        self.person.press(BUTTON, "Cancel")
        self.person.find(HEADING, "Ready to preserve")
        self.assertFalse(self.person.look(DIALOG, "Quillbook"))
        self.assert_nothing_made()

    def test_2_an_export_is_cancelled_by_its_key(self):
        self.start()
        self.person.keys("ctrl+period")
        self.person.find(HEADING, "Ready to preserve")
        self.assert_nothing_made()

    def test_3_the_badge_goes_with_the_export(self):
        until(lambda: self.desktop.recorded("badge")[-1]["facts"]["count-visible"] is False, "no badge")

    def test_4_quitting_in_an_export_ends_the_process(self):
        self.start()
        self.person.keys("alt+F4")
        self.assertEqual(self.person.waits_for_end(), 0)
        self.assertEqual(self.albums(), [])
        self.assertEqual(staging_folders(self.downloads), [])
        self.assert_library_untouched()

    def test_5_the_next_export_sweeps_and_ends(self):
        self.open()
        self.person.find(HEADING, "Conversations")
        self.choose(starting("Group"))
        self.person.press(BUTTON, "Back Up This Conversation")
        self.start()
        self.person.find(HEADING, holding(" and 2,000 attachments are safe in a portable archive."), limit=90)
        self.assertEqual(len(self.albums()), 1)
        self.assertEqual(staging_folders(self.downloads), [])
        self.shot("31-complete-pictures")

    def test_6_the_launcher_has_shown_the_percentage(self):
        shown = [each["facts"] for each in self.desktop.recorded("badge") if each["facts"]["count-visible"]]
        self.assertTrue(shown)
        for facts in shown:
            self.assertTrue(1 <= facts["count"] <= 100)
            self.assertAlmostEqual(facts["progress"], facts["count"] / 100)

    def test_8_the_library_is_as_it_was(self):
        self.assertEqual(self.person.quits(), 0)
        self.assert_library_untouched()

    def test_7_quitting_at_once_ends_the_process_and_leaves_nothing(self):
        # Again and again: the end of the export and that of the process meet each time at another moment.
        self.person.press(BUTTON, "Back Up Another Conversation")
        for key in ("ctrl+q", "alt+F4") * 3:
            self.choose(starting("Group"))
            self.person.press(BUTTON, "Back Up This Conversation")
            self.person.find(HEADING, "Ready to preserve")
            self.person.keys("Return")
            self.person.keys(key)
            self.assertEqual(self.person.waits_for_end(), 0)
            self.assertEqual(staging_folders(self.downloads), [])
            self.open()
            self.person.find(HEADING, "Conversations")
        self.assertEqual(len(self.albums()), 1)
        self.assertEqual(self.person.quits(), 0)

    def start(self):
        self.person.press(BUTTON, "Back Up Now")
        self.person.find(HEADING, starting("Making the album for Group"))
        self.person.find(PROGRESS, "Export progress")
        until(lambda: staging_folders(self.downloads), "the staging folder")

    def assert_nothing_made(self):
        self.assertEqual(self.albums(), [])
        until(lambda: not staging_folders(self.downloads), "the staging folder to go")


class BackupAlone(WindowTest):
    """Somebody without a Messages library, but with a device backup."""

    sample = ("--backup", "plain")

    @classmethod
    def prepare(cls):
        shutil.rmtree(cls.library / "Messages")

    def test_1_the_list_offers_the_backup_without_an_alert(self):
        self.open()
        self.skip_onboarding()
        self.person.find(HEADING, "No Conversations")
        self.person.find(BUTTON, starting("Robin"))
        self.assertIsNone(self.person.look(DIALOG, "Quillbook"))
        self.shot("40-backup-alone")

    def test_2_its_conversations_are_a_press_away(self):
        self.person.press(BUTTON, starting("Robin"))
        self.person.find(ROW, LAKE_HOUSE)
        self.assertIsNone(self.person.look(DIALOG, "Quillbook"))

    def test_3_and_so_is_the_album(self):
        self.choose(LAKE_HOUSE)
        self.person.press(BUTTON, "Back Up This Conversation")
        self.person.press(BUTTON, "Back Up Now")
        self.person.find(HEADING, starting("272 messages and "), limit=60)
        self.assertEqual(len(self.albums()), 1)
        self.assertEqual(self.person.quits(), 0)
        self.assert_library_untouched()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
