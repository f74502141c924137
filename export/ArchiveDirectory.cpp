#include "export/ArchiveDirectory.h"

#include "core/records/Cancellation.h"
#include "platform/FileReader.h"

#include <algorithm>
#include <exception>

namespace quillbook {
namespace {

namespace fs = std::filesystem;

// Room for the lines of some 400,000 files; what is larger was not made here, and parsing takes ten times its
// size in memory.
constexpr std::size_t largestManifest = std::size_t{128} << 20U;

/// The visible folders directly inside `folder`, by name: the system lists them in no order of its own. Links
/// are none.
std::vector<fs::path> subfolders(const fs::path& folder) {
    std::vector<fs::path> folders;
    std::error_code ended;
    for (fs::directory_iterator entry(folder, ended), end; !ended && entry != end; entry.increment(ended)) {
        std::error_code unreadable;
        const bool isFolder = fs::is_directory(entry->symlink_status(unreadable));
        if (isFolder && !entry->path().filename().native().starts_with('.')) folders.push_back(entry->path());
    }
    std::sort(folders.begin(), folders.end());
    return folders;
}

std::optional<ArchiveManifest> manifestOf(const fs::path& album, const SourceID& conversationID) {
    const fs::path file = album / manifestFileName;
    std::error_code unreadable;
    if (!fs::is_regular_file(file, unreadable)) return std::nullopt;
    try {
        const JSONDocument json(readWholeFile(file, largestManifest));
        // The albums of other conversations are the most, and their lists of files need no reading.
        if (readJSON<SourceID>(json.root().required("sourceChatID")) != conversationID) return std::nullopt;
        return readJSON<ArchiveManifest>(json.root());
    } catch (const std::exception&) {
        return std::nullopt; // whatever is wrong with an album, too little memory for it included: it does
                             // not count
    }
}

} // namespace

std::vector<ArchiveDirectory::Archive> ArchiveDirectory::archives(const fs::path& folder,
                                                                  const SourceID& conversationID,
                                                                  const std::stop_token& stop) {
    std::vector<Archive> archives;
    for (const fs::path& album : subfolders(folder)) {
        throwIfCancelled(stop);
        auto manifest = manifestOf(album, conversationID);
        if (manifest) archives.push_back(Archive{.url = album, .manifest = *std::move(manifest)});
    }
    std::stable_sort(archives.begin(), archives.end(), [](const Archive& one, const Archive& other) {
        return one.manifest.generatedAt > other.manifest.generatedAt;
    });
    return archives;
}

std::optional<PriorArchiveSummary> priorArchive(const SourceID& conversationID, const fs::path& folder) {
    const auto archives = ArchiveDirectory::archives(folder, conversationID);
    if (archives.empty()) return std::nullopt;
    const auto& newest = archives.front();
    return PriorArchiveSummary{
        .archiveURL = newest.url,
        .archivedAt = newest.manifest.generatedAt,
        .messageCount = newest.manifest.messageCount,
        .sourceMessageCount = newest.manifest.sourceMessageCount,
    };
}

} // namespace quillbook
