#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quillbook {

/// How many attachments of a conversation are on this machine and how many are not; one used by two messages
/// counts twice.
struct AttachmentStorageSurvey {
    std::int64_t local = 0;
    std::int64_t missing = 0;

    bool operator==(const AttachmentStorageSurvey&) const = default;
};

/// The two counts as the user reads them.
std::string storageSummary(std::int64_t local, std::int64_t missing);

/// One attachment row of a database whose bytes are not on this machine.
struct MissingAttachmentRecord {
    std::int64_t rowID = -1;
    std::string guid;
    std::string filename; ///< The path as the source stores it.
    std::optional<std::string> transferName;
    std::optional<std::int64_t> totalBytes; ///< As the source declares it.
    std::optional<std::string> mimeType;

    bool operator==(const MissingAttachmentRecord&) const = default;
};

} // namespace quillbook
