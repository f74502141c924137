#include "tests/sample/LibraryUnderTest.h"

#include "tests/support/TemporaryFolder.h"

#include <memory>
#include <stdexcept>

#include <sqlite3.h>

namespace quillbook::sample::test {
namespace {

struct WrittenLibrary {
    quillbook::test::TemporaryFolder folder;
    SampleReport report;

    WrittenLibrary() {
        SampleOptions options;
        options.home = folder.path();
        report = writeSampleLibrary(options);
    }
};

const WrittenLibrary& writtenLibrary() {
    static const WrittenLibrary library;
    return library;
}

} // namespace

const SampleReport& defaultLibrary() {
    return writtenLibrary().report;
}

std::filesystem::path defaultHome() {
    return writtenLibrary().folder.path();
}

std::vector<std::string> queryColumn(const std::filesystem::path& database, const std::string& sql) {
    sqlite3* rawConnection = nullptr;
    const int opened = sqlite3_open_v2(database.c_str(), &rawConnection, SQLITE_OPEN_READONLY, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> connection(rawConnection, sqlite3_close);
    sqlite3_stmt* rawStatement = nullptr;
    if (opened != SQLITE_OK ||
        sqlite3_prepare_v2(connection.get(), sql.c_str(), -1, &rawStatement, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(connection.get()));
    }
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(rawStatement,
                                                                               sqlite3_finalize);
    std::vector<std::string> values;
    while (sqlite3_step(statement.get()) == SQLITE_ROW) {
        const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement.get(), 0));
        const auto length = static_cast<std::size_t>(sqlite3_column_bytes(statement.get(), 0));
        const bool isNull = sqlite3_column_type(statement.get(), 0) == SQLITE_NULL;
        values.push_back(isNull ? "NULL" : std::string(bytes == nullptr ? "" : bytes, length));
    }
    return values;
}

std::int64_t queryNumber(const std::filesystem::path& database, const std::string& sql) {
    return std::stoll(queryColumn(database, sql).at(0));
}

std::map<std::string, std::string> filesBelow(const std::filesystem::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        files[entry.path().lexically_relative(folder).string()] = quillbook::test::readFile(entry.path());
    }
    return files;
}

std::string contentsOf(const std::string& fileName) {
    for (const auto& [path, contents] : filesBelow(defaultHome())) {
        if (std::filesystem::path(path).filename() == fileName) return contents;
    }
    throw std::runtime_error("no file " + fileName);
}

} // namespace quillbook::sample::test
