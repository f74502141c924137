#include "core/records/Cancellation.h"
#include "core/text/UTF8.h"
#include "export/ArchiveManifest.h"
#include "export/FileHash.h"
#include "platform/FileError.h"

#include <algorithm>

namespace quillbook {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const fs::path& file, std::error_code reason) {
    throw FileError(FileError::Action::read, file, reason);
}

/// Walks the folders below a root without recursion, so that their depth costs no stack.
class FileWalk {
public:
    FileWalk(const fs::path& root, const std::stop_token& stop)
        : root_(root), stop_(stop), folders_{fs::path()} {}

    std::vector<ManifestFile> files() && {
        while (!folders_.empty()) {
            const fs::path folder = std::move(folders_.back());
            folders_.pop_back();
            list(folder);
        }
        return std::move(files_);
    }

private:
    void list(const fs::path& folder) {
        std::error_code ended; // a folder that cannot be listed, or not to its end, gives what it gave
        for (fs::directory_iterator entry(root_ / folder, ended), end; !ended && entry != end;
             entry.increment(ended)) {
            throwIfCancelled(stop_);
            const fs::path name = entry->path().filename();
            if (name.native().starts_with('.')) continue;
            add(folder / name);
        }
    }

    void add(const fs::path& path) {
        const fs::path file = root_ / path;
        std::error_code reason;
        const auto type = fs::symlink_status(file, reason).type();
        if (type == fs::file_type::none || type == fs::file_type::not_found) fail(file, reason);
        if (type == fs::file_type::directory) folders_.push_back(path);
        if (type != fs::file_type::regular || path.filename() == manifestFileName) return;
        const auto size = fs::file_size(file, reason);
        if (reason) fail(file, reason);
        if (!isValidUTF8(path.native())) fail(file, std::make_error_code(std::errc::illegal_byte_sequence));
        files_.push_back(
            ManifestFile{.path = path.native(), .byteSize = static_cast<std::int64_t>(size), .sha256 = {}});
    }

    const fs::path& root_;
    const std::stop_token& stop_;
    std::vector<fs::path> folders_; ///< Still to be listed, relative to the root.
    std::vector<ManifestFile> files_;
};

} // namespace

std::vector<ManifestFile> makeManifestFiles(const fs::path& root, const std::stop_token& stop) {
    auto files = FileWalk(root, stop).files();
    // The order of the bytes of UTF-8 is that of the Unicode scalars.
    std::stable_sort(files.begin(), files.end(), [](const ManifestFile& one, const ManifestFile& other) {
        return one.path < other.path;
    });
    for (ManifestFile& file : files) {
        throwIfCancelled(stop);
        file.sha256 = hashFile(root / file.path, stop);
    }
    return files;
}

} // namespace quillbook
