#include "export/ArchiveReuseIndex.h"

#include "export/ArchiveDirectory.h"

#include <algorithm>
#include <string_view>

namespace quillbook {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view attachmentsPrefix = "attachments/";

/// A manifest may have been altered by anyone: only a path of plain components cannot lead out of its album
/// by its words.
bool isPlainRelativePath(std::string_view path) {
    if (path.find('\0') != std::string_view::npos) return false;
    while (true) {
        const std::string_view component = path.substr(0, path.find('/'));
        if (component.empty() || component == "." || component == "..") return false;
        if (component.size() == path.size()) return true;
        path.remove_prefix(component.size() + 1);
    }
}

/// Looks for files inside one album on ways that no symbolic link is part of.
class AlbumFiles {
public:
    explicit AlbumFiles(const fs::path& album) : album_(album) {}

    bool hasFile(const fs::path& path) {
        return isRealFolder(path.parent_path()) && type(path) == fs::file_type::regular;
    }

private:
    fs::file_type type(const fs::path& path) const {
        std::error_code absent;
        return fs::symlink_status(album_ / path, absent).type();
    }

    bool isRealFolder(const fs::path& path) {
        if (path == lastRealFolder_) return true; // one attachment after another lies in the same folder
        fs::path folder;
        for (const fs::path& component : path) {
            folder /= component;
            if (type(folder) != fs::file_type::directory) return false;
        }
        lastRealFolder_ = path;
        return true;
    }

    const fs::path& album_;
    fs::path lastRealFolder_;
};

} // namespace

ArchiveReuseIndex::ArchiveReuseIndex(const fs::path& folder, const SourceID& conversationID,
                                     const std::stop_token& stop) {
    for (auto& archive : ArchiveDirectory::archives(folder, conversationID, stop)) {
        AlbumFiles album(archive.url);
        for (ManifestFile& file : archive.manifest.files) {
            if (!file.path.starts_with(attachmentsPrefix) || !isPlainRelativePath(file.path)) continue;
            if (!album.hasFile(file.path)) continue;
            entriesBySize[file.byteSize].push_back(
                Entry{.sha256 = std::move(file.sha256), .url = archive.url / file.path});
        }
    }
}

} // namespace quillbook
