#include "store/sqlite/SQLiteError.h"

#include <utility>

#include <fmt/format.h>

namespace quillbook {

SQLiteError::SQLiteError(std::int32_t resultCode, std::string words, std::optional<std::string> statement)
    : code(resultCode), message(std::move(words)), sql(std::move(statement)) {}

std::string SQLiteError::description() const {
    const std::string text = fmt::format("SQLite {}: {}", code, message);
    return sql ? fmt::format("{} [{}]", text, *sql) : text;
}

} // namespace quillbook
