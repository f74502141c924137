#pragma once

#include "recovery/CachedFile.h"

#include <filesystem>
#include <functional>
#include <string_view>

namespace quillbook {

/// Hands `take` every regular file below a folder, at whatever depth, that bears a wanted name and has at
/// least one byte. Hidden entries, whose names begin with a dot, are left out with all below them, and so are
/// symbolic links; the folder itself may be a link to one. What cannot be read, vanishes meanwhile or has a
/// path longer than the system takes is passed over. Only files of wanted names are looked at, so the rest
/// costs no more than its place in a listing.
void walkCache(const std::filesystem::path& root, const std::function<bool(std::string_view)>& isWanted,
               const std::function<void(const CachedFile&)>& take);

} // namespace quillbook
