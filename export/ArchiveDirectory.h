#pragma once

#include "core/interfaces/PriorArchiveSummary.h"
#include "core/records/SourceID.h"
#include "export/ArchiveManifest.h"

#include <filesystem>
#include <optional>
#include <stop_token>
#include <vector>

namespace quillbook {

/// Earlier albums in a folder, known by their manifest.json and nothing else. Never reports: what cannot be
/// read does not count.
struct ArchiveDirectory {
    struct Archive {
        std::filesystem::path url; ///< The album's folder.
        ArchiveManifest manifest;

        bool operator==(const Archive&) const = default;
    };

    /// The albums of one conversation directly inside `folder`, newest first; of one date, by the name of
    /// their folder. What cannot be read does not count; throws CancellationError alone, between two folders.
    static std::vector<Archive> archives(const std::filesystem::path& folder, const SourceID& conversationID,
                                         const std::stop_token& stop = {});
};

/// What the newest album of the conversation in `folder` holds; nothing where there is none.
std::optional<PriorArchiveSummary> priorArchive(const SourceID& conversationID,
                                                const std::filesystem::path& folder);

} // namespace quillbook
