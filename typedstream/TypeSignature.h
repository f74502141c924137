#pragma once

#include "typedstream/Archivable.h"

#include <cstdint>
#include <span>

namespace quillbook::typedstream {

/// The types that a signature's bytes stand for, in order. An array is one type alone: what follows its count
/// is passed over. Throws TypedStreamDecoderError, invalidArray.
TypeList parseSignature(std::span<const std::uint8_t> signature);

} // namespace quillbook::typedstream
