#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

namespace quillbook {

/// Large files are read, hashed and written in blocks of this many bytes.
inline constexpr std::size_t fileBlockSize = 1'048'576;
/// The least memory that a FileReader takes for its block: a short file gets no more than it needs.
inline constexpr std::size_t leastFileBlockSize = 4'096;

/// What opening makes of a symbolic link as the last component of a path.
enum class LastLink { followed, refused };

/// Reads one file from front to back. Use from one thread at a time.
class FileReader {
public:
    /// Opens the file without waiting for a writer where it is a pipe. Throws FileError, also for what is no
    /// regular file.
    explicit FileReader(const std::filesystem::path& file, LastLink link = LastLink::followed);
    ~FileReader();
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;

    /// The next block, `fileBlockSize` bytes but for the last; empty at the end. It stands until the next
    /// call. Throws FileError.
    std::span<const std::uint8_t> next();

private:
    std::size_t fill(std::size_t filled);

    std::filesystem::path file_;
    int descriptor_ = -1;
    std::size_t blockSize_ = 0; ///< `fileBlockSize`, or less as long as the file is shorter than that.
    std::unique_ptr<std::uint8_t[]> block_;
};

/// The whole contents of a small file. Throws FileError, also when it has more than `maximumBytes`.
std::string readWholeFile(const std::filesystem::path& file,
                          std::size_t maximumBytes = std::size_t{1} << 31U);

} // namespace quillbook
