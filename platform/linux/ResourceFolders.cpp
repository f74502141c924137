#include "platform/ResourceFolders.h"

namespace quillbook {

std::vector<std::filesystem::path> resourceFolders() {
    std::vector<std::filesystem::path> folders;
    std::error_code failure;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (!failure) folders.push_back(program.parent_path().parent_path() / "share/quillbook");
    folders.emplace_back(QUILLBOOK_SOURCE_RESOURCES);
    return folders;
}

} // namespace quillbook
