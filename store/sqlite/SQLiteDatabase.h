#pragma once

#include "store/sqlite/SQLiteError.h"
#include "store/sqlite/SQLiteRow.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

struct sqlite3;

namespace quillbook {

/// What a connection is held to whose database nobody vouches for, such as one out of a backup: its schema is
/// not trusted, what is sorted never spills to the disk, and a statement can be broken off.
struct SQLiteRestraint {
    std::stop_token stop;          ///< A request to stop ends a running statement with CancellationError.
    int longestValue = 256 << 20U; ///< Bytes of a value or a row; a longer one fails its statement.
    /// What a result may hold, and the steps of SQLite's machine that may lead to it, beside those for which
    /// the size of the file accounts: a joined table repeats a long text as often as it has rows, and a
    /// damaged tree may seem endless.
    std::uint64_t resultBytes = 64 << 20U;
    std::uint64_t steps = 100'000'000;
};

/// A read-only connection to one SQLite file; never creates or alters it, though SQLite itself may put a
/// "-wal" and a "-shm" beside a database in WAL mode. Safe to call from any thread: one statement at a time.
/// It closes as the object goes.
class SQLiteDatabase {
public:
    /// Throws SQLiteError when the file cannot be opened; its `sql` is then absent. The file is not read yet.
    explicit SQLiteDatabase(const std::filesystem::path& file,
                            const std::optional<SQLiteRestraint>& restraint = std::nullopt);

    /// Runs one statement to its end and returns every row in order. `bindings[0]` is parameter 1; a text
    /// ends at its first NUL. Text that is not UTF-8 comes back repaired. Throws SQLiteError, at once when
    /// the database is locked, and CancellationError; the connection stays usable.
    std::vector<SQLiteRow> query(const std::string& sql, std::span<const SQLiteValue> bindings = {});

private:
    struct Closer {
        void operator()(sqlite3* handle) const;
    };
    /// What SQLite's progress handler looks at.
    struct Progress {
        std::stop_token stop;
        std::uint64_t remainingSteps = 0;
    };

    void restrain(const SQLiteRestraint& restraint, std::uint64_t fileSize);
    static int shallBreakOff(void* progress);

    Progress progress_;
    std::uint64_t mostSteps_ = 0;
    std::uint64_t mostResultBytes_ = UINT64_MAX;
    std::unique_ptr<sqlite3, Closer> handle_;
    std::mutex lock_; ///< Held from prepare to finalise.
};

} // namespace quillbook
