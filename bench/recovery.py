"""The measurement of the search of the caches for missing attachments."""

import json
import os
import shutil

FOLDERS = 4_000
FILES = 1_000_000
RECORDS = 50_000


class RecoveryBench:
    def __init__(self, bench, measure, probe):
        self.bench = bench
        self.measure = measure
        self.probe = probe
        self.folder = bench.folder / "caches"

    def write_cache(self):
        """Files with a length and no blocks, each of a name and size that go by its number, spread over folders of folders."""
        shutil.rmtree(self.folder, ignore_errors=True)
        each = FILES // FOLDERS
        for number in range(FOLDERS):
            folder = self.folder / f"{number % 40:02}" / "Assets" / f"{number:04}"
            folder.mkdir(parents=True)
            descriptor = os.open(folder, os.O_RDONLY)
            for file in range(number * each, (number + 1) * each):
                opened = os.open(f"IMG_{file:07}.jpg", os.O_WRONLY | os.O_CREAT, dir_fd=descriptor)
                os.truncate(opened, file % 4096 + 1)
                os.close(opened)
            os.close(descriptor)
        os.sync()

    def caches(self):
        self.write_cache()

        def ours():
            seconds, _, output = self.measure([self.probe, "find-recoverable", RECORDS, self.folder])
            found = json.loads(output)["count"]
            if found != RECORDS:
                raise SystemExit(f"{found} of {RECORDS} attachments found")
            return seconds

        with open(os.devnull, "w", encoding="utf-8") as nothing:
            self.bench.row("finding 50,000 among 1,000,000 cached files", 2.0, ours,
                           lambda: self.measure(["find", self.folder, "-type", "f"], stdout=nothing)[0])
        shutil.rmtree(self.folder)
