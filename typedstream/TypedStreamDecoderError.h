#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace quillbook {

/// Why a typed archive could not be read. Derives from std::exception alone: the room knows no other.
class TypedStreamDecoderError final : public std::exception {
public:
    /// An error of a layer below, known by its domain, a literal, and its code.
    struct PlainError {
        std::string_view domain;
        int code = 0;

        bool operator==(const PlainError&) const = default;
    };
    /// `index` is where the reading would have ended.
    struct OutOfBounds {
        std::uint64_t index;
        std::uint64_t length;

        bool operator==(const OutOfBounds&) const = default;
    };
    struct SliceError {
        PlainError error;

        bool operator==(const SliceError&) const = default;
    };
    struct StringParseError {
        PlainError error;

        bool operator==(const StringParseError&) const = default;
    };
    struct InvalidPointer {
        std::uint8_t byte;

        bool operator==(const InvalidPointer&) const = default;
    };
    struct InvalidHeader {
        bool operator==(const InvalidHeader&) const = default;
    };
    struct InvalidArray {
        bool operator==(const InvalidArray&) const = default;
    };
    using Reason =
        std::variant<OutOfBounds, SliceError, StringParseError, InvalidPointer, InvalidHeader, InvalidArray>;

    explicit TypedStreamDecoderError(Reason reason);

    const Reason& reason() const { return reason_; }
    const std::string& description() const { return *description_; }
    /// The description; the pointer lives as long as the error.
    const char* what() const noexcept override { return description_->c_str(); }

    bool operator==(const TypedStreamDecoderError& other) const { return reason_ == other.reason_; }

private:
    Reason reason_;
    std::shared_ptr<const std::string> description_; ///< Shared, so that a copy cannot throw.
};

} // namespace quillbook
