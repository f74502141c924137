#pragma once

#include <compare>
#include <functional>
#include <string>

namespace quillbook {

/// Names a conversation, a message or an attachment by the identity it has in its source. Opaque: only the
/// source's reader makes one.
struct SourceID {
    std::string rawValue;

    auto operator<=>(const SourceID&) const = default;
};

} // namespace quillbook

template <>
struct std::hash<quillbook::SourceID> {
    std::size_t operator()(const quillbook::SourceID& id) const noexcept {
        return std::hash<std::string>()(id.rawValue);
    }
};
