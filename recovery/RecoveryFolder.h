#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace quillbook {

/// Below the user's Application Support folder; takes the copies of all recoveries, each at its path below
/// the Messages folder, and is never removed.
std::filesystem::path recoveryRoot(const std::filesystem::path& applicationSupport);

/// The record of the latest recovery.
std::filesystem::path recoveryManifest(const std::filesystem::path& recoveryRoot);

/// Where a recovered file stands or will stand. Nothing for a place outside the root once every symbolic link
/// is followed, for the root itself, and for the manifest or anything below it.
std::optional<std::filesystem::path> recoveryPlace(const std::filesystem::path& recoveryRoot,
                                                   std::string_view relativeDestination);

} // namespace quillbook
