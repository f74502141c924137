#include "store/sqlite/SQLiteDatabase.h"

#include "core/records/Cancellation.h"
#include "core/text/UTF8.h"

#include <stdexcept>

#include <sqlite3.h>

namespace quillbook {
namespace {

struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalizer>;

// SQLITE_TRANSIENT, spelt without its C cast: SQLite takes a copy of what is bound.
const auto copyOfBytes = reinterpret_cast<sqlite3_destructor_type>(std::intptr_t{-1});

/// Binds one value; gives SQLite's result code.
struct Binder {
    sqlite3_stmt* statement;
    int parameter;

    int operator()(std::int64_t value) const { return sqlite3_bind_int64(statement, parameter, value); }
    int operator()(double value) const { return sqlite3_bind_double(statement, parameter, value); }
    int operator()(const std::string& text) const {
        return sqlite3_bind_text(statement, parameter, text.c_str(), -1, copyOfBytes);
    }
    int operator()(const std::vector<std::uint8_t>& bytes) const {
        // A null pointer would bind NULL instead of an empty blob.
        const void* start = bytes.empty() ? static_cast<const void*>("") : bytes.data();
        return sqlite3_bind_blob(statement, parameter, start, static_cast<int>(bytes.size()), copyOfBytes);
    }
    int operator()(SQLiteNull /*value*/) const { return sqlite3_bind_null(statement, parameter); }
};

std::size_t addText(SQLiteRowPacker& packer, sqlite3_stmt* statement, int column) {
    const unsigned char* start = sqlite3_column_text(statement, column);
    const std::string_view text = start == nullptr ? "" : reinterpret_cast<const char*>(start);
    if (isValidUTF8(text)) {
        packer.addText(text);
    } else {
        packer.addText(repairedUTF8(text));
    }
    return text.size();
}

std::size_t addBlob(SQLiteRowPacker& packer, sqlite3_stmt* statement, int column) {
    const auto count = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
    const auto* start = static_cast<const std::uint8_t*>(sqlite3_column_blob(statement, column));
    packer.addBlob(start == nullptr ? std::span<const std::uint8_t>() : std::span(start, count));
    return count;
}

/// Gives the bytes of a text or blob.
std::size_t addCell(SQLiteRowPacker& packer, sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        packer.addInteger(sqlite3_column_int64(statement, column));
        return 0;
    case SQLITE_FLOAT:
        packer.addReal(sqlite3_column_double(statement, column));
        return 0;
    case SQLITE_TEXT:
        return addText(packer, statement, column);
    case SQLITE_BLOB:
        return addBlob(packer, statement, column);
    default:
        packer.addNull();
        return 0;
    }
}

constexpr int stepsBetweenLooks = 1'000;
constexpr std::uint64_t bytesOfACell = 16; // Of a row as it is kept, beside its texts and blobs.

std::vector<std::string> columnNames(sqlite3_stmt* statement) {
    std::vector<std::string> names;
    const int count = sqlite3_column_count(statement);
    for (int column = 0; column < count; ++column) {
        const char* name = sqlite3_column_name(statement, column);
        names.emplace_back(name == nullptr ? "" : name);
    }
    return names;
}

} // namespace

void SQLiteDatabase::Closer::operator()(sqlite3* handle) const {
    sqlite3_close(handle);
}

SQLiteDatabase::SQLiteDatabase(const std::filesystem::path& file,
                               const std::optional<SQLiteRestraint>& restraint) {
    constexpr int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_FULLMUTEX;
    sqlite3* handle = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &handle, flags, nullptr);
    handle_.reset(handle);
    if (result == SQLITE_OK) {
        std::error_code unknown;
        const auto size = std::filesystem::file_size(file, unknown);
        if (restraint) restrain(*restraint, unknown ? 0 : size);
        return;
    }
    const std::string message = handle_ ? sqlite3_errmsg(handle) : "Unable to open database";
    handle_.reset();
    throw SQLiteError(result, message, std::nullopt);
}

void SQLiteDatabase::restrain(const SQLiteRestraint& restraint, std::uint64_t fileSize) {
    constexpr std::uint64_t resultBytesPerByte = 8;
    constexpr std::uint64_t stepsPerByte = 200;
    sqlite3* handle = handle_.get();
    progress_.stop = restraint.stop;
    mostSteps_ = restraint.steps + stepsPerByte * fileSize;
    mostResultBytes_ = restraint.resultBytes + resultBytesPerByte * fileSize;
    sqlite3_progress_handler(handle, stepsBetweenLooks, shallBreakOff, &progress_);
    sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, restraint.longestValue);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_exec(handle, "PRAGMA temp_store=MEMORY", nullptr, nullptr, nullptr);
}

int SQLiteDatabase::shallBreakOff(void* progress) {
    auto& now = *static_cast<Progress*>(progress);
    if (now.stop.stop_requested() || now.remainingSteps < stepsBetweenLooks) return 1;
    now.remainingSteps -= stepsBetweenLooks;
    return 0;
}

std::vector<SQLiteRow> SQLiteDatabase::query(const std::string& sql, std::span<const SQLiteValue> bindings) {
    const std::lock_guard guard(lock_);
    if (!handle_) throw SQLiteError(SQLITE_MISUSE, "Database is closed", sql);
    const auto fail = [&](int result) {
        if (result == SQLITE_INTERRUPT) throwIfCancelled(progress_.stop);
        throw SQLiteError(result, sqlite3_errmsg(handle_.get()), sql);
    };

    progress_.remainingSteps = mostSteps_;
    sqlite3_stmt* prepared = nullptr;
    const int result = sqlite3_prepare_v2(handle_.get(), sql.c_str(), -1, &prepared, nullptr);
    const Statement statement(prepared);
    if (result != SQLITE_OK || !statement) fail(result);

    int parameter = 0;
    for (const SQLiteValue& value : bindings) {
        const int bound = std::visit(Binder{prepared, ++parameter}, value);
        if (bound != SQLITE_OK) fail(bound);
    }

    std::vector<std::string> names = columnNames(prepared);
    const int columnCount = static_cast<int>(names.size());
    SQLiteRowPacker packer(std::move(names));
    std::vector<SQLiteRow> rows;
    std::uint64_t resultBytes = 0;
    while (true) {
        const int step = sqlite3_step(prepared);
        if (step == SQLITE_DONE) return rows;
        if (step != SQLITE_ROW) fail(step);
        try {
            for (int column = 0; column < columnCount; ++column) {
                resultBytes += bytesOfACell + addCell(packer, prepared, column);
            }
        } catch (const std::length_error&) {
            throw SQLiteError(SQLITE_TOOBIG, "string or blob too big", sql);
        }
        rows.push_back(packer.finishRow());
        if (resultBytes > mostResultBytes_) throw SQLiteError(SQLITE_TOOBIG, "result too big", sql);
    }
}

} // namespace quillbook
