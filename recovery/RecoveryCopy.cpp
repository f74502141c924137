#include "recovery/RecoveryCopy.h"

#include "export/FileHash.h"
#include "platform/FileError.h"
#include "platform/FileReader.h"
#include "platform/FileWriter.h"
#include "platform/FolderCreation.h"
#include "platform/FolderMove.h"
#include "platform/UUID.h"
#include "recovery/RecoveryFolder.h"

#include <chrono>
#include <string_view>
#include <system_error>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using Action = FileError::Action;

constexpr std::string_view temporaryPrefix = ".quillbook-copy-";

/// A name beside a file's own that no listing shows; what stands there goes with the object.
class TemporaryName {
public:
    explicit TemporaryName(const fs::path& file)
        : path_(file.parent_path() / (std::string(temporaryPrefix) + uuidText())) {}
    ~TemporaryName() {
        std::error_code ignored;
        fs::remove(path_, ignored);
    }
    TemporaryName(const TemporaryName&) = delete;
    TemporaryName& operator=(const TemporaryName&) = delete;

    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

/// Throws FileError also where the source is not of that size any more: the caches change under us.
void copyContents(const fs::path& source, std::int64_t size, const fs::path& copy) {
    const FileError changed(Action::read, source, std::make_error_code(std::errc::io_error));
    FileReader reader(source, LastLink::refused);
    FileWriter writer(copy, FileAccess::ownerOnly);
    auto missing = static_cast<std::uint64_t>(size);
    for (auto block = reader.next(); !block.empty(); block = reader.next()) {
        if (block.size() > missing) throw changed;
        writer.write(block);
        missing -= block.size();
    }
    if (missing != 0) throw changed;
    // A loss of power behind the rename could leave a file cut short, which no later recovery would replace.
    writer.flush();
    writer.close();
}

/// False where nothing stands. Throws FileError where that cannot be told, or what stands there is no file.
bool isFileStanding(const fs::path& destination) {
    std::error_code failure;
    const auto type = fs::status(destination, failure).type();
    if (type == fs::file_type::regular || type == fs::file_type::not_found)
        return type == fs::file_type::regular;
    if (!failure) failure = std::make_error_code(std::errc::file_exists);
    throw FileError(Action::create, destination, failure);
}

void copyWhole(const RecoveryCandidate& candidate, const fs::path& destination) {
    const TemporaryName temporary(destination);
    copyContents(candidate.sourceURL, candidate.bytes, temporary.path());
    try {
        moveFile(temporary.path(), destination);
    } catch (const FileError&) {
        // Another recovery may have been quicker; its copy is as good.
        if (!isFileStanding(destination)) throw;
    }
}

/// What lies in it was said in private; its own folder keeps others out, whatever the umask.
void makePrivateRoot(const fs::path& recoveryRoot) {
    std::error_code failure;
    if (fs::exists(fs::symlink_status(recoveryRoot, failure))) return;
    createFolders(recoveryRoot.parent_path());
    try {
        createPrivateFolder(recoveryRoot);
    } catch (const FileError& error) {
        if (error.code != std::errc::file_exists) throw; // Another recovery was quicker.
    }
}

bool isOlderThanAnHour(const fs::path& file) {
    std::error_code failure;
    const auto changed = fs::last_write_time(file, failure);
    return !failure && changed < fs::file_time_type::clock::now() - std::chrono::hours(1);
}

/// What a process left that ended in mid-copy.
void removeStaleCopies(const fs::path& folder) {
    std::error_code failure;
    for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        std::error_code ignored;
        const bool isTemporary = entry->path().filename().native().starts_with(temporaryPrefix);
        if (isTemporary && isOlderThanAnHour(entry->path())) fs::remove(entry->path(), ignored);
    }
}

} // namespace

std::string placeRecoveredFile(const RecoveryCandidate& candidate, const fs::path& recoveryRoot) {
    const auto destination = recoveryPlace(recoveryRoot, candidate.relativeDestination);
    if (!destination) {
        throw FileError(Action::create, recoveryRoot / candidate.relativeDestination,
                        std::make_error_code(std::errc::operation_not_permitted));
    }
    makePrivateRoot(recoveryRoot);
    createFolders(destination->parent_path());
    removeStaleCopies(destination->parent_path());
    if (!isFileStanding(*destination)) copyWhole(candidate, *destination);
    return hashFile(*destination, {});
}

} // namespace quillbook
