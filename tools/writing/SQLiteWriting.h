#pragma once

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

struct sqlite3;
struct sqlite3_stmt;

namespace quillbook::sample {

/// NULL, a number, a text, a blob. Texts and blobs stay with the caller.
using ColumnValue =
    std::variant<std::monostate, std::int64_t, std::string_view, std::span<const std::uint8_t>>;

inline ColumnValue textOrNull(const std::optional<std::string>& text) {
    return text ? ColumnValue(std::string_view(*text)) : ColumnValue();
}

/// A new database file that is written by one thread. Throws SampleError.
class WritableDatabase {
public:
    explicit WritableDatabase(const std::filesystem::path& file);

    void execute(const char* script);
    std::int64_t lastRowID() const;
    sqlite3* handle() const { return database_.get(); }

private:
    struct Closer {
        void operator()(sqlite3* database) const;
    };
    std::unique_ptr<sqlite3, Closer> database_;
};

/// One prepared statement that is run again and again.
class PreparedWrite {
public:
    PreparedWrite(WritableDatabase& database, std::string_view sql);

    void run(std::initializer_list<ColumnValue> values);

private:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    WritableDatabase& database_;
    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

/// "INSERT INTO table (columns) VALUES (?, …)" for a list of columns joined with commas.
std::string insertStatement(std::string_view table, std::string_view columns);

} // namespace quillbook::sample
