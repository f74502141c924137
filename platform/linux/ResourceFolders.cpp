#include "platform/ResourceFolders.h"

namespace quillbook {

std::vector<std::filesystem::path> resourceFolders() {
    std::error_code failure;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (failure) return {};
    return {program.parent_path().parent_path() / "share/quillbook"};
}

} // namespace quillbook
