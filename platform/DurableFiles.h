#pragma once

#include <filesystem>

namespace quillbook {

/// Makes what was written outlive a loss of power.
class DurableFiles {
public:
    virtual ~DurableFiles() = default;
    /// Flushes every file and folder below `folder`, and the folder, to the disk. Throws FileError.
    virtual void flushTree(const std::filesystem::path& folder) = 0;
    /// Flushes the entries of one folder, after a rename within it. Throws FileError.
    virtual void flushFolder(const std::filesystem::path& folder) = 0;
};

/// With syncfs(2) for a tree and fsync(2) for a folder's entries.
class SystemDurableFiles final : public DurableFiles {
public:
    void flushTree(const std::filesystem::path& folder) override;
    void flushFolder(const std::filesystem::path& folder) override;
};

} // namespace quillbook
