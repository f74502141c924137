#include "store/sqlite/TableForm.h"

#include <algorithm>

namespace quillbook {
namespace {

bool hasRows(SQLiteDatabase& database, const std::string& sql, const std::string& name) {
    const SQLiteValue binding = name;
    return !database.query(sql, {&binding, 1}).empty();
}

/// A virtual table has no page of its own; a view is no table.
const std::string otherThanTable = "SELECT 1 FROM sqlite_master WHERE name = ? COLLATE NOCASE "
                                   "AND NOT (type = 'table' AND rootpage > 0) LIMIT 1";
/// PRAGMA table_xinfo: 2 and 3 are generated columns, 1 is one of a virtual table.
const std::string generatedColumn = "SELECT 1 FROM pragma_table_xinfo(?) WHERE hidden <> 0 LIMIT 1";

} // namespace

bool areOrdinaryTables(SQLiteDatabase& database, std::span<const std::string> names) {
    return std::none_of(names.begin(), names.end(), [&](const std::string& name) {
        return hasRows(database, otherThanTable, name) || hasRows(database, generatedColumn, name);
    });
}

} // namespace quillbook
