#pragma once

#include <filesystem>

namespace quillbook {

/// Whether a file's bytes are really on this machine, which its mere existence does not tell: its contents
/// may have been evicted to a cloud. False for what has no bytes or occupies no blocks, and on every failure.
bool isLocallyPresent(const std::filesystem::path& file);

} // namespace quillbook
