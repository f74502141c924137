#include "typedstream/TypedStreamDecoderError.h"

#include <charconv>

namespace quillbook {
namespace {

std::string hexadecimal(std::uint64_t number) {
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, 16).ptr;
    return {digits, end};
}

std::string words(const TypedStreamDecoderError::PlainError& error) {
    return std::string(error.domain) + " (code " + std::to_string(error.code) + ")";
}

/// One overload a reason, none for all: a new reason without words does not compile.
struct Describing {
    std::string operator()(const TypedStreamDecoderError::OutOfBounds& reason) const {
        return "Index " + hexadecimal(reason.index) + " is outside of range " + hexadecimal(reason.length) +
               "!";
    }
    std::string operator()(const TypedStreamDecoderError::SliceError& reason) const {
        return "Unable to slice source stream: " + words(reason.error);
    }
    std::string operator()(const TypedStreamDecoderError::StringParseError& reason) const {
        return "Failed to parse string: " + words(reason.error);
    }
    std::string operator()(const TypedStreamDecoderError::InvalidPointer& reason) const {
        return "Failed to parse pointer: " + hexadecimal(reason.byte);
    }
    std::string operator()(const TypedStreamDecoderError::InvalidHeader&) const {
        return "Invalid typedstream header!";
    }
    std::string operator()(const TypedStreamDecoderError::InvalidArray&) const {
        return "Failed to parse array data";
    }
};

} // namespace

TypedStreamDecoderError::TypedStreamDecoderError(Reason reason)
    : reason_(reason), description_(std::make_shared<const std::string>(std::visit(Describing(), reason_))) {}

} // namespace quillbook
