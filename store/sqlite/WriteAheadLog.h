#pragma once

#include <filesystem>
#include <stop_token>

namespace quillbook {

/// Folds the write-ahead log of a database into it and leaves it in rollback-journal mode, without "-wal" and
/// "-shm" beside it. Opens the file for writing, so it has to be a copy of our own. A failure counts for
/// nothing; the companions stay then if a reader may still find rows in the log, as where the disk is full.
/// Throws CancellationError alone.
void foldWriteAheadLog(const std::filesystem::path& database, const std::stop_token& stop = {});

/// Whether a mere reader of the database would write beside it: it is in write-ahead log mode, or a log
/// stands beside it. False for what cannot be read.
bool usesWriteAheadLog(const std::filesystem::path& database);

} // namespace quillbook
