#pragma once

#include "core/interfaces/CacheRecovery.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace quillbook::test {

inline MissingAttachmentRecord missing(std::string filename, std::optional<std::int64_t> size,
                                       std::optional<std::string> transferName = std::nullopt) {
    return MissingAttachmentRecord{.rowID = 7,
                                   .guid = "GUID-7",
                                   .filename = std::move(filename),
                                   .transferName = std::move(transferName),
                                   .totalBytes = size,
                                   .mimeType = "image/jpeg"};
}

inline RecoveryCandidate candidate(std::filesystem::path source, std::string destination,
                                   std::int64_t bytes) {
    return RecoveryCandidate{.attachment = missing("~/Library/Messages/" + destination, bytes),
                             .sourceURL = std::move(source),
                             .relativeDestination = std::move(destination),
                             .bytes = bytes};
}

} // namespace quillbook::test
