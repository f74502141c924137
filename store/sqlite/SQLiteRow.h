#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillbook {

struct SQLiteNull {
    bool operator==(const SQLiteNull&) const = default;
};

/// integer, real, text, blob or null: the five storage classes of SQLite, in this order.
using SQLiteValue = std::variant<std::int64_t, double, std::string, std::vector<std::uint8_t>, SQLiteNull>;

enum class SQLiteKind : std::uint32_t { integer, real, text, blob, null };

/// One row of a result: a dictionary from column name to value. Where two columns share a name, the rightmost
/// counts. A plain value: it keeps its bytes alive itself, and copies share them. Rows of one result lie
/// packed side by side, since a whole conversation is in memory at once. The views that it gives live as long
/// as any copy of the row.
class SQLiteRow {
public:
    SQLiteRow() = default;

    /// Only a text; nothing for a missing column and for every other case.
    std::optional<std::string_view> text(std::string_view column) const;
    /// Only a blob, which may be empty.
    std::optional<std::span<const std::uint8_t>> blob(std::string_view column) const;
    /// An integer, or a real truncated toward zero. A real that is no number or lies outside the range of a
    /// signed 64-bit integer is a fault of the program and stops the process: a caller that cannot rule it
    /// out asks `storedInteger`.
    std::optional<std::int64_t> integer(std::string_view column) const;
    /// As `integer`, but such a real gives nothing: for databases, whose contents nobody vouches for.
    std::optional<std::int64_t> storedInteger(std::string_view column) const;

    /// Nothing for a missing column.
    std::optional<SQLiteValue> value(std::string_view column) const;
    /// The whole dictionary.
    std::map<std::string, SQLiteValue> values() const;

private:
    friend class SQLiteRowPacker;
    struct Block;
    struct Cell;

    std::optional<Cell> cell(std::string_view column) const;
    Cell cellAt(std::size_t index) const;

    std::shared_ptr<const Block> block_;
    const std::uint32_t* heads_ = nullptr;
};

/// Packs rows as SQLite steps them. Its cells are those of one row, from the first column to the last. Throws
/// std::length_error for a row of more than 2 GiB, which SQLite itself does not make.
class SQLiteRowPacker {
public:
    explicit SQLiteRowPacker(std::vector<std::string> columns);
    ~SQLiteRowPacker();
    SQLiteRowPacker(const SQLiteRowPacker&) = delete;
    SQLiteRowPacker& operator=(const SQLiteRowPacker&) = delete;

    void addInteger(std::int64_t value);
    void addReal(double value);
    void addText(std::string_view text);
    void addBlob(std::span<const std::uint8_t> bytes);
    void addNull();
    /// The row made of the cells added since the last one.
    SQLiteRow finishRow();

private:
    void addHead(SQLiteKind kind);
    void addBytes(const void* bytes, std::size_t count);
    void addSized(SQLiteKind kind, const void* bytes, std::size_t count);

    std::shared_ptr<const std::vector<std::string>> columns_;
    std::shared_ptr<SQLiteRow::Block> block_;
    std::vector<std::uint32_t> heads_;
    std::vector<std::uint32_t> payload_;
};

} // namespace quillbook
