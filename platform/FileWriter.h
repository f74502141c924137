#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>

namespace quillbook {

/// Writes one file from front to back; no buffer of its own. Use from one thread at a time.
class FileWriter {
public:
    /// Creates the file or empties the one that stands there. Throws FileError.
    explicit FileWriter(const std::filesystem::path& file);
    /// Closes; a failure is swallowed.
    ~FileWriter();
    FileWriter(const FileWriter&) = delete;
    FileWriter& operator=(const FileWriter&) = delete;

    /// Writes all of it or throws FileError.
    void write(std::span<const std::uint8_t> bytes);
    void write(std::string_view text);
    /// Closes the file and throws FileError if the system reports a late failure.
    void close();

private:
    std::filesystem::path file_;
    int descriptor_ = -1;
};

} // namespace quillbook
