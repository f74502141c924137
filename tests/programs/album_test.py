"""quillbook-sample and quillbook-album from the outside: what they print, what they leave on the disk, how they end."""

import csv
import hashlib
import html.parser
import json
import os
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.parse
from pathlib import Path

SAMPLE, ALBUM, CHROMIUM = sys.argv[1:4]


def run(*arguments, **options):
    return subprocess.run([str(argument) for argument in arguments], capture_output=True, text=True, check=False, **options)


class PageText(html.parser.HTMLParser):
    """All that a page shows as text, and its sources."""

    def __init__(self):
        super().__init__()
        self.text = []
        self.sources = []
        self.skipped = 0

    def handle_starttag(self, tag, attributes):
        if tag in ("script", "style"):
            self.skipped += 1
        self.sources += [value for name, value in attributes if name in ("src", "href") and value]

    def handle_endtag(self, tag):
        if tag in ("script", "style"):
            self.skipped -= 1

    def handle_data(self, data):
        if not self.skipped:
            self.text.append(data)


class Programs(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="quillbook-programs-")
        cls.home = Path(cls.folder.name) / "home"
        made = run(SAMPLE, "--home", cls.home)
        assert made.returncode == 0, made.stderr
        cls.rows = cls.lines("list")
        cls.richest = max(cls.rows, key=lambda row: row["attachmentCount"])
        cls.albums = Path(cls.folder.name) / "albums"
        cls.albums.mkdir()
        cls.exported = cls.album("export", "--conversation", cls.richest["id"], "--destination", cls.albums,
                                 "--json", "--markdown", "--csv", "--progress")
        assert cls.exported.returncode == 0, cls.exported.stderr
        cls.reports = [json.loads(line) for line in cls.exported.stdout.splitlines()]
        cls.result = cls.reports.pop()
        cls.path = Path(cls.result["archiveURL"])

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    @classmethod
    def album(cls, *arguments, **options):
        return run(ALBUM, "--home", cls.home, "--contacts", cls.home / "contacts.vcf", *arguments, **options)

    @classmethod
    def lines(cls, *arguments):
        done = cls.album(*arguments)
        assert done.returncode == 0, done.stderr
        return [json.loads(line) for line in done.stdout.splitlines()]

    def transcript(self):
        return json.loads((self.path / "transcript.json").read_text())

    def test_sources_lists_this_mac_alone(self):
        self.assertEqual(self.lines("sources"), [{"id": "local-mac", "kind": "localMac", "requiresPassword": False,
                                                  "subtitle": "Local Messages library", "title": "This Mac"}])

    def test_list_agrees_with_the_database(self):
        database = sqlite3.connect(self.home / "Library/Messages/chat.db")
        chats = {str(row[0]) for row in database.execute("SELECT ROWID FROM chat")}
        database.close()
        self.assertEqual({row["id"] for row in self.rows}, chats)
        dates = [row.get("lastMessageDate", "") for row in self.rows]
        self.assertEqual(dates, sorted(dates, reverse=True))

    def test_search_finds_a_title_and_nothing_else_for_nonsense(self):
        title = self.richest["title"]
        self.assertIn(title, [row["title"] for row in self.lines("list", "--search", title.upper())])
        self.assertEqual(self.lines("list", "--search", "no such words anywhere"), [])

    def test_show_prints_what_the_transcript_holds_before_the_export(self):
        shown = json.loads(self.album("show", "--conversation", self.richest["id"]).stdout)
        written = self.transcript()
        self.assertEqual([message["guid"] for message in shown["messages"]],
                         [message["guid"] for message in written["messages"]])
        self.assertEqual([message.get("text") for message in shown["messages"]],
                         [message.get("text") for message in written["messages"]])

    def test_show_says_when_its_output_is_lost(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            shown = subprocess.run([ALBUM, "--home", self.home, "show", "--conversation", self.richest["id"]],
                                   stdout=full, stderr=subprocess.PIPE, check=False)
        self.assertEqual((shown.returncode, shown.stderr), (1, b"The output could not be written.\n"))

    def test_result_has_every_field(self):
        self.assertEqual(set(self.result), {"archiveURL", "attachmentCount", "attachmentRecordCount", "messageCount",
                                            "photoPreviewURLs", "reusedAttachmentCount", "warnings"})
        self.assertEqual(self.result["messageCount"], len(self.transcript()["messages"]))
        for preview in self.result["photoPreviewURLs"]:
            self.assertTrue(Path(preview).is_file())

    def test_progress_never_falls_and_ends_at_one(self):
        fractions = [report["fraction"] for report in self.reports]
        self.assertEqual(fractions, sorted(fractions))
        self.assertEqual(fractions[-1], 1)
        self.assertEqual(set(self.reports[0]), {"stage", "completed", "total", "detail", "fraction"})

    def test_manifest_agrees_with_sha256sum(self):
        manifest = json.loads((self.path / "manifest.json").read_text())
        sums = "".join(f'{file["sha256"]}  {file["path"]}\n' for file in manifest["files"])
        checked = run("sha256sum", "--check", "--strict", "--quiet", input=sums, cwd=self.path)
        self.assertEqual((checked.returncode, checked.stdout), (0, ""))
        present = {str(file.relative_to(self.path)) for file in self.path.rglob("*") if file.is_file()}
        self.assertEqual({file["path"] for file in manifest["files"]}, present - {"manifest.json"})

    def test_every_attachment_is_in_the_album_or_named_in_a_warning(self):
        conversation = self.transcript()
        warned = {warning.get("sourceID") for warning in conversation["warnings"] if "attachment" in warning["code"]}
        attachments = [attachment for message in conversation["messages"] for attachment in message["attachments"]]
        self.assertGreater(len(attachments), 10)
        for attachment in attachments:
            if attachment["availability"] == "available":
                digest = hashlib.sha256((self.path / attachment["archivePath"]).read_bytes()).hexdigest()
                self.assertEqual(digest, attachment["sha256"])
            else:
                self.assertIn(attachment["id"], warned)

    def test_csv_holds_every_message(self):
        with open(self.path / "transcript.csv", encoding="utf-8-sig", newline="") as file:
            rows = list(csv.DictReader(file))
        messages = self.transcript()["messages"]
        self.assertEqual([row["guid"] for row in rows], [message["guid"] for message in messages])
        guards = "=+-@\t\r"
        for row, message in zip(rows, messages):
            text = message.get("text", "")
            self.assertEqual(row["text"], "'" + text if text[:1] and text[0] in guards else text)

    def test_markdown_has_a_heading_for_every_message(self):
        lines = (self.path / "transcript.md").read_text().splitlines()
        self.assertTrue(lines[0].startswith("# "))
        headings = [line for line in lines if line.startswith("**") and " — " in line]
        self.assertGreaterEqual(len(headings), len(self.transcript()["messages"]))

    def test_transcript_is_what_other_readers_read(self):
        tool = run(sys.executable, "-m", "json.tool", self.path / "transcript.json")
        self.assertEqual(tool.returncode, 0, tool.stderr)

    def test_page_shows_every_message_in_a_browser(self):
        with tempfile.TemporaryDirectory() as profile:
            page = run(CHROMIUM, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                       "--disable-background-networking", f"--user-data-dir={profile}", "--virtual-time-budget=20000",
                       "--dump-dom", (self.path / "index.html").as_uri(), timeout=240)
        parser = PageText()
        parser.feed(page.stdout)
        shown = "".join(parser.text)
        squeezed = "".join(shown.split())
        sources = {urllib.parse.unquote(source) for source in parser.sources}
        for message in self.transcript()["messages"]:
            text = message.get("text", "").replace("\ufffc", "")
            self.assertIn("".join(text.split()), squeezed, message["guid"])
            for attachment in message["attachments"]:
                if attachment["availability"] == "available":
                    self.assertIn(attachment["archivePath"], sources)
                else:
                    self.assertIn("".join(attachment["displayName"].split()), squeezed)

    def test_second_album_reuses_or_copies_and_verifies_again(self):
        again = self.album("export", "--conversation", self.richest["id"], "--destination", self.albums)
        self.assertEqual(again.returncode, 0, again.stderr)
        second = Path(json.loads(again.stdout.splitlines()[-1])["archiveURL"])
        self.assertNotEqual(second, self.path)
        self.assertFalse((second / "transcript.json").exists())
        self.assertFalse((second / "transcript.csv").exists())

    def test_unknown_conversation_ends_with_words_and_status_1(self):
        failed = self.album("export", "--conversation", "999999", "--destination", self.albums)
        self.assertEqual((failed.returncode, failed.stderr), (1, "The selected conversation no longer exists.\n"))

    def test_unwritable_destination_ends_with_words_and_status_1(self):
        failed = self.album("export", "--conversation", self.richest["id"], "--destination", self.home / "absent")
        self.assertEqual((failed.returncode, failed.stderr),
                         (1, "This folder can’t be written to. Choose a different location to save the album.\n"))

    def test_missing_library_ends_with_words_and_status_1(self):
        with tempfile.TemporaryDirectory() as empty:
            failed = run(ALBUM, "--home", empty, "list")
        self.assertEqual((failed.returncode, failed.stdout), (1, ""))
        self.assertIn("Messages library", failed.stderr)

    def test_nonsense_on_the_command_line_ends_with_the_usage(self):
        for words in ([], ["nonsense"], ["list", "--nonsense"], ["export"], ["list", "--search"]):
            failed = run(ALBUM, *words)
            self.assertEqual(failed.returncode, 1, words)
            self.assertIn("usage: quillbook-album", failed.stderr)

    def test_album_outlives_a_loss_of_power(self):
        """The disk's image, copied right after the export, is what a machine would find whose power failed then."""
        image, copy = (Path(self.folder.name) / name for name in ("disk.img", "copy.img"))
        disk, found = (Path(self.folder.name) / name for name in ("disk", "found"))
        disk.mkdir()
        found.mkdir()
        with open(image, "wb") as file:
            file.truncate(200_000_000)
        self.assertEqual(run("mkfs.ext4", "-q", image).returncode, 0)
        # Without a flush the file system would keep all of it in memory for five minutes.
        if run("mount", "-o", "loop,commit=300", image, disk).returncode != 0:
            print("No disk can be mounted here; the order of flush and rename is tested apart.")
            return
        try:
            done = self.album("export", "--conversation", self.richest["id"], "--destination", disk)
            self.assertEqual(done.returncode, 0, done.stderr)
            shutil.copyfile(image, copy)
        finally:
            run("umount", disk)
        self.assertEqual(run("mount", "-o", "loop", copy, found).returncode, 0)
        try:
            album = found / Path(json.loads(done.stdout.splitlines()[-1])["archiveURL"]).name
            manifest = json.loads((album / "manifest.json").read_text())
            for file in manifest["files"]:
                self.assertEqual(hashlib.sha256((album / file["path"]).read_bytes()).hexdigest(), file["sha256"])
        finally:
            run("umount", found)

    def test_interrupt_ends_with_130_and_leaves_nothing(self):
        destination = Path(self.folder.name) / "interrupted"
        big = Path(self.folder.name) / "big"
        self.assertEqual(run(SAMPLE, "--home", big, "--messages", 60000, "--one-chat").returncode, 0)
        for delay in (0.05, 0.4, 0.8, 1.2):
            destination.mkdir(exist_ok=True)
            process = subprocess.Popen([ALBUM, "--home", big, "export", "--conversation", "1", "--destination",
                                        destination, "--json", "--markdown", "--csv"],
                                       stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
            time.sleep(delay)
            process.send_signal(signal.SIGINT)
            output, errors = process.communicate(timeout=120)
            if process.returncode == 0:  # It was quicker than the signal.
                self.assertTrue(json.loads(output.splitlines()[-1])["archiveURL"])
                continue
            if process.returncode == -signal.SIGINT:  # The signal came before the program looked for it.
                self.assertLess(delay, 0.1)
            else:
                self.assertEqual((process.returncode, errors), (130, ""))
            hidden = [entry for entry in os.listdir(destination) if entry.startswith(".")]
            self.assertEqual(hidden, [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
