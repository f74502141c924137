#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quillbook {

/// Whether `candidate` is `root` or lies below it once every symbolic link on both ways is followed; what
/// does not exist (yet) counts as a plain entry. False where it cannot be told: loops of links, folders that
/// may not be searched, overlong names.
bool isInsideFolder(const std::filesystem::path& root, const std::filesystem::path& candidate);

/// The stored path with its leading "~" replaced by the home folder; "~name" stays as it is.
std::string expandedHome(std::string_view storedPath, const std::filesystem::path& home);

/// The path below the Messages folder that a stored path means, without "." and ".."; the common key of
/// stored paths. Nothing where it climbs above its start or names no file.
std::optional<std::string> normalizedMessagesPath(std::string_view storedPath);

} // namespace quillbook
