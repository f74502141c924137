#include "store/sqlite/TableForm.h"

#include <algorithm>

namespace quillbook {
namespace {

/// SQLite's own word, and not what the schema's rows claim.
const std::string otherThanTable = "SELECT 1 FROM pragma_table_list WHERE schema = 'main' "
                                   "AND name = ? COLLATE NOCASE AND type IN ('view', 'virtual') LIMIT 1";
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
