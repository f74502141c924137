#pragma once

#include "store/sqlite/SQLiteDatabase.h"

#include <span>
#include <string>

namespace quillbook {

/// Whether each of the names is either that of an ordinary table or of nothing. A view, a virtual table or a
/// generated column under a name that is read would run whatever statement its database holds. Throws as
/// SQLiteDatabase::query.
bool areOrdinaryTables(SQLiteDatabase& database, std::span<const std::string> names);

} // namespace quillbook
