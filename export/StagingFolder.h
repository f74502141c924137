#pragma once

#include <filesystem>

namespace quillbook {

/// The hidden folder in which an album grows, inside the folder that the user chose. It goes, with everything
/// in it, unless it was moved to its final name.
class StagingFolder {
public:
    /// Makes a new one, with the folders on the way to it. Throws FileError.
    explicit StagingFolder(const std::filesystem::path& destination);
    ~StagingFolder();
    StagingFolder(const StagingFolder&) = delete;
    StagingFolder& operator=(const StagingFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    /// Throws FileError where the folder has gone: whoever makes folders in it would bring it back without
    /// what it held.
    void requireInPlace() const;
    /// Gives it its final name in one step, where nothing may stand. Throws FileError.
    void moveTo(const std::filesystem::path& album);

private:
    std::filesystem::path path_;
    bool isMoved_ = false;
};

/// Removes what exports that were killed left in `destination`. Never reports.
void removeStaleStagingFolders(const std::filesystem::path& destination);

} // namespace quillbook
