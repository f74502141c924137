#pragma once

#include <cstdint>
#include <filesystem>

namespace quillbook::sample {

/// Gives a write-ahead log other salts and the checksums that follow from them
/// (https://sqlite.org/fileformat2.html, section 4). SQLite draws the salts at random; a log that is to be
/// the same each time needs given ones. Frame by frame, whatever the log's size. Throws SampleError.
void setLogSalts(const std::filesystem::path& log, std::uint64_t salts);

} // namespace quillbook::sample
