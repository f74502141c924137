#include "platform/FileResidency.h"

#include <sys/stat.h>

namespace quillbook {

bool isLocallyPresent(const std::filesystem::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) return false;
    // Linux has no flag for evicted contents; a file that a cloud client has emptied has a length and no
    // blocks.
    return status.st_size != 0 && status.st_blocks != 0;
}

} // namespace quillbook
