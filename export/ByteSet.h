#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace quillbook {

/// A set of byte values, for finding the few bytes of a text that need care in one quick pass.
class ByteSet {
public:
    constexpr explicit ByteSet(std::string_view members) {
        for (const char member : members)
            isMember_[static_cast<unsigned char>(member)] = true;
    }

    constexpr bool contains(char byte) const { return isMember_[static_cast<unsigned char>(byte)]; }

    /// Index of the first member at or behind `start`; the text's length where there is none.
    constexpr std::size_t firstIn(std::string_view text, std::size_t start = 0) const {
        std::size_t index = start;
        while (index < text.size() && !contains(text[index]))
            ++index;
        return index;
    }

private:
    std::array<bool, 256> isMember_{};
};

} // namespace quillbook
