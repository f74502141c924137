#include "store/sqlite/SQLiteRow.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace quillbook {

// A packed row is one head a column and behind the heads the payload, all in words of 32 bits. A head holds
// the value's kind in its low three bits and above them the offset of the value in words from the row's
// start. A number takes two words; a text or blob its length in bytes, then its bytes, filled up to a whole
// word.
namespace {

constexpr std::uint32_t kindMask = 7;
constexpr std::uint32_t kindBits = 3;
constexpr std::size_t maximumOffset = (std::size_t{1} << (32 - kindBits)) - 1;
// Large enough to make allocation cheap, small enough to be given back while a long result is being worked
// through.
constexpr std::size_t wordsPerBlock = 0x40000;

} // namespace

struct SQLiteRow::Block {
    std::shared_ptr<const std::vector<std::string>> columns;
    std::unique_ptr<std::uint32_t[]> words;
    std::size_t capacity = 0;
    std::size_t used = 0;
};

struct SQLiteRow::Cell {
    SQLiteKind kind;
    const std::uint32_t* words;

    template <typename Number>
    Number number() const {
        Number value{};
        std::memcpy(&value, words, sizeof value);
        return value;
    }
    std::span<const std::uint8_t> bytes() const {
        return {reinterpret_cast<const std::uint8_t*>(words + 1), words[0]};
    }
    std::string_view text() const { return {reinterpret_cast<const char*>(words + 1), words[0]}; }
};

using Kind = SQLiteKind;

SQLiteRow::Cell SQLiteRow::cellAt(std::size_t index) const {
    const std::uint32_t head = heads_[index];
    return {static_cast<Kind>(head & kindMask), heads_ + (head >> kindBits)};
}

std::optional<SQLiteRow::Cell> SQLiteRow::cell(std::string_view column) const {
    if (!block_) return std::nullopt;
    const std::vector<std::string>& columns = *block_->columns;
    for (std::size_t index = columns.size(); index > 0; --index) {
        if (columns[index - 1] == column) return cellAt(index - 1);
    }
    return std::nullopt;
}

std::optional<std::string_view> SQLiteRow::text(std::string_view column) const {
    const auto found = cell(column);
    if (!found || found->kind != Kind::text) return std::nullopt;
    return found->text();
}

std::optional<std::span<const std::uint8_t>> SQLiteRow::blob(std::string_view column) const {
    const auto found = cell(column);
    if (!found || found->kind != Kind::blob) return std::nullopt;
    return found->bytes();
}

std::optional<std::int64_t> SQLiteRow::storedInteger(std::string_view column) const {
    const auto found = cell(column);
    if (found && found->kind == Kind::integer) return found->number<std::int64_t>();
    if (!found || found->kind != Kind::real) return std::nullopt;
    constexpr double limit = 9'223'372'036'854'775'808.0; // 2^63, exactly
    const double whole = std::trunc(found->number<double>());
    if (!(whole >= -limit && whole < limit)) return std::nullopt;
    return static_cast<std::int64_t>(whole);
}

std::optional<std::int64_t> SQLiteRow::integer(std::string_view column) const {
    const auto value = storedInteger(column);
    if (value) return value;
    if (const auto found = cell(column); found && found->kind == Kind::real) std::abort();
    return std::nullopt;
}

std::optional<SQLiteValue> SQLiteRow::value(std::string_view column) const {
    const auto found = cell(column);
    if (!found) return std::nullopt;
    switch (found->kind) {
    case Kind::integer:
        return found->number<std::int64_t>();
    case Kind::real:
        return found->number<double>();
    case Kind::text:
        return std::string(found->text());
    case Kind::blob:
        return std::vector<std::uint8_t>(found->bytes().begin(), found->bytes().end());
    case Kind::null:
        return SQLiteNull();
    }
    return std::nullopt;
}

std::map<std::string, SQLiteValue> SQLiteRow::values() const {
    std::map<std::string, SQLiteValue> dictionary;
    if (!block_) return dictionary;
    for (const std::string& column : *block_->columns)
        dictionary.try_emplace(column, *value(column));
    return dictionary;
}

SQLiteRowPacker::SQLiteRowPacker(std::vector<std::string> columns)
    : columns_(std::make_shared<const std::vector<std::string>>(std::move(columns))) {}

SQLiteRowPacker::~SQLiteRowPacker() = default;

void SQLiteRowPacker::addHead(Kind kind) {
    const std::size_t offset = columns_->size() + payload_.size();
    if (offset > maximumOffset) throw std::length_error("A row is too large.");
    heads_.push_back(static_cast<std::uint32_t>(offset) << kindBits | static_cast<std::uint32_t>(kind));
}

void SQLiteRowPacker::addBytes(const void* bytes, std::size_t count) {
    if (count == 0) return;
    const std::size_t start = payload_.size();
    payload_.resize(start + (count + 3) / 4);
    std::memcpy(payload_.data() + start, bytes, count);
}

void SQLiteRowPacker::addSized(Kind kind, const void* bytes, std::size_t count) {
    addHead(kind);
    payload_.push_back(static_cast<std::uint32_t>(count));
    addBytes(bytes, count);
}

void SQLiteRowPacker::addInteger(std::int64_t value) {
    addHead(Kind::integer);
    addBytes(&value, sizeof value);
}

void SQLiteRowPacker::addReal(double value) {
    addHead(Kind::real);
    addBytes(&value, sizeof value);
}

void SQLiteRowPacker::addText(std::string_view text) {
    addSized(Kind::text, text.data(), text.size());
}

void SQLiteRowPacker::addBlob(std::span<const std::uint8_t> bytes) {
    addSized(Kind::blob, bytes.data(), bytes.size());
}

void SQLiteRowPacker::addNull() {
    addHead(Kind::null);
}

SQLiteRow SQLiteRowPacker::finishRow() {
    const std::size_t count = heads_.size() + payload_.size();
    if (!block_ || block_->capacity - block_->used < count) {
        block_ = std::make_shared<SQLiteRow::Block>();
        block_->columns = columns_;
        block_->capacity = std::max(count, wordsPerBlock);
        block_->words.reset(new std::uint32_t[block_->capacity]);
    }
    std::uint32_t* start = block_->words.get() + block_->used;
    std::copy(heads_.begin(), heads_.end(), start);
    std::copy(payload_.begin(), payload_.end(), start + heads_.size());
    block_->used += count;
    heads_.clear();
    payload_.clear();
    SQLiteRow row;
    row.block_ = block_;
    row.heads_ = start;
    return row;
}

} // namespace quillbook
