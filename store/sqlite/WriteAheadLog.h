#pragma once

#include <filesystem>

namespace quillbook {

/// Folds the write-ahead log of a database into it and leaves it in rollback-journal mode, without "-wal" and
/// "-shm" beside it. Opens the file for writing, so it has to be a copy of our own. A failure
/// counts for nothing, and only where the disk failed do the companions stay, since the log may still hold
/// rows that a reader finds there.
void foldWriteAheadLog(const std::filesystem::path& database);

/// Whether a mere reader of the database would write beside it: it is in write-ahead log mode, or a log
/// stands beside it. False for what cannot be read.
bool usesWriteAheadLog(const std::filesystem::path& database);

} // namespace quillbook
