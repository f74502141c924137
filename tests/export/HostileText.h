#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace quillbook::test {

/// Random texts made of what file formats trip over. Valid UTF-8, without NUL.
class HostileText {
public:
    explicit HostileText(std::uint32_t seed) : random_(seed) {}

    /// Of up to `most` pieces.
    std::string next(std::size_t most = 8);
    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
    }

private:
    std::mt19937 random_;
};

} // namespace quillbook::test
