#include "platform/FileWriter.h"

#include "platform/FileError.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbook {

using Action = FileError::Action;

namespace {

int create(const std::filesystem::path& file) {
    // Without O_NONBLOCK, opening a pipe would wait for its reader.
    const int descriptor =
        ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    if (descriptor < 0) throw FileError::fromErrno(Action::create, file);
    return descriptor;
}

int createPrivately(const std::filesystem::path& file) {
    constexpr mode_t ownerReadsAndWrites = 0600;
    const int descriptor =
        ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, ownerReadsAndWrites);
    if (descriptor < 0) throw FileError::fromErrno(Action::create, file);
    // A umask can only have taken rights away. A file system without rights refuses; there the folder counts.
    struct stat status {};
    const bool isAsAsked =
        ::fstat(descriptor, &status) == 0 && (status.st_mode & ALLPERMS) == ownerReadsAndWrites;
    if (!isAsAsked) static_cast<void>(::fchmod(descriptor, ownerReadsAndWrites));
    return descriptor;
}

} // namespace

FileWriter::FileWriter(const std::filesystem::path& file, FileAccess access)
    : file_(file), descriptor_(access == FileAccess::ownerOnly ? createPrivately(file) : create(file)) {}

FileWriter::~FileWriter() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

void FileWriter::write(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw FileError::fromErrno(Action::write, file_);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

void FileWriter::write(std::string_view text) {
    write(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

void FileWriter::flush() {
    // EINVAL: a file that has no disk to wait for.
    if (::fsync(descriptor_) != 0 && errno != EINVAL) throw FileError::fromErrno(Action::write, file_);
}

void FileWriter::close() {
    const int descriptor = descriptor_;
    descriptor_ = -1;
    if (::close(descriptor) != 0) throw FileError::fromErrno(Action::write, file_);
}

} // namespace quillbook
