"""The checks of this folder, tried on what they must refuse and what they must let pass."""

import unittest

from check_documents import missing_paths
from check_includes import problems_of


class Includes(unittest.TestCase):
    def test_a_lower_room_may_not_see_a_higher_one(self):
        self.assertTrue(problems_of("core/text/A.cpp", '#include "core/records/SourceID.h"\n'))
        self.assertTrue(problems_of("export/A.cpp", '#include "store/MessagesRepository.h"\n'))
        self.assertTrue(problems_of("core/model/A.h", '#include "platform/UserFolders.h"\n'))

    def test_a_higher_room_may_see_a_lower_one(self):
        self.assertFalse(problems_of("store/A.cpp", '#include "store/sqlite/SQLiteRow.h"\n#include <vector>\n'))

    def test_a_library_stays_in_its_room(self):
        self.assertTrue(problems_of("store/A.cpp", "#include <sqlite3.h>\n"))
        self.assertFalse(problems_of("store/sqlite/A.cpp", "#include <sqlite3.h>\n"))
        self.assertTrue(problems_of("core/model/A.cpp", "#include <QObject>\n"))

    def test_paths_start_at_the_root(self):
        self.assertTrue(problems_of("store/A.cpp", '#include "MessagesRepository.h"\n'))

    def test_a_file_outside_every_room_is_named(self):
        self.assertTrue(problems_of("elsewhere/A.cpp", ""))


class Documents(unittest.TestCase):
    def test_a_path_that_is_not_there_is_named(self):
        self.assertEqual(missing_paths("see `core/gone/` and `core/text/`", lambda path: path == "core/text/"), ["core/gone/"])


if __name__ == "__main__":
    unittest.main()
