#pragma once

#include "core/records/ArchiveConversation.h"
#include "core/text/DateText.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace quillbook {

/// Writes transcript.md, the conversation as a document that a person reads (docs/formats/album.md), with the
/// times of `dates`. The file grows as it is written; one that a failure cut short stays. Throws FileError.
void writeMarkdownTranscript(const ArchiveConversation& conversation, const std::filesystem::path& file,
                             const DateText& dates = DateText::user());

/// The text with a backslash before each backslash, backtick, asterisk, underscore and square bracket.
std::string escapeMarkdown(std::string_view text);

} // namespace quillbook
