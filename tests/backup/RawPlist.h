#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillbook::test {

/// A binary property list from the bytes of its objects, with every field of the trailer open to lies.
struct RawPlist {
    std::vector<std::string> objects;
    std::string header = "bplist00";
    std::uint8_t offsetSize = 1;
    std::uint8_t referenceSize = 1;
    std::uint64_t top = 0;
    std::optional<std::uint64_t> count;                ///< Else as many as there are offsets.
    std::optional<std::uint64_t> table;                ///< Else where the table lies.
    std::optional<std::vector<std::uint64_t>> offsets; ///< Else one for each object.

    std::string bytes() const {
        std::string list = header;
        std::vector<std::uint64_t> places;
        for (const std::string& object : objects) {
            places.push_back(list.size());
            list += object;
        }
        const std::uint64_t tablePosition = table.value_or(list.size());
        places = offsets.value_or(places);
        for (const std::uint64_t place : places)
            list += big(place, offsetSize);
        list += std::string(6, '\0');
        list += static_cast<char>(offsetSize);
        list += static_cast<char>(referenceSize);
        return list + big(count.value_or(places.size()), 8) + big(top, 8) + big(tablePosition, 8);
    }

    /// The low bytes of a number; none for a size of 0.
    static std::string big(std::uint64_t number, unsigned size) {
        std::string bytes;
        for (unsigned index = size; index > 0; --index)
            bytes += index > 8 ? '\0' : static_cast<char>(number >> (8 * (index - 1)));
        return bytes;
    }
};

} // namespace quillbook::test
