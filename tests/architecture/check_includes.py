"""Fails when an #include or a link breaks the one direction in which rooms may depend on each other."""

import re
import sys
from pathlib import Path

# Each room with the rooms that it may use beside itself. The order is the map of docs/architecture.md.
ROOMS = {
    "core/text": [],
    "core/records": ["core/text"],
    "core/interfaces": ["core/records", "core/text"],
    "platform": ["core/interfaces", "core/records", "core/text"],
    "typedstream": ["core/text"],
    "store/sqlite": ["core/records", "core/text"],
    "contacts": ["platform", "core/interfaces", "core/records", "core/text"],
    "propertylist": ["core/records", "core/text"],
    "store": ["store/sqlite", "typedstream", "propertylist", "platform", "core/interfaces", "core/records", "core/text"],
    "export": ["platform", "core/interfaces", "core/records", "core/text"],
    "backup": ["store/sqlite", "propertylist", "platform", "core/interfaces", "core/records", "core/text"],
    "recovery": ["store", "export", "platform", "core/interfaces", "core/records", "core/text"],
    "store/sources": ["contacts", "store", "store/sqlite", "export", "backup", "recovery", "platform", "core/interfaces", "core/records", "core/text"],
    "core/model": ["core/interfaces", "core/records", "core/text"],
    "shell/desktop": ["core/interfaces", "core/records", "core/text", "platform"],
    "shell/application": ["shell/desktop", "core/model", "core/interfaces", "core/records", "core/text", "platform"],
    "shell/adapter": ["shell/application", "shell/desktop", "core/model", "core/interfaces", "core/records", "core/text", "platform"],
    "shell": ["*"],
    "tools": ["*"],
    "tests": ["*"],
    "fuzz": ["*"],
    "bench": ["*"],
}

# Outside libraries, each with the rooms that may see its headers.
LIBRARIES = {
    r"^unicode/": ["core/text"],
    r"^simdjson\.h$": ["core/records"],
    r"^sqlite3\.h$": ["store/sqlite", "tools", "tests", "bench"],
    r"^plist/": ["propertylist", "store", "tools", "tests"],
    r"^openssl/": ["export", "backup", "tools", "tests", "bench"],
    r"^(libebook|libedataserver|glib|gio)": ["platform", "tests"],
    r"^Q[A-Z]": ["shell", "shell/desktop", "shell/adapter", "tests", "bench"],
    r"^canberra": ["shell/desktop"],
}

INCLUDE = re.compile(r'^\s*#\s*include\s+(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)


def room_of(path):
    """The room with the longest name that the path lies in, or None."""
    rooms = [room for room in ROOMS if path.startswith(room + "/")]
    return max(rooms, key=len, default=None)


def problems_of(path, text):
    """What one file includes against the plan, as lines of words."""
    room = room_of(path)
    if room is None:
        return [f"{path}: lies in no room"]
    problems = []
    for own, outside in INCLUDE.findall(text):
        if own:
            target = room_of(own)
            allowed = ROOMS[room]
            if target is None:
                problems.append(f'{path}: "{own}" is no path from the root of the tree')
            elif target != room and "*" not in allowed and target not in allowed:
                problems.append(f"{path}: {room} may not include {own}")
        for pattern, rooms in LIBRARIES.items():
            if outside and re.search(pattern, outside) and room not in rooms:
                problems.append(f"{path}: {room} may not include <{outside}>")
    return problems


def main(root):
    problems = []
    count = 0
    for folder in sorted({room.split("/")[0] for room in ROOMS}):
        for file in sorted((root / folder).rglob("*")):
            if file.suffix in (".h", ".cpp"):
                count += 1
                problems += problems_of(str(file.relative_to(root)), file.read_text())
    print("\n".join(problems))
    print(f"{count} files read, {len(problems)} problems")
    return 1 if problems or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1])))
