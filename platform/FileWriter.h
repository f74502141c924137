#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>

namespace quillbook {

/// Who may read and write a new file.
enum class FileAccess {
    usual,     ///< As the user's umask says.
    ownerOnly, ///< Octal 600 from the moment it exists, whatever the umask.
};

/// Writes one file from front to back; no buffer of its own. Use from one thread at a time.
class FileWriter {
public:
    /// Creates the file or empties the one that stands there; one for the owner alone is always a new one,
    /// and nothing may stand there. Throws FileError.
    explicit FileWriter(const std::filesystem::path& file, FileAccess access = FileAccess::usual);
    /// Closes; a failure is swallowed.
    ~FileWriter();
    FileWriter(const FileWriter&) = delete;
    FileWriter& operator=(const FileWriter&) = delete;

    /// Writes all of it or throws FileError.
    void write(std::span<const std::uint8_t> bytes);
    void write(std::string_view text);
    /// Waits until what was written would outlive a loss of power. Throws FileError.
    void flush();
    /// Closes the file and throws FileError if the system reports a late failure.
    void close();

private:
    std::filesystem::path file_;
    int descriptor_ = -1;
};

} // namespace quillbook
