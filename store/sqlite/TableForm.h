#pragma once

#include "store/sqlite/SQLiteDatabase.h"

#include <span>
#include <string>

namespace quillbook {

/// Whether each of the names is either that of an ordinary table or of nothing, and none of the given
/// columns, in lower case, is a generated one in any of them. A view, a virtual table or a generated column
/// that is read runs whatever its database holds for it. Throws as SQLiteDatabase::query.
bool areOrdinaryTables(SQLiteDatabase& database, std::span<const std::string> tables,
                       std::span<const std::string> columns);

} // namespace quillbook
