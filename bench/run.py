"""Measures Quillbook's work beside what people would use instead, in turn, in one run, and prints the ratios of the medians.

usage: run.py PROBE BACKUP_PROBE SAMPLE APPLICATION WINDOW_BENCH FOLDER [--rounds N] [--only NAME,…]
"""

import argparse
import json
import os
import shutil
import statistics
import subprocess
import sys
import time
from pathlib import Path

from backups import BackupBench
from recovery import RecoveryBench
from window import WindowBench


def measure(command, **options):
    """Seconds, peak memory in bytes and output of one process."""
    start = time.monotonic()
    process = subprocess.Popen([str(word) for word in command], stdout=options.pop("stdout", subprocess.PIPE),
                               text=True, **options)
    output = process.stdout.read() if process.stdout else ""
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    seconds = time.monotonic() - start
    if process.returncode != 0:
        raise SystemExit(f"{command[0]} failed with {process.returncode}")
    return seconds, usage.ru_maxrss * 1024, output


def shell(database, *lines, output=subprocess.DEVNULL):
    """The sqlite3 shell on the same statements."""
    script = "\n".join(lines) + "\n"
    start = time.monotonic()
    subprocess.run(["sqlite3", "-readonly", str(database)], input=script, text=True, stdout=output, check=True)
    return time.monotonic() - start


class Bench:
    def __init__(self, arguments):
        self.probe = arguments.probe
        self.folder = arguments.folder
        self.rounds = arguments.rounds
        self.arguments = arguments

    def prepare(self):
        """The libraries of the rows that read one."""
        arguments = self.arguments
        self.spread = self.library(arguments.sample, "spread", "--messages", "500000", "--attachments", "50000")
        self.chat = self.library(arguments.sample, "one-chat", "--messages", "500000", "--one-chat", "--attachments", "0")
        self.statements = json.loads(measure([self.probe, "statements", self.spread])[2])

    def library(self, sample, name, *options):
        home = self.folder / name
        shutil.rmtree(home, ignore_errors=True)
        seconds, _, _ = measure([sample, "--home", home, *options])
        print(f"(library {name}: {seconds:.1f} s)", flush=True)
        return home / "Library/Messages/chat.db"

    def row(self, name, goal, ours, theirs):
        """Both in turn, `rounds` times after one round that warms the caches."""
        pairs = [(ours(), theirs()) for _ in range(self.rounds + 1)][1:]
        own = statistics.median(pair[0] for pair in pairs)
        other = statistics.median(pair[1] for pair in pairs)
        self.print(name, own / other, goal, f"{own:.3f} s against {other:.3f} s")

    def print(self, name, ratio, goal, how):
        verdict = "ok" if ratio <= goal else "MISSED"
        print(f"{name:<44} {ratio:6.2f}  goal {goal:4.1f}  {verdict:<6} {how}", flush=True)

    def first_list(self):
        statements = [self.statements["list"] + ";", self.statements["participants"] + ";"]
        self.row("first list", 1.3, lambda: measure([self.probe, "list", self.spread])[0],
                 lambda: shell(self.spread, *statements))

    def search(self, word="lighthouse"):
        statement = [".parameter init", f".parameter set ?1 '%{word}%'", self.statements["search"] + ";"]
        # The probe times the search itself, which follows a list; the shell's start is in its favour left in.
        self.row("one search", 1.2, lambda: json.loads(measure([self.probe, "search", self.spread, word])[2])["apart"],
                 lambda: shell(self.spread, *statement))

    def load(self):
        statement = self.statements["messages"].replace("?", "1") + ";"
        self.row("loading a chat of 500,000 messages", 1.5, lambda: measure([self.probe, "load", self.chat])[0],
                 lambda: shell(self.chat, statement))

    def export(self):
        destination = self.folder / "albums"
        statement = self.statements["messages"].replace("?", "1") + ";"
        dump = self.folder / "dump.json"
        peaks, sizes, flushes = [], [], []

        def ours():
            shutil.rmtree(destination, ignore_errors=True)
            destination.mkdir()
            os.sync()
            seconds, peak, output = measure([self.probe, "export", self.chat, destination])
            apart = json.loads(output)["apart"]
            album = next(destination.iterdir())
            peaks.append(peak)
            flushes.append(apart)
            sizes.append((album / "transcript.json").stat().st_size)
            return seconds - apart

        def theirs():
            os.sync()
            with open(dump, "w", encoding="utf-8") as file:
                return shell(self.chat, ".mode json", statement, output=file)

        self.row("text-only export of that chat", 3.0, ours, theirs)
        print(f"{'':<44} the flush to the disk apart: {statistics.median(flushes):.3f} s")
        ratio = max(peaks) / sizes[0]
        self.print("peak memory of that export", ratio, 3.0,
                   f"{max(peaks) / 1e6:.0f} MB against a transcript.json of {sizes[0] / 1e6:.0f} MB")
        shutil.rmtree(destination)
        dump.unlink()

    def copy(self):
        files, destination, copies = self.folder / "files", self.folder / "albums", self.folder / "copies"
        shutil.rmtree(files, ignore_errors=True)
        files.mkdir()
        block = os.urandom(1_000_000)
        for number in range(400):
            with open(files / f"{number:03}.bin", "wb") as file:
                file.write(number.to_bytes(4, "big"))
                for _ in range(5):
                    file.write(block)
        flushes = []

        def clear(folder):
            shutil.rmtree(folder, ignore_errors=True)
            folder.mkdir()
            os.sync()

        def ours():
            clear(destination)
            clear(copies)
            seconds, _, output = measure([self.probe, "copy", files, destination])
            apart = json.loads(output)["apart"]
            flushes.append(apart)
            return seconds - apart

        def theirs():
            clear(destination)
            clear(copies)
            names = sorted(files.iterdir())
            return (measure(["cp", "-r", files, copies])[0] +
                    measure(["openssl", "dgst", "-sha256", *names])[0] +
                    measure(["openssl", "dgst", "-sha256", *[copies / "files" / name.name for name in names]])[0])

        self.row("copying, hashing and manifest of 2 GB", 1.1, ours, theirs)
        print(f"{'':<44} the flush to the disk apart: {statistics.median(flushes):.3f} s")
        for folder in (files, destination, copies):
            shutil.rmtree(folder)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("probe", type=Path)
    parser.add_argument("backup_probe", type=Path)
    parser.add_argument("sample", type=Path)
    parser.add_argument("application", type=Path)
    parser.add_argument("window_bench", type=Path)
    parser.add_argument("folder", type=Path)
    parser.add_argument("--rounds", type=int, default=5)
    of_libraries, of_backups = ["first_list", "search", "load", "export", "copy"], ["decryption", "opening", "attachments", "footprint"]
    of_recovery, of_window = ["caches"], ["start", "key", "blocking", "rest"]
    parser.add_argument("--only", default=",".join(of_libraries + of_backups + of_recovery + of_window))
    arguments = parser.parse_args()
    arguments.folder.mkdir(parents=True, exist_ok=True)
    bench = Bench(arguments)
    names = arguments.only.split(",")
    if any(name in of_libraries for name in names):
        bench.prepare()
    backups = BackupBench(bench, measure, arguments.backup_probe, arguments.sample)
    recovery = RecoveryBench(bench, measure, arguments.probe)
    window = WindowBench(bench, measure, shell, (arguments.application, arguments.window_bench, arguments.sample))
    rows = [(of_libraries, bench), (of_backups, backups), (of_recovery, recovery), (of_window, window)]
    for name in names:
        getattr(next(owner for known, owner in rows if name in known), name)()


if __name__ == "__main__":
    sys.exit(main())
