#pragma once

#include "core/records/SourceID.h"

#include <cstdint>
#include <filesystem>
#include <stop_token>
#include <string>
#include <unordered_map>
#include <vector>

namespace quillbook {

/// The attachment files that earlier albums of a conversation hold, by size. Not changed once it is built;
/// safe to read from any thread.
struct ArchiveReuseIndex {
    struct Entry {
        std::string sha256; ///< As the album's manifest claims it.
        std::filesystem::path url;

        bool operator==(const Entry&) const = default;
    };

    ArchiveReuseIndex() = default;
    /// Takes in the albums of the conversation inside `folder`. What the manifests claim of sizes and digests
    /// is believed, but each file must stand inside its album. Never throws for what cannot be read; throws
    /// CancellationError between two albums.
    ArchiveReuseIndex(const std::filesystem::path& folder, const SourceID& conversationID,
                      const std::stop_token& stop = {});

    std::unordered_map<std::int64_t, std::vector<Entry>>
        entriesBySize; ///< Within one size, newest album first.

    bool operator==(const ArchiveReuseIndex&) const = default;
};

} // namespace quillbook
