#pragma once

#include <filesystem>
#include <functional>

namespace quillbook::test {

/// So many folders "d", each in the one before, below a folder that exists; deeper than any path reaches if
/// asked for. They go with the object.
class DeepFolders {
public:
    /// `fill` gets an open descriptor of each folder, the topmost first.
    DeepFolders(const std::filesystem::path& root, int depth, const std::function<void(int)>& fill);
    ~DeepFolders();
    DeepFolders(const DeepFolders&) = delete;
    DeepFolders& operator=(const DeepFolders&) = delete;

private:
    std::filesystem::path root_;
};

/// Makes a file within an open folder.
void writeAt(int folder, const char* name, const char* contents);

} // namespace quillbook::test
