"""Fails when a document names a path of the tree that does not exist, or a room lacks its opening comment."""

import re
import sys
from pathlib import Path

PATH = re.compile(r"`([A-Za-z0-9_.][A-Za-z0-9_./-]*/[A-Za-z0-9_./-]*)`")
OPENING = re.compile(r"^# \S+/('s)? .*(owns|holds|mirrors|address books)")


def missing_paths(text, exists):
    """The paths between backticks that stand for nothing."""
    return [path for path in PATH.findall(text) if not exists(path)]


def main(root):
    problems = []
    documents = [root / "README.md", root / "CONTRIBUTING.md", *sorted((root / "docs").rglob("*.md"))]
    for document in documents:
        # What albums, libraries and builds contain is no path of this tree.
        def exists(path):
            outside = ("assets/", "data/", "attachments/", "Library/", "build/", "~/")
            return path.startswith(outside) or (root / path).exists()

        for path in missing_paths(document.read_text(), exists):
            problems.append(f"{document.relative_to(root)}: {path} does not exist")
    for room in sorted(root.rglob("CMakeLists.txt")):
        relative = room.relative_to(root)
        if relative.parts[0] == "build" or "node_modules" in relative.parts or len(relative.parts) == 1 or relative == Path("tests/CMakeLists.txt"):
            continue
        if not OPENING.match(room.read_text()):
            problems.append(f"{relative}: does not open with what the room owns")
    print("\n".join(problems) or f"{len(documents)} documents read")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1])))
