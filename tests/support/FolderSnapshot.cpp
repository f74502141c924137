#include "tests/support/FolderSnapshot.h"

#include "tests/support/TemporaryFolder.h"

#include <ostream>

#include <sys/stat.h>

namespace quillbook::test {

std::map<std::string, EntrySnapshot> snapshotOf(const std::filesystem::path& folder) {
    std::map<std::string, EntrySnapshot> entries;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        EntrySnapshot snapshot;
        snapshot.type = entry.symlink_status().type();
        struct stat status {};
        if (::lstat(entry.path().c_str(), &status) == 0) snapshot.inode = status.st_ino;
        std::error_code loopOfLinks;
        if (entry.is_regular_file(loopOfLinks)) {
            snapshot.modified = entry.last_write_time();
            snapshot.contents = readFile(entry.path());
        }
        entries[entry.path().lexically_relative(folder).string()] = std::move(snapshot);
    }
    return entries;
}

} // namespace quillbook::test
