#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quillbook::test {

/// A new, empty folder that goes, with all in it, at the end of the test.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Resolved: no symbolic link stands in it.
    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }
    /// Writes a file below the folder, making the folders on the way; gives its path.
    std::filesystem::path write(std::string_view name, std::string_view contents) const;

private:
    std::filesystem::path path_;
};

std::string readFile(const std::filesystem::path& file);

} // namespace quillbook::test
