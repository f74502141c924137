"""The measurements of the window: start, search, an export, and rest. Taken from the pixels on show and from the system's own
counts, so that the application that is measured is the one that is installed."""

import json
import shutil
import sqlite3
import statistics
import time
from pathlib import Path

from desktop import Desktop, until

SEARCH_DELAY = 0.22
KEY = "4"  # Two conversations of three have it in a number or a message; the rows in sight change.
ATTACHMENTS = 50_000
REST = 20
# Where the window has its list: within its left edge and the line that scrolls, below the field that searches.
LEFT, TOP, RIGHT, BOTTOM = 2, 184, 330, 736
WINDOW = (0, 0, 1080, 740)
PICTURES, GROUND = 41, 5  # A column through the pictures of the rows, and one through nothing.
ROWS = 5


class WindowBench:
    def __init__(self, bench, measure, shell, programs):
        self.bench = bench
        self.measure = measure
        self.shell = shell
        self.application, self.window_bench, self.sample = (program.resolve() for program in programs)
        self.folder = bench.folder.resolve() / "window"
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        self.library_of_2000 = None

    def library(self):
        """The home of a library of 2,000 conversations, made once a run."""
        if self.library_of_2000 is None:
            self.library_of_2000 = self.folder / "spread"
            self.measure([self.sample, "--home", self.library_of_2000, "--messages", "500000", "--attachments", "50000"])
        return self.library_of_2000

    @staticmethod
    def skip_onboarding(desktop):
        preferences = desktop.base / "config/Quillbook/Quillbook.conf"
        preferences.parent.mkdir()
        preferences.write_text("[General]\nonboarding.completed=true\n")

    def open(self, desktop):
        return desktop.start(self.application, environment={"HOME": str(self.library())})

    @staticmethod
    def list_on_show(screen):
        return screen.rows(LEFT, TOP, RIGHT, BOTTOM, step=3)

    @staticmethod
    def rows_on_show(screen):
        """How many rows the list shows: the pictures of their people, one below the other."""
        ground = screen.column(GROUND, TOP, BOTTOM)
        marks = [own != other for own, other in zip(screen.column(PICTURES, TOP, BOTTOM), ground)]
        return sum(mark and not before for mark, before in zip(marks, [False, *marks]))

    def opened(self, desktop):
        """The application, with its list on show and at rest."""
        process = None

        def act():
            nonlocal process
            process = self.open(desktop)
            return time.monotonic()

        desktop.watch(lambda: self.list_on_show(desktop.screen), act)
        self.must_show_rows(desktop)
        return process

    def must_show_rows(self, desktop):
        if self.rows_on_show(desktop.screen) < ROWS:
            raise SystemExit("the window does not show its list")

    def one_start(self, desktop):
        """Seconds from the start of the process to the first picture, to the rows, and to their last change."""
        first = rows = process = None

        def look():
            nonlocal first, rows
            if first is None and any(desktop.screen.rows(*WINDOW, step=37)):  # The display is black before.
                first = time.monotonic()
            if first is not None and rows is None and self.rows_on_show(desktop.screen) >= ROWS:
                rows = time.monotonic()
            return self.list_on_show(desktop.screen)

        def act():
            nonlocal process
            start = time.monotonic()
            process = self.open(desktop)
            return start

        until(lambda: not any(desktop.screen.rows(*WINDOW, step=37)), "an empty display")
        start, changes = desktop.watch(look, act)
        self.must_show_rows(desktop)
        desktop.end(process)
        return [moment - start for moment in (first, rows, changes[-1])]

    def start(self):
        database = self.library() / "Library/Messages/chat.db"
        statements = json.loads(self.measure([self.bench.probe, "statements", database])[2])
        script = [statements["list"] + ";", statements["participants"] + ";"]
        with Desktop() as desktop:
            self.skip_onboarding(desktop)
            found = [[*self.one_start(desktop), self.shell(database, *script)] for _ in range(self.bench.rounds + 1)][1:]
        beyond = statistics.median(each[2] - each[3] for each in found)
        first, rows, whole, apart = (statistics.median(column) for column in zip(*found))
        self.bench.print("start to the list, s beyond its statements", beyond, 1.0,
                         f"first picture {first:.3f} s, rows {rows:.3f} s, at rest {whole:.3f} s; statements {apart:.3f} s")

    def key(self):
        database = self.library() / "Library/Messages/chat.db"
        found = []  # The difference of two long times takes more rounds than others.
        with Desktop() as desktop:
            self.skip_onboarding(desktop)
            process = self.opened(desktop)

            def seconds(key):
                start, changes = desktop.watch(lambda: self.list_on_show(desktop.screen),
                                               lambda: desktop.keyboard.press(key))
                self.must_show_rows(desktop)
                return changes[-1] - start

            for _ in range(2 * self.bench.rounds + 1):
                whole = seconds(KEY)
                statement = json.loads(self.measure([self.bench.probe, "search", database, KEY])[2])["apart"]
                found.append((whole, statement))
                seconds("BackSpace")
            desktop.end(process)
        beyond = statistics.median(whole - SEARCH_DELAY - statement for whole, statement in found[1:])
        whole, statement = (statistics.median(column) for column in zip(*found[1:]))
        self.bench.print("key to the filtered list, ms beyond", beyond * 1e3, 50,
                         f"{whole * 1e3:.0f} ms in all, of which {SEARCH_DELAY * 1e3:.0f} ms of waiting and "
                         f"{statement * 1e3:.0f} ms of statement")

    def library_of_files(self):
        """One conversation whose attachments all lie on the disk, small ones."""
        home = self.folder / "files"
        self.measure([self.sample, "--home", home, "--messages", "100000", "--attachments", ATTACHMENTS, "--one-chat"])
        database = sqlite3.connect(home / "Library/Messages/chat.db")
        for number, (name,) in enumerate(database.execute("SELECT filename FROM attachment")):
            file = home / name.removeprefix("~/")
            if not file.exists():
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_bytes(number.to_bytes(4, "big") * (250 + number % 500))
        database.close()
        return home

    def blocking(self):
        home = self.library_of_files()
        albums = home / "Downloads"
        found = []
        with Desktop() as desktop:
            self.skip_onboarding(desktop)
            # The first run fills the caches, those of the display's painter among them.
            for _ in range(min(self.bench.rounds, 5) + 1):
                shutil.rmtree(albums, ignore_errors=True)
                albums.mkdir()
                output, errors = desktop.base / "output", desktop.base / "errors"
                with output.open("w") as taken, errors.open("w") as told:
                    process = desktop.start(self.window_bench, "export", environment={"HOME": str(home)}, stdout=taken,
                                            stderr=told)
                    if process.wait(600) != 0:
                        raise SystemExit(f"the export failed: {errors.read_text()}")
                desktop.end(process)
                found.append(json.loads(output.read_text()))
                if found[-1]["attachments"] != ATTACHMENTS:
                    raise SystemExit(f"{found[-1]['attachments']} attachments in the album")
        cold = found.pop(0)
        worst = max(found, key=lambda each: each["longest"])
        median = {name: statistics.median(each[name] for each in found) for name in worst}
        self.bench.print("main thread blocked in an export, ms", median["longest"], 50,
                         f"of {ATTACHMENTS:,} attachments in {median['seconds']:.1f} s; its own work {median['work']:.1f} ms at "
                         f"most, 99 of 100 turns within {median['p99']:.1f} ms; without caches {cold['longest']:.1f} ms, the "
                         f"worst of {len(found)} runs {worst['longest']:.1f} ms, after {worst['at']:.1f} s")
        print(f"{'':<44} {median['reports']:.0f} reports of progress, {median['shown']:.0f} shown, in "
              f"{median['frames']:.0f} frames", flush=True)
        shutil.rmtree(home)

    @staticmethod
    def at_rest(process):
        """Wake-ups and milliseconds of processor a second, of all threads of a process."""

        def counts():
            switches = nanoseconds = 0
            for task in Path(f"/proc/{process.pid}/task").iterdir():
                lines = (task / "status").read_text().splitlines()
                switches += sum(int(line.split()[1]) for line in lines if line.startswith("voluntary_ctxt_switches"))
                nanoseconds += int((task / "schedstat").read_text().split()[0])
            return switches, nanoseconds

        before = counts()
        time.sleep(REST)
        after = counts()
        return (after[0] - before[0]) / REST, (after[1] - before[1]) / REST / 1e6

    def rest(self):
        found = {"ours": [], "plain": []}
        for _ in range(min(self.bench.rounds, 3)):
            for name in found:
                with Desktop() as desktop:
                    self.skip_onboarding(desktop)
                    process = self.opened(desktop) if name == "ours" else desktop.start(self.window_bench, "plain")
                    time.sleep(5)  # What follows a start has come to its end.
                    focused = self.at_rest(process)
                    desktop.end(desktop.manager)  # It would give the keyboard back.
                    desktop.keyboard.leave()
                    time.sleep(2)
                    found[name].append((focused, self.at_rest(process)))
                    desktop.end(process)
        for index, state in enumerate(("with the cursor", "without the keyboard")):
            (ours, time_of_ours), (plain, time_of_plain) = (
                [statistics.median(column) for column in zip(*(each[index] for each in found[name]))] for name in found)
            self.bench.print("wake-ups a second beyond a plain window's", ours - plain, 1,
                             f"{state}: {ours:.2f} against {plain:.2f}, {time_of_ours:.2f} ms of processor against "
                             f"{time_of_plain:.2f} ms")
