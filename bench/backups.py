"""The measurements of device backups: decryption, opening, attachments, memory and disk of an export."""

import json
import os
import shutil
import sqlite3
import statistics
from pathlib import Path

ROUNDS = 1_000_000
PASSWORD = "lake house"


class BackupBench:
    def __init__(self, bench, measure, probe, sample):
        self.bench = bench
        self.measure = measure
        self.probe = probe
        self.sample = sample
        self.folder = bench.folder / "backups"
        shutil.rmtree(self.folder, ignore_errors=True)
        self.temporary = self.folder / "tmp"
        self.temporary.mkdir(parents=True)

    def run(self, *words):
        """One run of the probe: its own seconds and count, and the peak memory of the process."""
        _, peak, output = self.measure([self.probe, *words])
        return json.loads(output) | {"peak": peak}

    def messages(self, name, attachments=0, size=0):
        """A small Messages database whose conversation 1 has so many attachments; filled up to a size."""
        home = self.folder / name
        self.measure([self.sample, "--home", home, "--messages", "1000", "--attachments", "0", "--one-chat"])
        file = home / "Library/Messages/chat.db"
        database = sqlite3.connect(file)
        message = database.execute("SELECT min(message_id) FROM chat_message_join WHERE chat_id = 1").fetchone()[0]
        for number in range(attachments):
            path = f"~/Library/SMS/Attachments/{number % 256:02x}/{number}.bin"
            row = database.execute("INSERT INTO attachment (guid, original_guid, filename, transfer_name) VALUES (?1, ?1, ?2, ?3)",
                                   (path, path, f"{number}.bin")).lastrowid
            database.execute("INSERT INTO message_attachment_join (message_id, attachment_id) VALUES (?, ?)", (message, row))
        database.execute("CREATE TABLE filling (bytes BLOB)")
        for _ in range(size // 1_000_000):
            database.execute("INSERT INTO filling VALUES (randomblob(1000000))")
        database.commit()
        database.close()
        return file

    def decryption(self):
        cipher, ours, theirs = (self.folder / name for name in ("cipher", "ours", "theirs"))
        key, start = bytes(range(32)).hex(), "0" * 32
        plain = self.folder / "plain"
        with open(plain, "wb") as file:
            for _ in range(1000):
                file.write(bytes(range(250)) * 4000)
        self.measure(["openssl", "enc", "-aes-256-cbc", "-nopad", "-K", key, "-iv", start, "-in", plain, "-out", cipher])

        def own():
            ours.unlink(missing_ok=True)
            return self.measure([self.probe, "decrypt", cipher, ours])[0]

        def other():
            theirs.unlink(missing_ok=True)
            return self.measure(["openssl", "enc", "-d", "-aes-256-cbc", "-nopad", "-K", key, "-iv", start, "-in", cipher,
                                 "-out", theirs])[0]

        self.bench.row("decrypting a file of 1 GB", 1.1, own, other)
        for file in (cipher, ours, theirs, plain):
            file.unlink()

    def opening(self):
        messages = self.messages("opening", size=500_000_000)
        backup = self.folder / "00008110-OPENING"
        self.run("write-indexed", messages, backup, ROUNDS, 200_000_000)
        index = backup / "Manifest.db"
        stored = backup / "3d/3d0d7e5fb2ce288813306e4d4636395e047a3d28"
        print(f"(index of {index.stat().st_size / 1e6:.0f} MB, messages of {stored.stat().st_size / 1e6:.0f} MB)")
        copy = self.folder / "copy"
        key, start = bytes(range(32)).hex(), "0" * 32

        def derivation(digest, rounds):
            return self.measure(["openssl", "kdf", "-keylen", "32", "-kdfopt", f"digest:{digest}", "-kdfopt", f"pass:{PASSWORD}",
                                 "-kdfopt", "hexsalt:000102030405060708090a0b0c0d0e0f10111213", "-kdfopt", f"iter:{rounds}",
                                 "PBKDF2"])[0]

        def decryption(file):
            copy.unlink(missing_ok=True)
            return self.measure(["openssl", "enc", "-d", "-aes-256-cbc", "-nopad", "-K", key, "-iv", start, "-in", file,
                                 "-out", copy])[0]

        def own():
            os.sync()  # What earlier rounds wrote is none of this one's business.
            return self.run("open", backup, self.temporary)["seconds"]

        def other():
            os.sync()
            return derivation("SHA256", ROUNDS) + derivation("SHA1", 10_000) + decryption(index) + decryption(stored)

        self.bench.row("opening an encrypted backup", 1.2, own, other)
        copy.unlink()
        shutil.rmtree(backup)

    def attachments(self):
        messages = self.messages("small")
        for size in (4_000, 100_000):
            backup = self.folder / f"00008110-{size}"
            self.run("write-attachments", messages, backup, 10_000, size)

            def work(name):
                os.sync()
                return self.run(name, backup, self.temporary, 10_000)["seconds"]

            own, other = (lambda: work("look-up")), (lambda: work("look-up-plainly"))
            if size > 50_000:
                self.bench.row("10,000 attachments of 100 KB", 1.5, own, other)
            else:
                # Of so few bytes a file costs less than its place on the disk and the statement that finds it.
                pairs = [(own(), other()) for _ in range(self.bench.rounds)]
                ours, theirs = (statistics.median(pair[index] for pair in pairs) for index in (0, 1))
                print(f"{'':<44} of 4 KB: {ours / theirs:.2f}, {ours:.3f} s against {theirs:.3f} s", flush=True)
            shutil.rmtree(backup)

    def footprint(self):
        size, count = 20_000_000, 250
        messages = self.messages("large", attachments=count)
        peaks, most = {}, 0
        for name, files in (("none", 0), ("all", count)):
            backup, albums = self.folder / f"00008110-{name}", self.folder / "albums"
            self.run("write-attachments", messages, backup, files, size)
            found = []
            for _ in range(3):
                shutil.rmtree(albums, ignore_errors=True)
                albums.mkdir()
                found.append(self.run("export", backup, self.temporary, albums))
            peaks[name] = statistics.median(each["peak"] for each in found)
            most = max(each["count"] for each in found)
            shutil.rmtree(albums)
            shutil.rmtree(backup)
        more = (peaks["all"] - peaks["none"]) / 1e6
        self.bench.print("peak memory for 5 GB of attachments, MB more", more, 16,
                         f"{peaks['all'] / 1e6:.1f} MB against {peaks['none'] / 1e6:.1f} MB without any")
        self.bench.print("disk for decrypted attachments, of one", most / size, 1, f"{most / 1e6:.1f} MB at most")
