"""Missing attachments through quillbook-sample and quillbook-album: counted, found in the caches, recovered, kept by albums."""

import hashlib
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SAMPLE, ALBUM = sys.argv[1:3]
RECOVERED = ".local/share/Quillbook/Recovered Attachments"


def run(*arguments, **options):
    return subprocess.run([str(argument) for argument in arguments], capture_output=True, text=True, check=False, **options)


def state(folder):
    """Every entry of a folder with all that would change if anybody wrote to it."""
    found = {}
    for path in [folder, *sorted(folder.rglob("*"))]:
        status = path.lstat()
        found[str(path)] = (status.st_ino, status.st_mode, status.st_size, status.st_mtime_ns)
    return found


class Recovery(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sample = tempfile.TemporaryDirectory(prefix="quillbook-recovery-")
        made = run(SAMPLE, "--home", Path(cls.sample.name) / "home", "--caches", "--backup", "plain")
        assert made.returncode == 0, made.stderr

    @classmethod
    def tearDownClass(cls):
        cls.sample.cleanup()

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(prefix="quillbook-recovery-")
        self.base = Path(self.folder.name)
        self.home = self.base / "home"
        shutil.copytree(Path(self.sample.name) / "home", self.home, symlinks=True)
        rows = [json.loads(line) for line in self.run_album("list").splitlines()]
        self.conversation = max(rows, key=lambda row: row["attachmentCount"])["id"]

    def tearDown(self):
        run("chmod", "-R", "u+w", self.base)
        self.folder.cleanup()

    def run_album(self, *arguments):
        done = run(ALBUM, "--home", self.home, *arguments)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout

    def ask(self, command, *arguments):
        return json.loads(self.run_album(command, "--conversation", self.conversation, *arguments).splitlines()[-1])

    def export(self, destination):
        destination.mkdir(exist_ok=True)
        result = self.ask("export", "--destination", destination, "--json")
        return result, Path(result["archiveURL"])

    def test_whole_way_from_missing_to_album(self):
        before = self.ask("survey")
        report = self.ask("caches")
        # The sample hides more copies in the caches: one a byte short, one hidden, one a link.
        self.assertEqual((len(report["candidates"]), report["ambiguous"]), (4, 1))
        self.assertEqual(len(report["candidates"]) + report["unmatched"], before["missing"])
        self.assertRegex(report["summary"], r"^4 attachments \(\d+ kB\) can be recovered from this Mac's Messages caches\.$")

        outcome = self.ask("recover")
        self.assertEqual((outcome["recoveredCount"], outcome["failedCount"]), (4, 0))
        self.assertEqual(outcome["recoveredBytes"], sum(each["bytes"] for each in report["candidates"]))
        manifest = json.loads(Path(outcome["manifestURL"]).read_text())
        self.assertEqual(manifest["count"], 4)
        for entry, candidate in zip(manifest["entries"], report["candidates"]):
            copy = self.home / RECOVERED / candidate["destination"]
            self.assertEqual(copy.read_bytes(), Path(candidate["sourceURL"]).read_bytes())
            self.assertEqual(entry["sha256"], hashlib.sha256(copy.read_bytes()).hexdigest())

        after = self.ask("survey")
        self.assertEqual((after["local"], after["missing"]), (before["local"] + 4, before["missing"] - 4))
        self.assertEqual(self.ask("caches")["candidates"], [])
        result, album = self.export(self.base / "albums")
        self.assertEqual(result["attachmentCount"], after["local"])
        names = {path.name for path in (album / "attachments").iterdir()}
        self.assertLessEqual({Path(each["destination"]).name for each in report["candidates"]}, names)

    def test_recovering_twice_says_there_is_nothing_left(self):
        self.ask("recover")
        self.assertEqual(self.ask("recover"), {"failedCount": 0, "recoveredBytes": 0, "recoveredCount": 0})

    def test_nothing_is_written_to_the_library_or_the_caches(self):
        # As the owner root may write anywhere; the comparison then tells, and for anybody else the permissions as well.
        run("chmod", "-R", "a-w", self.home / "Library")
        before = state(self.home / "Library")
        self.ask("survey")
        self.ask("caches")
        self.assertEqual(self.ask("recover")["recoveredCount"], 4)
        self.ask("survey")
        self.export(self.base / "albums")
        self.assertEqual(state(self.home / "Library"), before)

    def test_unwritable_support_folder_counts_failures_and_goes_on(self):
        support = self.home / ".local/share/Quillbook"
        support.parent.mkdir(parents=True)
        support.write_text("a file in the way")
        outcome = self.ask("recover")
        self.assertEqual((outcome["recoveredCount"], outcome["failedCount"]), (0, 4))
        self.assertNotIn("manifestURL", outcome)

    def test_prior_tells_of_the_album_and_of_what_came_since(self):
        albums = self.base / "albums"
        albums.mkdir()
        self.assertEqual(self.ask("prior", "--destination", albums), {})
        _, album = self.export(albums)
        prior = self.ask("prior", "--destination", albums)
        self.assertEqual((prior["archiveURL"], prior["newMessages"]), (str(album), 0))
        manifest = json.loads((album / "manifest.json").read_text())
        manifest["sourceMessageCount"] = prior["messageCount"] - 3
        (album / "manifest.json").write_text(json.dumps(manifest))
        self.assertEqual(self.ask("prior", "--destination", albums)["newMessages"], 3)

    def test_caches_of_this_mac_say_nothing_about_a_backup(self):
        backup = next(iter(os.listdir(self.home / "Library/Application Support/MobileSync/Backup")))
        words = ["--home", self.home, "--conversation", self.conversation, "--source", backup]
        failed = run(ALBUM, "caches", *words)
        self.assertEqual((failed.returncode, failed.stderr), (1, "The caches serve this Mac's own library alone.\n"))
        survey = json.loads(run(ALBUM, "survey", *words).stdout)
        # What was moved to the caches is still on the device: the backup is the fuller source.
        self.assertEqual(survey["missing"], self.ask("survey")["missing"] - 7)

    def test_unknown_conversation_ends_with_words_and_status_1(self):
        for command in ("survey", "caches", "recover"):
            failed = run(ALBUM, "--home", self.home, command, "--conversation", "999999")
            self.assertEqual((failed.returncode, failed.stderr), (1, "The selected conversation no longer exists.\n"))

    def test_later_album_clones_what_the_earlier_one_holds(self):
        image, disk = self.base / "disk.img", self.base / "disk"
        disk.mkdir()
        with open(image, "wb") as file:
            file.truncate(400_000_000)
        if run("mkfs.xfs", "-q", "-m", "reflink=1", image).returncode != 0 or run("mount", "-o", "loop", image, disk).returncode != 0:
            print("No disk that clones can be mounted here; the clones themselves are tested apart.")
            return
        try:
            self.ask("recover")
            first, _ = self.export(disk)
            second, album = self.export(disk)
            self.assertEqual(first["reusedAttachmentCount"], 0)
            self.assertEqual(second["reusedAttachmentCount"], second["attachmentCount"])
            shared = run("filefrag", "-v", *sorted((album / "attachments").glob("*.jpeg")))
            self.assertEqual(shared.returncode, 0, shared.stderr)
            self.assertIn("shared", shared.stdout)
        finally:
            run("umount", disk)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
