#include "platform/DurableFiles.h"

#include "platform/FileError.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace quillbook {
namespace {

void flushOpened(const std::filesystem::path& folder, int (*flush)(int)) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY);
    if (descriptor < 0) throw FileError::fromErrno(FileError::Action::open, folder);
    const int result = flush(descriptor);
    const FileError error = FileError::fromErrno(FileError::Action::write, folder);
    ::close(descriptor);
    // EINVAL: a file system that has nothing to flush.
    if (result != 0 && error.code.value() != EINVAL) throw error;
}

} // namespace

void SystemDurableFiles::flushTree(const std::filesystem::path& folder) {
    // One call for the file system instead of one fsync(2) a file: an album can have fifty thousand, and each
    // would wait for the disk.
    flushOpened(folder, ::syncfs);
}

void SystemDurableFiles::flushFolder(const std::filesystem::path& folder) {
    flushOpened(folder, ::fsync);
}

} // namespace quillbook
