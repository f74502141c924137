#pragma once

#include "core/records/ArchiveConversation.h"

#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>

namespace quillbook {

/// What an export needs of a source. May be slow; called off the main thread.
class ConversationLoading {
public:
    virtual ~ConversationLoading() = default;
    /// Throws a DescribedError, or CancellationError once `stop` was requested.
    virtual ArchiveConversation loadConversation(const SourceID& id, std::stop_token stop) = 0;
    /// The file behind a stored path, or nothing. Never fails.
    virtual std::optional<std::filesystem::path> locateAttachment(const std::string& storedPath) = 0;
    /// A file that `locateAttachment` gave is no longer needed; a source may delete what it made for it.
    virtual void releaseAttachment(const std::filesystem::path& file) = 0;
};

} // namespace quillbook
