#include "platform/FileReader.h"

#include "platform/FileError.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbook {
namespace {

using Action = FileError::Action;

struct OpenFile {
    int descriptor;
    std::uint64_t size;
};

/// Opening a pipe or device must not wait, and reading one must not be tried.
OpenFile openRegularFile(const std::filesystem::path& file, LastLink link) {
    const int linkFlags = link == LastLink::refused ? O_NOFOLLOW : 0;
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | linkFlags);
    if (descriptor < 0) throw FileError::fromErrno(Action::open, file);
    struct stat status {};
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode))
        return {descriptor, static_cast<std::uint64_t>(status.st_size)};
    const bool isFolder = S_ISDIR(status.st_mode);
    ::close(descriptor);
    throw FileError(Action::open, file,
                    std::make_error_code(isFolder ? std::errc::is_a_directory : std::errc::not_supported));
}

/// One byte more than the file has, so that its end shows before the block is full.
std::size_t blockSizeFor(std::uint64_t fileSize) {
    return std::clamp<std::uint64_t>(fileSize + 1, leastFileBlockSize, fileBlockSize);
}

} // namespace

FileReader::FileReader(const std::filesystem::path& file, LastLink link) : file_(file) {
    const OpenFile opened = openRegularFile(file, link);
    descriptor_ = opened.descriptor;
    blockSize_ = blockSizeFor(opened.size);
    if (opened.size >= fileBlockSize) ::posix_fadvise(descriptor_, 0, 0, POSIX_FADV_SEQUENTIAL);
}

FileReader::~FileReader() {
    ::close(descriptor_);
}

/// Reads until the block is full or the file ends; gives how many bytes stand in the block then.
std::size_t FileReader::fill(std::size_t filled) {
    while (filled < blockSize_) {
        const ssize_t count = ::read(descriptor_, block_.get() + filled, blockSize_ - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw FileError::fromErrno(Action::read, file_);
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    return filled;
}

std::span<const std::uint8_t> FileReader::next() {
    if (!block_) block_ = std::make_unique_for_overwrite<std::uint8_t[]>(blockSize_);
    std::size_t filled = fill(0);
    if (filled == blockSize_ && blockSize_ < fileBlockSize) {
        // The file has grown since, or does not say its size, as those of /proc.
        auto larger = std::make_unique_for_overwrite<std::uint8_t[]>(fileBlockSize);
        std::copy_n(block_.get(), filled, larger.get());
        block_ = std::move(larger);
        blockSize_ = fileBlockSize;
        filled = fill(filled);
    }
    return {block_.get(), filled};
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
