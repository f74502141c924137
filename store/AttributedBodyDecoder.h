#pragma once

#include "core/records/ArchiveConversation.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quillbook {

/// Turns a message's "attributedBody" into plain text: an archive of NSArchiver
/// (docs/formats/typed-archive.md) or, seldom, of NSKeyedArchiver. Formatting, mentions and other attributes
/// are not read. Stateless; the blob is not trusted.
class AttributedBodyDecoder {
public:
    struct Body {
        std::optional<std::string> text; ///< UTF-8. What stands where an attachment stood, U+FFFC, is kept.
        MessagePayloadState payloadState = MessagePayloadState::decoded;

        bool operator==(const Body&) const = default;
    };

    /// Every outcome is a text or its absence, with how sure it is. No blob and an empty one are `decoded`
    /// without text.
    Body decode(std::optional<std::span<const std::uint8_t>> blob) const;
};

/// The bytes as text, unchanged, unless they are empty, no UTF-8, or hold a control character other than tab,
/// line feed and carriage return: such bytes only happen to read as text.
std::optional<std::string> checkedText(std::string_view bytes);

} // namespace quillbook
