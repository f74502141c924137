#pragma once

#include <QString>
#include <filesystem>
#include <optional>

namespace quillbook {

/// The file's URI (RFC 8089): each byte that RFC 3986, section 2.3, does not leave plain is percent-encoded,
/// so that names in no encoding at all arrive as they are.
QString fileAddress(const std::filesystem::path& absoluteFile);

/// The local file that a URI names; nothing for other schemes, other machines and names no file can have.
std::optional<std::filesystem::path> fileAtAddress(const QString& address);

} // namespace quillbook
