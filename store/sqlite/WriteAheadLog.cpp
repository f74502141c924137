#include "store/sqlite/WriteAheadLog.h"

#include <array>
#include <fstream>
#include <memory>

#include <sqlite3.h>

namespace quillbook {
namespace {

struct Closer {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
};

bool hasDiskFailed(int result) {
    const int kind = result & 0xFF; // The rest of an extended result code tells more of the same failure.
    return kind == SQLITE_FULL || kind == SQLITE_IOERR || kind == SQLITE_NOMEM || kind == SQLITE_CANTOPEN;
}

int switchToRollbackJournal(const std::filesystem::path& database) {
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_FULLMUTEX;
    sqlite3* handle = nullptr;
    const int opened = sqlite3_open_v2(database.c_str(), &handle, flags, nullptr);
    const std::unique_ptr<sqlite3, Closer> connection(handle);
    if (opened != SQLITE_OK) return opened;
    return sqlite3_exec(handle, "PRAGMA journal_mode=DELETE", nullptr, nullptr, nullptr);
}

std::filesystem::path companion(const std::filesystem::path& database, const char* suffix) {
    return database.native() + suffix;
}

} // namespace

void foldWriteAheadLog(const std::filesystem::path& database) {
    if (hasDiskFailed(switchToRollbackJournal(database))) return;
    // SQLite removes its log; one that did not belong to the database, or that it could not use, still
    // stands.
    std::error_code ignored;
    for (const char* suffix : {"-wal", "-shm"})
        std::filesystem::remove(companion(database, suffix), ignored);
}

bool usesWriteAheadLog(const std::filesystem::path& database) {
    std::error_code unreachable;
    if (std::filesystem::exists(std::filesystem::symlink_status(companion(database, "-wal"), unreachable)))
        return true;
    // SQLite's database file format, section 1.3.3: 2 in either version number means a write-ahead log.
    constexpr std::size_t writeVersion = 18;
    constexpr std::size_t readVersion = 19;
    constexpr char writeAheadLog = 2;
    std::array<char, readVersion + 1> start{};
    std::ifstream file(database, std::ios::binary);
    if (!file.read(start.data(), start.size())) return false;
    return start[writeVersion] == writeAheadLog || start[readVersion] == writeAheadLog;
}

} // namespace quillbook
