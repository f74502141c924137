#pragma once

#include <filesystem>
#include <stop_token>

namespace quillbook {

/// Throws BackupError for a Messages database whose tables, as far as they are read, are views, virtual
/// tables or have generated columns: they would run whatever statement the backup's maker thought of, at each
/// list. What cannot be read at all passes: whoever reads it next reports in its own words. Throws
/// CancellationError.
void requireOrdinaryMessageTables(const std::filesystem::path& database, const std::stop_token& stop);

} // namespace quillbook
