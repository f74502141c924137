#include "export/AttachmentCopier.h"

#include "core/records/Cancellation.h"
#include "core/text/Localization.h"
#include "export/FileHash.h"
#include "platform/FileError.h"
#include "platform/FileReader.h"
#include "platform/FileResidency.h"
#include "platform/FileWriter.h"
#include "platform/FolderCreation.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace quillbook {
namespace {

namespace fs = std::filesystem;

// A block is hashed and written in slices that stay in the processor's nearest caches between the two: on a
// busy machine the digest of whole blocks took twice the time.
constexpr std::size_t sliceSize = 0x8000;

ArchiveAttachment withFile(ArchiveAttachment attachment, const std::string& name, std::string sha256) {
    attachment.archivePath = "attachments/" + name;
    attachment.sha256 = std::move(sha256);
    attachment.availability = AttachmentAvailability::available;
    return attachment;
}

/// A name is one plain component of a path, or the file would stand in another folder than the attachments'
/// own.
void requireSafeName(const std::string& name) {
    const bool isOneComponent = name.find_first_of(std::string_view("/\0", 2)) == std::string::npos;
    if (isOneComponent && !name.empty() && name != "." && name != "..") return;
    throw ExportFileError(ExportFileError::Reason::pathEscapesDestination, name);
}

/// Runs a step that puts bytes on the album's disk.
template <typename Step>
auto writing(const std::string& name, Step step) {
    try {
        return step();
    } catch (const FileError&) {
        throw ExportFileError(ExportFileError::Reason::destinationWriteFailed, name);
    }
}

/// A file in the making, which goes again unless it is kept.
class UnfinishedFile {
public:
    explicit UnfinishedFile(const fs::path& file) : file_(file) { FileWriter(file).close(); }
    ~UnfinishedFile() {
        std::error_code ignored;
        if (!isKept_) fs::remove(file_, ignored);
    }
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;

    void keep() { isKept_ = true; }

private:
    const fs::path& file_;
    bool isKept_ = false;
};

/// Copies block by block and gives the digest of what was copied. A FileError is the source's; the
/// destination's are ExportFileErrors.
std::string copyAndHash(const fs::path& source, const fs::path& destination, const std::string& name,
                        const std::stop_token& stop) {
    FileReader reader(source);
    FileWriter writer(destination);
    SHA256 digest;
    throwIfCancelled(stop);
    for (auto block = reader.next(); !block.empty(); block = reader.next()) {
        for (; !block.empty(); block = block.subspan(std::min(block.size(), sliceSize))) {
            const auto slice = block.first(std::min(block.size(), sliceSize));
            digest.update(slice);
            writing(name, [&] { writer.write(slice); });
        }
        throwIfCancelled(stop);
    }
    // A file system on a network may report the last block's failure only here.
    writing(name, [&] { writer.close(); });
    return digest.hex();
}

ArchiveAttachment plainCopy(const ArchiveAttachment& attachment, const fs::path& source,
                            const fs::path& destination, const std::string& name,
                            const std::stop_token& stop) {
    auto file = writing(name, [&] { return UnfinishedFile(destination); });
    try {
        auto record = withFile(attachment, name, copyAndHash(source, destination, name, stop));
        file.keep();
        return record;
    } catch (const FileError&) {
        return withoutFile(attachment, AttachmentAvailability::unreadable);
    }
}

/// A regular file of that size whose bytes are on this machine; not what a link leads to.
bool isStillWhole(const fs::path& file, std::uintmax_t size) {
    std::error_code failure;
    if (!fs::is_regular_file(fs::symlink_status(file, failure)) || !isLocallyPresent(file)) return false;
    return fs::file_size(file, failure) == size && !failure;
}

std::optional<std::string> hashUnlessUnreadable(const fs::path& file, const std::stop_token& stop) {
    try {
        throwIfCancelled(stop);
        auto hash = hashFile(file, stop);
        throwIfCancelled(stop);
        return hash;
    } catch (const FileError&) {
        return std::nullopt;
    }
}

} // namespace

ExportFileError::ExportFileError(Reason failure, std::string generatedName)
    : reason(failure), name(std::move(generatedName)) {}

std::string ExportFileError::description() const {
    switch (reason) {
    case Reason::pathEscapesDestination:
        return localizedFormat("The generated attachment path was unsafe: {}", name);
    case Reason::destinationWriteFailed:
        return localizedFormat("Could not write {} to the destination. The disk may be full or read-only.",
                               name);
    }
    return {};
}

ArchiveAttachment withoutFile(ArchiveAttachment attachment, AttachmentAvailability availability) {
    attachment.archivePath.reset();
    attachment.sha256.reset();
    attachment.availability = availability;
    return attachment;
}

AttachmentCopier::AttachmentCopier(CloneFunction clone) : clone_(std::move(clone)) {}

ArchiveAttachment AttachmentCopier::copyAttachment(const ArchiveAttachment& attachment,
                                                   const fs::path& source,
                                                   const fs::path& attachmentsDirectory,
                                                   const ArchiveReuseIndex* reuseIndex,
                                                   const std::stop_token& stop) {
    std::error_code unreachable;
    if (!fs::exists(source, unreachable) || !isLocallyPresent(source)) {
        return withoutFile(attachment, AttachmentAvailability::missing);
    }
    createFolders(attachmentsDirectory);
    const std::string name = names_.take(attachment.displayName, "Attachment-" + attachment.id.rawValue);
    requireSafeName(name);
    const fs::path destination = attachmentsDirectory / name;
    if (reuseIndex != nullptr && !reuseIndex->entriesBySize.empty()) {
        if (auto hash = reuse(source, destination, *reuseIndex, stop)) {
            ++reusedCount_;
            return withFile(attachment, name, *std::move(hash));
        }
    }
    return plainCopy(attachment, source, destination, name, stop);
}

/// The digest of the source once a file of an earlier album stands cloned at the destination; nothing where
/// none could be.
std::optional<std::string> AttachmentCopier::reuse(const fs::path& source, const fs::path& destination,
                                                   const ArchiveReuseIndex& index,
                                                   const std::stop_token& stop) const {
    std::error_code failure;
    const auto size = fs::file_size(source, failure);
    if (failure) return std::nullopt;
    const auto sameSize = index.entriesBySize.find(static_cast<std::int64_t>(size));
    if (sameSize == index.entriesBySize.end()) return std::nullopt;
    auto hash = hashUnlessUnreadable(source, stop);
    const auto& entries = sameSize->second;
    const auto match =
        std::find_if(entries.begin(), entries.end(), [&](const auto& entry) { return entry.sha256 == hash; });
    // What stands there now may be no longer what stood there when the index was built: a link could lead
    // anywhere, and a file that was cut or evicted since would make a damaged copy of a good source.
    if (match == entries.end() || !isStillWhole(match->url, size)) return std::nullopt;
    fs::remove_all(destination, failure);
    if (!clone_(match->url, destination)) return std::nullopt;
    return hash;
}

} // namespace quillbook
