"""Device backups through quillbook-sample and quillbook-album: listed, opened, exported, and left as they were."""

import hashlib
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

SAMPLE, ALBUM = sys.argv[1:3]
PASSWORD = "a quiet harbour"
ROOT = "Library/Application Support/MobileSync/Backup"


def run(*arguments, **options):
    return subprocess.run([str(argument) for argument in arguments], capture_output=True, text=True, check=False, **options)


def contents(folder):
    """Everything that can change about a folder: names, kinds, bytes and times."""
    found = {}
    for path in sorted(folder.rglob("*")):
        status = path.lstat()
        data = hashlib.sha256(path.read_bytes()).hexdigest() if path.is_file() else None
        found[str(path.relative_to(folder))] = (status.st_mode, status.st_size, status.st_mtime_ns, data)
    return found


def transcripts(album):
    """The album's files by name, without the moments at which it was made."""
    moments = re.compile(rb'"(generatedAt|exportedAt|createdAt)" : "[^"]*"')
    found = {}
    for path in sorted(album.rglob("*")):
        if path.is_file():
            found[str(path.relative_to(album))] = moments.sub(b"", path.read_bytes())
    return found


class Backups(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="quillbook-backups-")
        cls.base = Path(cls.folder.name)
        cls.home = cls.base / "home"
        cls.temporary = cls.base / "tmp"
        cls.temporary.mkdir()
        made = run(SAMPLE, "--home", cls.home, "--backup", "plain", "--backup", "encrypted", "--password", PASSWORD,
                   "--iterations", 2000)
        assert made.returncode == 0, made.stderr
        cls.password = cls.base / "password.txt"
        cls.password.write_text(PASSWORD + "\n")
        cls.before = contents(cls.home)
        cls.sources = cls.lines("sources")
        cls.plain = next(source["id"] for source in cls.sources[1:] if not source["requiresPassword"])
        cls.encrypted = next(source["id"] for source in cls.sources[1:] if source["requiresPassword"])

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def tearDown(self):
        self.assertEqual(os.listdir(self.temporary), [], "something is left of an opened backup")

    @classmethod
    def album(cls, *arguments, home=None, **options):
        home = home or cls.home
        environment = {**os.environ, "TMPDIR": str(cls.temporary)}
        return run(ALBUM, "--home", home, "--contacts", cls.home / "contacts.vcf", *arguments, env=environment, **options)

    @classmethod
    def lines(cls, *arguments):
        done = cls.album(*arguments)
        assert done.returncode == 0, done.stderr
        return [json.loads(line) for line in done.stdout.splitlines()]

    def export(self, source, destination, conversation):
        destination.mkdir(exist_ok=True)
        done = self.album("export", "--source", source, "--password-file", self.password, "--conversation", conversation,
                          "--destination", destination, "--json", "--markdown", "--csv")
        self.assertEqual(done.returncode, 0, done.stderr)
        return Path(json.loads(done.stdout.splitlines()[-1])["archiveURL"])

    def richest(self):
        return max(self.lines("list"), key=lambda row: row["attachmentCount"])["id"]

    def test_sources_follow_this_mac_newest_first(self):
        self.assertEqual([source["kind"] for source in self.sources], ["localMac", "deviceBackup", "deviceBackup"])
        dates = []
        for source in self.sources[1:]:
            words = r"(.+) · Encrypted backup" if source["requiresPassword"] else r"(.+) · Backup"
            self.assertRegex(source["subtitle"], words)
            dates.append(time.strptime(re.match(words, source["subtitle"])[1], "%b %d, %Y"))
        self.assertEqual(dates, sorted(dates, reverse=True))

    def test_list_of_a_backup_is_that_of_the_library(self):
        library = self.lines("list")
        self.assertEqual(self.lines("list", "--source", self.plain), library)
        self.assertEqual(self.lines("list", "--source", self.encrypted, "--password-file", self.password), library)

    def test_show_of_a_backup_has_the_messages_of_the_library(self):
        conversation = self.richest()
        texts = []
        for options in ([], ["--source", self.plain], ["--source", self.encrypted, "--password-file", self.password]):
            shown = json.loads(self.album("show", "--conversation", conversation, *options).stdout)
            texts.append([(message["guid"], message.get("text")) for message in shown["messages"]])
        self.assertGreater(len(texts[0]), 100)
        self.assertEqual(texts[1], texts[0])
        self.assertEqual(texts[2], texts[0])

    def test_albums_of_both_backups_are_equal_and_whole(self):
        conversation = self.richest()
        plain = self.export(self.plain, self.base / "plain", conversation)
        encrypted = self.export(self.encrypted, self.base / "encrypted", conversation)
        manifests = [json.loads((album / "manifest.json").read_text()) for album in (plain, encrypted)]
        # The two dates in "data/messages.js" and "transcript.json" make their digests differ; all else is equal.
        dated = {"transcript.json", "data/messages.js"}
        digests = [{file["path"]: file["sha256"] for file in manifest["files"] if file["path"] not in dated}
                   for manifest in manifests]
        self.assertGreater(len(digests[0]), 15)
        self.assertEqual(digests[0], digests[1])
        texts = [transcripts(album) for album in (plain, encrypted)]
        for each in texts:
            each.pop("manifest.json")
        self.assertEqual(texts[0].keys(), texts[1].keys())
        for name, text in texts[0].items():
            self.assertEqual(text, texts[1][name], name)

        # What is in the library's own album is in the backup's.
        local = self.export("local-mac", self.base / "local", conversation)
        attachments = [{path.name for path in (album / "attachments").iterdir()} for album in (local, encrypted)]
        self.assertLessEqual(attachments[0], attachments[1])

    def test_backups_are_left_as_they_were(self):
        self.lines("list", "--source", self.plain)
        self.lines("list", "--source", self.encrypted, "--password-file", self.password)
        self.assertEqual(contents(self.home), self.before)

    def test_wrong_password_says_so_and_leaves_nothing(self):
        wrong = self.base / "wrong.txt"
        wrong.write_text("a loud harbour")
        destination = self.base / "refused"
        destination.mkdir()
        failed = self.album("export", "--source", self.encrypted, "--password-file", wrong, "--conversation", 1,
                            "--destination", destination)
        self.assertEqual((failed.returncode, failed.stderr), (1, "The backup password is incorrect.\n"))
        self.assertEqual(os.listdir(destination), [])

    def test_missing_password_file_is_asked_for(self):
        failed = self.album("list", "--source", self.encrypted)
        self.assertEqual((failed.returncode, failed.stderr), (1, "This source needs --password-file.\n"))

    def test_unknown_source_says_so(self):
        failed = self.album("list", "--source", "nothing")
        self.assertEqual((failed.returncode, failed.stderr), (1, "There is no source nothing.\n"))

    def test_interrupt_ends_a_slow_opening_and_leaves_nothing(self):
        slow = self.base / "slow"
        made = run(SAMPLE, "--home", slow, "--messages", 50, "--attachments", 0, "--backup", "encrypted",
                   "--iterations", 4_000_000)
        self.assertEqual(made.returncode, 0, made.stderr)
        source = next(iter(os.listdir(slow / ROOT)))
        environment = {**os.environ, "TMPDIR": str(self.temporary)}
        process = subprocess.Popen([ALBUM, "--home", slow, "list", "--source", source, "--password-file", self.password],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, env=environment)
        deadline = time.monotonic() + 60
        while not os.listdir(self.temporary) and time.monotonic() < deadline:
            time.sleep(0.01)
        self.assertIsNone(process.poll())
        process.send_signal(signal.SIGINT)
        output, errors = process.communicate(timeout=60)
        self.assertEqual((process.returncode, output, errors), (130, "", ""))

    def test_killed_opening_is_swept_by_the_next_start(self):
        process = subprocess.Popen([ALBUM, "--home", self.home, "export", "--source", self.encrypted, "--password-file",
                                    self.password, "--conversation", self.richest(), "--destination", self.base / "kills"],
                                   env={**os.environ, "TMPDIR": str(self.temporary)}, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        (self.base / "kills").mkdir()
        deadline = time.monotonic() + 60
        while time.monotonic() < deadline and process.poll() is None:
            if any((folder / "sms.db").exists() for folder in self.temporary.iterdir()):
                break
            time.sleep(0.001)
        process.kill()
        process.wait()
        self.lines("sources")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
