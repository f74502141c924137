"""Fails when a glyph leaves the common grid, weight or colour, or when the shell names a symbol that has no glyph."""

import re
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

# Every symbol that the screens' words call for, beside the formats' glyphs and the application's own mark.
NEEDED = """
    safari photo.on.rectangle.angled externaldrive person.2.fill person.fill icloud.slash checkmark.shield questionmark.circle
    lock.shield checkmark.circle checkmark.circle.fill desktopcomputer iphone plus.circle.fill folder.fill exclamationmark.triangle
    exclamationmark.triangle.fill arrow.triangle.2.circlepath magnifyingglass checkmark.circle.trianglebadge.exclamationmark
    xmark.octagon lock.iphone icloud.and.arrow.down info.circle info.circle.fill iphone.and.arrow.forward book.closed hand.raised
    checkmark chevron.down chevron.right chevron.up.chevron.down sidebar.left xmark ellipsis photo website json markdown csv mark
""".split()

SVG = "{http://www.w3.org/2000/svg}"
# What the renderer of SVG Tiny draws, and nothing that could load or hide anything.
ELEMENTS = {SVG + name for name in ("svg", "g", "path", "circle", "rect", "ellipse")}
ROOT = {"width": "24", "height": "24", "viewBox": "0 0 24 24"}
FIXED = {
    "fill": {"none", "currentColor"},
    "stroke": {"none", "currentColor"},
    "stroke-width": {"1.6"},
    "stroke-linecap": {"round"},
    "stroke-linejoin": {"round"},
}
GEOMETRY = {"d", "cx", "cy", "r", "rx", "ry", "x", "y", "width", "height", "fill-rule", "fill-opacity", "stroke-opacity", "viewBox"}
WEIGHT = {"stroke-width", "stroke-linecap", "stroke-linejoin"}

# `symbol: "a"`, `glyph: x ? "a" : "b"`, `.symbol = …`, and the same over the lines that a formatter broke.
ASSIGNMENT = re.compile(r'\b(?:symbol|glyph)\s*[:=](?!=)((?:[^";,{}\n]|"[^"\n]*"|\n\s*[?:])*)')
LITERAL = re.compile(r'"([^"\n]*)"')
ADDRESS = re.compile(r"image://glyph/([A-Za-z0-9.]+)/")
# A dotted name whose first word opens a glyph's name is meant to be one, wherever it stands.
DOTTED = re.compile(r'"([a-z]+(?:\.[a-z0-9]+)+)"')
WORD = re.compile(r"[a-z0-9]+(?:\.[a-z0-9]+)*")


def problems_of_glyph(name, text):
    """What is wrong with one glyph, as lines of words."""
    try:
        root = ElementTree.fromstring(text)
    except ElementTree.ParseError as error:
        return [f"{name}: {error}"]
    problems = []
    for key, value in ROOT.items():
        if root.tag != SVG + "svg" or root.get(key) != value:
            problems.append(f"{name}: is not on the 24 by 24 grid ({key})")
    shapes = 0
    for element in root.iter():
        if element.tag not in ELEMENTS:
            problems.append(f"{name}: holds a <{element.tag.replace(SVG, '')}>")
            continue
        shapes += element.tag not in (SVG + "svg", SVG + "g")
        for key, value in element.attrib.items():
            if key in FIXED and value not in FIXED[key]:
                problems.append(f'{name}: {key}="{value}"')
            elif key not in FIXED and key not in GEOMETRY:
                problems.append(f"{name}: has the attribute {key}")
        if element.get("stroke") == "currentColor" and not WEIGHT <= set(element.attrib):
            problems.append(f"{name}: strokes without the common weight, cap and join")
    painted = [element for element in root.iter() if "currentColor" in (element.get("fill"), element.get("stroke"))]
    if not shapes or not painted:
        problems.append(f"{name}: draws nothing in the current colour")
    return problems


def symbols_in(text, openings):
    """The symbols that a source file names. `openings` are the first words of the glyphs' names."""
    symbols = set(ADDRESS.findall(text))
    for value in ASSIGNMENT.findall(text):
        symbols.update(name for name in LITERAL.findall(value) if WORD.fullmatch(name))
    symbols.update(name for name in DOTTED.findall(text) if name.split(".")[0] in openings)
    return symbols


def problems_of_uses(sources, glyphs):
    """`sources` maps a path to its text. Names every use of a symbol without a glyph, and a reading that found none."""
    openings = {name.split(".")[0] for name in glyphs}
    problems = []
    found = {"qml": 0, "cpp": 0}
    for path, text in sorted(sources.items()):
        for symbol in sorted(symbols_in(text, openings)):
            found[path.rsplit(".", 1)[-1]] += 1
            if symbol not in glyphs:
                problems.append(f"{path}: names the symbol {symbol}, which has no glyph")
    for kind, folder in (("qml", "shell/screens/"), ("cpp", "shell/adapter/")):
        if not found[kind] and any(path.startswith(folder) for path in sources):
            problems.append(f"no symbol was found in any .{kind} file")
    return problems


def main(root):
    glyphs = {file.stem: file.read_text() for file in (root / "shell/glyphs").glob("*.svg")}
    problems = [f"{name}: there is no such glyph" for name in NEEDED if name not in glyphs]
    problems += [f"{name}: is not in the list of this test" for name in glyphs if name not in NEEDED]
    for name, text in sorted(glyphs.items()):
        problems += problems_of_glyph(name, text)
    sources = {
        str(file.relative_to(root)): file.read_text() for kind in ("*.qml", "*.cpp") for file in (root / "shell").rglob(kind)
    }
    problems += problems_of_uses(sources, glyphs)
    print("\n".join(problems) or f"{len(glyphs)} glyphs and {len(sources)} source files read")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1])))
