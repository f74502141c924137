#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace quillbook {

/// The string of an archive that NSKeyedArchiver wrote of an NSString or NSAttributedString, mutable or not;
/// nothing for any other bytes (docs/formats/typed-archive.md, "Keyed archives"). UTF-8, repaired where the
/// archive's own string is broken. Costs next to nothing for bytes that are no property list.
std::optional<std::string> keyedArchiveText(std::span<const std::uint8_t> archive);

} // namespace quillbook
