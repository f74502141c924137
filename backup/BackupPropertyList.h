#pragma once

#include "propertylist/PropertyList.h"

#include <cstddef>
#include <filesystem>

namespace quillbook {

/// What a property list of a backup may have in bytes: "Info.plist" holds a picture of every app.
inline constexpr std::size_t longestBackupPropertyList = std::size_t{256} << 20U;

/// Reads "Manifest.plist" or "Info.plist" of a backup; the top value may be of any kind. Throws FileError,
/// also for what is no regular file or longer than `longestBackupPropertyList`, and PropertyListError.
PropertyList readPropertyListFile(const std::filesystem::path& file);

} // namespace quillbook
