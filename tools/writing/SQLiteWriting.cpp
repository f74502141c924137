#include "tools/writing/SQLiteWriting.h"

#include "tools/writing/SampleError.h"

#include <algorithm>

#include <sqlite3.h>

namespace quillbook::sample {
namespace {

[[noreturn]] void fail(sqlite3* database) {
    throw SampleError(SampleError::Reason::databaseFailed, sqlite3_errmsg(database));
}

/// Binds one value; texts and blobs outlive the run.
struct Binder {
    sqlite3_stmt* statement;
    int index;

    int operator()(std::monostate /*absent*/) const { return sqlite3_bind_null(statement, index); }
    int operator()(std::int64_t number) const { return sqlite3_bind_int64(statement, index, number); }
    int operator()(std::string_view text) const {
        const char* data = text.data() == nullptr ? "" : text.data();
        return sqlite3_bind_text64(statement, index, data, text.size(), SQLITE_STATIC, SQLITE_UTF8);
    }
    int operator()(std::span<const std::uint8_t> blob) const {
        return sqlite3_bind_blob64(statement, index, blob.data(), blob.size(), SQLITE_STATIC);
    }
};

} // namespace

void WritableDatabase::Closer::operator()(sqlite3* database) const {
    sqlite3_close(database);
}

void PreparedWrite::Finalizer::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

WritableDatabase::WritableDatabase(const std::filesystem::path& file) {
    sqlite3* database = nullptr;
    const int result =
        sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    database_.reset(database);
    if (result != SQLITE_OK) fail(database);
}

void WritableDatabase::execute(const char* script) {
    if (sqlite3_exec(database_.get(), script, nullptr, nullptr, nullptr) != SQLITE_OK) fail(database_.get());
}

std::int64_t WritableDatabase::lastRowID() const {
    return sqlite3_last_insert_rowid(database_.get());
}

PreparedWrite::PreparedWrite(WritableDatabase& database, std::string_view sql) : database_(database) {
    sqlite3_stmt* statement = nullptr;
    const int result = sqlite3_prepare_v3(database.handle(), sql.data(), static_cast<int>(sql.size()),
                                          SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    if (result != SQLITE_OK) fail(database.handle());
    statement_.reset(statement);
}

void PreparedWrite::run(std::initializer_list<ColumnValue> values) {
    int index = 0;
    for (const ColumnValue& value : values) {
        if (std::visit(Binder{statement_.get(), ++index}, value) != SQLITE_OK) fail(database_.handle());
    }
    const int result = sqlite3_step(statement_.get());
    if (result != SQLITE_DONE) fail(database_.handle());
    sqlite3_reset(statement_.get());
}

std::string insertStatement(std::string_view table, std::string_view columns) {
    std::string marks = "?";
    const auto commas = std::count(columns.begin(), columns.end(), ',');
    for (auto index = commas; index > 0; --index)
        marks += ", ?";
    return "INSERT INTO " + std::string(table) + " (" + std::string(columns) + ") VALUES (" + marks + ")";
}

} // namespace quillbook::sample
