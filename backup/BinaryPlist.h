#pragma once

#include "backup/PlistValue.h"
#include "core/records/DescribedError.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quillbook {

/// Bytes that are no binary property list, or a damaged one, or one that asks for far more memory than its
/// size.
class BinaryPlistError final : public DescribedError {
public:
    enum class Reason {
        unsupportedObject, ///< An object of a kind that is not read, a set among them.
        notBinaryPlist,    ///< Too short, or another format or version.
        truncated,         ///< A length, offset, count or reference that does not fit the file.
    };

    /// `objectMarker` is the first byte of an unsupported object; the others have none.
    explicit BinaryPlistError(Reason reason, std::uint8_t objectMarker = 0);

    std::string description() const override;
    bool operator==(const BinaryPlistError& other) const {
        return reason == other.reason && marker == other.marker;
    }

    Reason reason;
    std::uint8_t marker;
};

/// A property list of the form "bplist00", flat: references are not followed, so a list that holds itself is
/// read like any other.
struct BinaryPlist {
    std::vector<PlistValue> objects; ///< By object number. What arrays and dictionaries hold is PlistUID.
    std::size_t root = 0;            ///< The number of the top object; below the size of `objects`.

    /// Throws BinaryPlistError. Memory stays in proportion to the bytes, whatever they claim: objects that
    /// lie at one place share their payload, and those that overlap otherwise end the reading as truncated
    /// before they add up to much.
    static BinaryPlist parse(std::span<const std::uint8_t> bytes);
};

/// What a value out of a dictionary of a keyed archive stands for, in two steps at most: a reference leads
/// into `objects`, from there perhaps into `archiveObjects`, the archive's "$objects", and from there once
/// more into `objects`. Nothing for a reference that leads out of `archiveObjects`.
std::optional<PlistValue> resolve(const PlistValue& value, std::span<const PlistValue> objects,
                                  std::span<const PlistValue> archiveObjects);

} // namespace quillbook
