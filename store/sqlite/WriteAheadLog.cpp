#include "store/sqlite/WriteAheadLog.h"

#include "core/records/Cancellation.h"

#include <array>
#include <fstream>
#include <memory>
#include <string_view>

#include <sqlite3.h>

namespace quillbook {
namespace {

struct Closer {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
};

/// SQLite's database file format, section 4.1: a log begins with a magic number and the version of its
/// format, both big-endian. SQLite answers "unable to open" for another version.
bool isLogOfKnownVersion(const std::filesystem::path& log) {
    constexpr std::string_view magicNumber = "\x37\x7F\x06";
    constexpr std::string_view version = {"\x00\x2D\xE2\x18", 4}; // 3007000
    std::array<char, 8> start{};
    std::ifstream file(log, std::ios::binary);
    if (!file.read(start.data(), start.size())) return false;
    const std::string_view text(start.data(), start.size());
    return text.starts_with(magicNumber) && text.ends_with(version);
}

std::filesystem::path companion(const std::filesystem::path& database, const char* suffix) {
    return database.native() + suffix;
}

/// Whether no reader can find a row in the log any more that the database lacks: it was folded in, or never
/// belonged to a database. After any other failure its rows may be there still.
bool isLogOfNoUse(int result, const std::filesystem::path& database) {
    const int kind = result & 0xFF; // The rest of an extended result code tells more of the same failure.
    if (kind == SQLITE_CANTOPEN) return !isLogOfKnownVersion(companion(database, "-wal"));
    return kind == SQLITE_OK || kind == SQLITE_NOTADB || kind == SQLITE_CORRUPT;
}

int switchToRollbackJournal(const std::filesystem::path& database, const std::stop_token& stop) {
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_FULLMUTEX;
    sqlite3* handle = nullptr;
    const int opened = sqlite3_open_v2(database.c_str(), &handle, flags, nullptr);
    const std::unique_ptr<sqlite3, Closer> connection(handle);
    if (opened != SQLITE_OK) return opened;
    const std::stop_callback onStop(stop, [handle] { sqlite3_interrupt(handle); });
    return sqlite3_exec(handle, "PRAGMA journal_mode=DELETE", nullptr, nullptr, nullptr);
}

} // namespace

void foldWriteAheadLog(const std::filesystem::path& database, const std::stop_token& stop) {
    throwIfCancelled(stop);
    if (!isLogOfNoUse(switchToRollbackJournal(database, stop), database)) return throwIfCancelled(stop);
    // SQLite removes its log; one that did not belong to the database, or that it could not use, still
    // stands.
    std::error_code ignored;
    for (const char* suffix : {"-wal", "-shm"})
        std::filesystem::remove(companion(database, suffix), ignored);
    throwIfCancelled(stop);
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
