#pragma once

#include "core/records/ArchiveConversation.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quillbook {

/// What the website of an album depends on beside the conversation.
struct WebArchiveSettings {
    std::vector<std::filesystem::path> resourceFolders; ///< Where to look for its resources, in this order.
    std::vector<std::string> preferredLanguages;        ///< BCP 47 tags, most wanted first.

    /// Those of this application and user.
    static WebArchiveSettings user();
};

/// Moves the participants' pictures out of the records into files below `root`/assets/avatars. Throws
/// FileError; the participants before the failure are then done, the rest untouched.
void writeAvatarAssets(ArchiveConversation& conversation, const std::filesystem::path& root);

/// Lays the offline website into the album at `root`: its page, its two assets and the conversation as its
/// data file (docs/formats/album.md). Pictures must have been moved to files before. Throws WebArchiveError
/// and FileError; what was written until then stays.
void writeWebArchive(const ArchiveConversation& conversation, const std::filesystem::path& root,
                     const WebArchiveSettings& settings = WebArchiveSettings::user());

} // namespace quillbook
