#pragma once

#include "core/records/ConversationSummary.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillbook::sample {

/// How an attachment stands in the library.
enum class MediaPresence { onDisk, missing, zeroBytes, withoutPath };

struct MediaFile {
    std::string fileName;     ///< As the file is called on the disk.
    std::string transferName; ///< As the sender called it.
    std::string mimeType;
    std::string uniformType;
    MediaPresence presence = MediaPresence::onDisk;
    Data contents;              ///< Empty unless it is on the disk.
    std::int64_t byteCount = 0; ///< As the record has it.
};

/// The file that the dialogues call by this name; nothing for an unknown name.
std::optional<MediaFile> namedMedia(std::string_view name, std::uint64_t seed);

/// A small picture or text unlike those with other numbers.
MediaFile smallMedia(std::int64_t number, std::uint64_t seed);

/// A record like those of `smallMedia`, but with nothing on the disk.
MediaFile absentMedia(std::int64_t number);

} // namespace quillbook::sample
