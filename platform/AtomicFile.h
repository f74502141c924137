#pragma once

#include "platform/FileWriter.h"

#include <filesystem>
#include <memory>
#include <string_view>

namespace quillbook {

/// A file that comes into being whole: written under a temporary name beside its own, then renamed. An
/// uncommitted one leaves nothing.
class AtomicFile {
public:
    /// Throws FileError.
    explicit AtomicFile(const std::filesystem::path& file, FileAccess access = FileAccess::usual);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Throws FileError.
    void write(std::string_view text);
    /// Puts the file in its place, over what stands there. Call it once. Throws FileError.
    void commit();

private:
    std::filesystem::path file_;
    std::filesystem::path temporary_;
    std::unique_ptr<FileWriter> writer_;
};

/// Throws FileError.
void writeFileAtomically(const std::filesystem::path& file, std::string_view contents,
                         FileAccess access = FileAccess::usual);

} // namespace quillbook
