#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace quillbook {

/// One file found in a cache.
struct CachedFile {
    std::filesystem::path url;
    std::int64_t size = 0; ///< In bytes, at least 1.
    std::string basename;  ///< The path's last component.

    bool operator==(const CachedFile&) const = default;
};

} // namespace quillbook
