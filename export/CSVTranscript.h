#pragma once

#include "core/records/ArchiveConversation.h"

#include <filesystem>
#include <span>
#include <string_view>

namespace quillbook {

class TranscriptBuffer;

/// Writes transcript.csv, the conversation as a table for spreadsheets, with times in UTC
/// (docs/formats/album.md). The file grows as it is written; one that a failure cut short stays. Throws
/// FileError.
void writeCSVTranscript(const ArchiveConversation& conversation, const std::filesystem::path& file);

/// Appends one row (RFC 4180). A field that a spreadsheet could take for a formula gets a single quote in
/// front. Throws FileError.
void writeCSVRow(std::span<const std::string_view> fields, TranscriptBuffer& buffer);

} // namespace quillbook
