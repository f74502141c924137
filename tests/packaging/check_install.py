"""Installs into a temporary folder and fails when a file is missing, too many, or not what it should be."""

import argparse
import os
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

ID = "org.quillbook.Quillbook"
SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)
WEB = ("app.js", "index.html", "styles.css")
ICON = "share/icons/hicolor/{0}x{0}/apps/" + ID + ".png"


def expected_files(with_program):
    files = {f"share/quillbook/Web/{name}" for name in WEB}
    files |= {ICON.format(size) for size in SIZES}
    files |= {
        f"share/icons/hicolor/scalable/apps/{ID}.svg",
        f"share/icons/hicolor/symbolic/apps/{ID}-symbolic.svg",
        f"share/applications/{ID}.desktop",
        f"share/metainfo/{ID}.metainfo.xml",
    }
    return files | ({"bin/quillbook"} if with_program else set())


def png_size(data):
    """Width and height out of the header chunk (PNG specification, section 11.2.2), or None."""
    if data[:8] != b"\x89PNG\r\n\x1a\n" or data[12:16] != b"IHDR":
        return None
    return struct.unpack(">II", data[16:24])


def problems_of(prefix, web, source, with_program):
    installed = {str(file.relative_to(prefix)) for file in prefix.rglob("*") if file.is_file() or file.is_symlink()}
    expected = expected_files(with_program)
    problems = [f"{name} is missing" for name in sorted(expected - installed)]
    problems += [f"{name} is installed, too" for name in sorted(installed - expected)]
    if problems:
        return problems
    for name in WEB:
        if (prefix / "share/quillbook/Web" / name).read_bytes() != (web / name).read_bytes():
            problems.append(f"{name} is not what was built")
    for size in SIZES:
        if png_size((prefix / ICON.format(size)).read_bytes()) != (size, size):
            problems.append(f"the icon of {size} pixels has another size")
    if with_program:
        program = prefix / "bin/quillbook"
        if not os.access(program, os.X_OK):
            problems.append("the program cannot be run")
        if any(str(tree).encode() in program.read_bytes() for tree in (web.parent, source / "resources")):
            problems.append("the program carries the path of a tree it was built in")
    return problems


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("cmake")
    arguments.add_argument("build", type=Path)
    arguments.add_argument("web", type=Path, help="the folder with the website that the build has made")
    arguments.add_argument("source", type=Path)
    arguments.add_argument("--program", action="store_true")
    given = arguments.parse_args()
    with tempfile.TemporaryDirectory(prefix="quillbook-install-") as folder:
        subprocess.run([given.cmake, "--install", given.build, "--prefix", folder, "--strip"], check=True, stdout=subprocess.DEVNULL)
        problems = problems_of(Path(folder), given.web, given.source, given.program)
    print("\n".join(problems) or f"{len(expected_files(given.program))} files installed")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
