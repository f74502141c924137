#pragma once

#include "core/text/Date.h"
#include "store/sqlite/SQLiteRow.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace quillbook {

/// The instant that a stored count stands for: seconds from 2001-01-01 UTC in old databases, nanoseconds in
/// new ones, told apart by magnitude.
Date messageDate(std::int64_t raw);

/// The same of a column; nothing when it holds no number.
std::optional<Date> messageDate(const SQLiteRow& row, std::string_view column);

} // namespace quillbook
