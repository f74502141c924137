#include "platform/FileReader.h"

#include "platform/FileError.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbook {
namespace {

using Action = FileError::Action;

/// Opening a pipe or device must not wait, and reading one must not be tried.
int openRegularFile(const std::filesystem::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) throw FileError::fromErrno(Action::open, file);
    struct stat status {};
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) return descriptor;
    const bool isFolder = S_ISDIR(status.st_mode);
    ::close(descriptor);
    throw FileError(Action::open, file,
                    std::make_error_code(isFolder ? std::errc::is_a_directory : std::errc::not_supported));
}

} // namespace

FileReader::FileReader(const std::filesystem::path& file) : file_(file), descriptor_(openRegularFile(file)) {
    ::posix_fadvise(descriptor_, 0, 0, POSIX_FADV_SEQUENTIAL);
}

FileReader::~FileReader() {
    ::close(descriptor_);
}

std::span<const std::uint8_t> FileReader::next() {
    block_.resize(fileBlockSize);
    std::size_t filled = 0;
    while (filled < block_.size()) {
        const ssize_t count = ::read(descriptor_, block_.data() + filled, block_.size() - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw FileError::fromErrno(Action::read, file_);
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    return std::span(block_).first(filled);
}

std::string readWholeFile(const std::filesystem::path& file, std::size_t maximumBytes) {
    FileReader reader(file);
    std::string contents;
    for (auto block = reader.next(); !block.empty(); block = reader.next()) {
        if (block.size() > maximumBytes - contents.size()) {
            throw FileError(Action::read, file, std::make_error_code(std::errc::file_too_large));
        }
        contents.append(reinterpret_cast<const char*>(block.data()), block.size());
    }
    return contents;
}

} // namespace quillbook
