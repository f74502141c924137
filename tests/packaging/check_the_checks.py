"""The checks of this folder, tried on what they must refuse and what they must let pass."""

import tempfile
import unittest
from pathlib import Path

from check_glyphs import problems_of_glyph, problems_of_uses, symbols_in
from check_install import expected_files, png_size, problems_of
from check_metainfo import EXPLAINED, unexplained_remarks
from check_package import imports_in, names_in
from check_package import problems_of as problems_of_package

GOOD = """<svg xmlns="http://www.w3.org/2000/svg" width="24" height="24" viewBox="0 0 24 24">
<path fill="none" stroke="currentColor" stroke-width="1.6" stroke-linecap="round" stroke-linejoin="round" d="M4 4h8"/></svg>"""
GLYPHS = {"xmark": GOOD, "person.fill": GOOD, "checkmark": GOOD}


class Glyphs(unittest.TestCase):
    def test_a_good_glyph_passes(self):
        self.assertEqual(problems_of_glyph("a", GOOD), [])

    def test_what_a_glyph_may_not_have_is_named(self):
        for before, after in (
            ('viewBox="0 0 24 24"', 'viewBox="0 0 20 20"'),
            ('width="24"', 'width="16"'),
            ('stroke="currentColor"', 'stroke="#000000"'),
            ('fill="none"', 'fill="red"'),
            ('fill="none"', 'style="fill:red"'),
            ('"1.6"', '"2"'),
            (' stroke-linecap="round"', ""),
            ("<path", "<image"),
            ("<path", '<path href="a"'),
            ("/></svg>", "/>"),
            ('stroke="currentColor"', 'stroke="none"'),
        ):
            with self.subTest(after):
                self.assertTrue(problems_of_glyph("a", GOOD.replace(before, after)))

    def test_symbols_are_found_in_every_form(self):
        for text, symbols in (
            ('symbol: "xmark"', {"xmark"}),
            ('symbol: root.isGroup ? "person.2.fill" : "person.fill"', {"person.2.fill", "person.fill"}),
            ('symbol: root.isGroup\n        ? "person.2.fill"\n        : "person.fill"', {"person.2.fill", "person.fill"}),
            ('facts.symbol = count > 0 ? QStringLiteral("xmark") : QStringLiteral("checkmark");', {"xmark", "checkmark"}),
            ('source: "image://glyph/mark/ff000000"', {"mark"}),
            ('facts("report", "checkmark.gone", line)', {"checkmark.gone"}),
            ('property string symbol: ""', set()),
            ('if (symbol === "") text: "words of ours"', set()),
            ('{ symbol: "xmark", role: "fact" }', {"xmark"}),
            ('symbol: "xmark"\n    text: "json"', {"xmark"}),
        ):
            with self.subTest(text):
                self.assertEqual(symbols_in(text, {"checkmark", "person"}), symbols)

    def test_a_symbol_without_a_glyph_is_named(self):
        self.assertTrue(problems_of_uses({"shell/screens/A.qml": 'symbol: "gone"'}, GLYPHS))
        self.assertFalse(problems_of_uses({"shell/screens/A.qml": 'symbol: "xmark"'}, GLYPHS))

    def test_screens_that_seem_to_name_no_symbol_are_a_failure(self):
        self.assertTrue(problems_of_uses({"shell/screens/A.qml": "Item {}"}, GLYPHS))
        self.assertTrue(problems_of_uses({"shell/adapter/A.cpp": "int a;"}, GLYPHS))


class Metainfo(unittest.TestCase):
    def test_every_remark_but_the_explained_one_is_kept(self):
        report = f"{EXPLAINED[0]} a.B\nW: a.B:~: release-time-missing\n   words\n\n✔ Validation was successful: pedantic: 1\n"
        self.assertEqual(unexplained_remarks(report), ["W: a.B:~: release-time-missing"])


class Install(unittest.TestCase):
    def test_a_missing_file_and_one_too_many_are_named(self):
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "share").mkdir()
            (Path(folder) / "share/other").write_text("")
            problems = problems_of(Path(folder), Path(folder), Path(folder), True)
            self.assertIn("bin/quillbook is missing", problems)
            self.assertIn("share/other is installed, too", problems)
            self.assertEqual(len(problems), len(expected_files(True)) + 1)

    def test_what_is_no_png_has_no_size(self):
        self.assertIsNone(png_size(b"<svg/>"))


class Package(unittest.TestCase):
    DEPENDS = "libc6 (>= 2.34), qml6-module-qtquick, dbus | dbus-broker, python3:any"

    def test_imports_are_found_in_every_form(self):
        text = 'import QtQuick\nimport QtQuick.Templates as T\n  import QtQml.Models 6.4\nimport "components"\n// import Gone\n'
        self.assertEqual(imports_in([text]), {"QtQuick", "QtQuick.Templates", "QtQml.Models"})

    def test_names_are_read_without_versions(self):
        self.assertEqual(names_in(self.DEPENDS), {"libc6", "qml6-module-qtquick", "dbus", "dbus-broker", "python3"})

    def test_what_is_imported_and_depended_on_passes(self):
        self.assertEqual(problems_of_package({"QtQuick", "Quillbook"}, self.DEPENDS), [])

    def test_a_missing_dependency_is_named(self):
        self.assertEqual(len(problems_of_package({"QtQuick", "QtQuick.Dialogs"}, self.DEPENDS)), 1)

    def test_an_import_without_a_package_is_named(self):
        self.assertEqual(len(problems_of_package({"QtQuick", "QtQuick.Shapes3D"}, self.DEPENDS)), 1)

    def test_screens_that_seem_to_import_nothing_are_a_failure(self):
        self.assertTrue(problems_of_package(set(), self.DEPENDS))


if __name__ == "__main__":
    unittest.main()
