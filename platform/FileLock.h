#pragma once

#include <filesystem>
#include <optional>
#include <utility>

namespace quillbook {

/// An exclusive lock on a file that other processes see (flock(2)): a mark that somebody is alive. It ends
/// with the object or with the process, however that ends.
class FileLock {
public:
    enum class Creation { allowed, forbidden };

    /// Nothing where another holds the lock or the file cannot be opened. A file that it makes is for the
    /// owner alone. Never waits.
    static std::optional<FileLock> take(const std::filesystem::path& file, Creation creation);

    FileLock(FileLock&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileLock& operator=(FileLock&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~FileLock();

private:
    explicit FileLock(int descriptor) : descriptor_(descriptor) {}

    int descriptor_;
};

} // namespace quillbook
