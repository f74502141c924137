#include "store/sqlite/TableForm.h"

#include <algorithm>

namespace quillbook {
namespace {

/// A virtual table has no page of its own; a view is no table.
const std::string otherThanTable = "SELECT 1 FROM sqlite_master WHERE name = ? COLLATE NOCASE "
                                   "AND NOT (type = 'table' AND rootpage > 0) LIMIT 1";
/// PRAGMA table_xinfo: 2 and 3 are generated columns.
const std::string generatedColumns =
    "SELECT lower(name) AS name FROM pragma_table_xinfo(?) WHERE hidden <> 0";

bool isOrdinary(SQLiteDatabase& database, const std::string& table, std::span<const std::string> columns) {
    const SQLiteValue binding = table;
    if (!database.query(otherThanTable, {&binding, 1}).empty()) return false;
    const auto generated = database.query(generatedColumns, {&binding, 1});
    return std::none_of(generated.begin(), generated.end(), [&](const SQLiteRow& row) {
        return std::find(columns.begin(), columns.end(), row.text("name").value_or("")) != columns.end();
    });
}

} // namespace

bool areOrdinaryTables(SQLiteDatabase& database, std::span<const std::string> tables,
                       std::span<const std::string> columns) {
    return std::all_of(tables.begin(), tables.end(),
                       [&](const std::string& table) { return isOrdinary(database, table, columns); });
}

} // namespace quillbook
