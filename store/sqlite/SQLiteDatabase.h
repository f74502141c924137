#pragma once

#include "store/sqlite/SQLiteError.h"
#include "store/sqlite/SQLiteRow.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

struct sqlite3;

namespace quillbook {

/// A read-only connection to one SQLite file; never creates or alters it, though SQLite itself may put a
/// "-wal" and a "-shm" beside a database in WAL mode. Safe to call from any thread: one statement at a time.
/// It closes as the object goes.
class SQLiteDatabase {
public:
    /// Throws SQLiteError when the file cannot be opened; its `sql` is then absent. No statement runs.
    explicit SQLiteDatabase(const std::filesystem::path& file);

    /// Runs one statement to its end and returns every row in order. `bindings[0]` is parameter 1; a text
    /// ends at its first NUL. Text that is not UTF-8 comes back repaired. Throws SQLiteError, at once when
    /// the database is locked; the connection stays usable.
    std::vector<SQLiteRow> query(const std::string& sql, std::span<const SQLiteValue> bindings = {});

private:
    struct Closer {
        void operator()(sqlite3* handle) const;
    };
    std::unique_ptr<sqlite3, Closer> handle_;
    std::mutex lock_; ///< Held from prepare to finalise.
};

} // namespace quillbook
