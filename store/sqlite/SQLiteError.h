#pragma once

#include "core/records/DescribedError.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quillbook {

/// A failure of SQLite, in its own words.
class SQLiteError final : public DescribedError {
public:
    SQLiteError(std::int32_t code, std::string message, std::optional<std::string> sql);

    /// As in "SQLite 14: unable to open database file", with the failed statement behind it in square
    /// brackets.
    std::string description() const override;

    std::int32_t code; ///< SQLite's result code.
    std::string message;
    std::optional<std::string> sql; ///< Absent for a failure to open.
};

} // namespace quillbook
