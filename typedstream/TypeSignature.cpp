#include "typedstream/TypeSignature.h"

#include "typedstream/TypedStreamDecoderError.h"

#include <charconv>

namespace quillbook::typedstream {
namespace {

Type typeOf(std::uint8_t byte) {
    switch (byte) {
    case '+':
        return PlainType::utf8String;
    case '*':
        return PlainType::embeddedData;
    case '@':
        return PlainType::object;
    case 'c':
    case 'i':
    case 'l':
    case 'q':
    case 's':
        return PlainType::signedInt;
    case 'C':
    case 'I':
    case 'L':
    case 'Q':
    case 'S':
        return PlainType::unsignedInt;
    case 'f':
        return PlainType::floatNumber;
    case 'd':
        return PlainType::doubleNumber;
    default:
        return UnknownType{byte};
    }
}

/// `digits` starts behind the bracket and may go on past the digits.
ArrayType arrayType(std::span<const std::uint8_t> digits) {
    std::int64_t count = 0;
    const auto* first = reinterpret_cast<const char*>(digits.data());
    const auto result = std::from_chars(first, first + digits.size(), count);
    // "[-0" would be a number to from_chars; the count check refuses every sign.
    if (result.ec != std::errc() || count < 1) {
        throw TypedStreamDecoderError(TypedStreamDecoderError::InvalidArray());
    }
    return ArrayType{count};
}

} // namespace

TypeList parseSignature(std::span<const std::uint8_t> signature) {
    if (!signature.empty() && signature.front() == '[') return {arrayType(signature.subspan(1))};
    TypeList types;
    types.reserve(signature.size());
    for (const std::uint8_t byte : signature)
        types.push_back(typeOf(byte));
    return types;
}

} // namespace quillbook::typedstream
