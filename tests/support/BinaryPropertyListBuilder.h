#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillbook::test {

/// Writes binary property lists object by object, the ill-formed ones too. References take four bytes.
class BinaryPropertyListBuilder {
public:
    using Entries = std::vector<std::pair<std::string_view, std::size_t>>;

    /// Each gives the number of the object it adds.
    std::size_t object(std::string bytes) {
        objects_.push_back(std::move(bytes));
        return objects_.size() - 1;
    }
    std::size_t ascii(std::string_view text) { return object(head(0x50, text.size()).append(text)); }
    std::size_t utf16(const std::u16string& text) {
        std::string bytes = head(0x60, text.size());
        for (const char16_t unit : text)
            bytes += bigEndian(unit, 2);
        return object(bytes);
    }
    std::size_t data(std::string_view contents) {
        return object(head(0x40, contents.size()).append(contents));
    }
    std::size_t integer(std::uint32_t number) { return object(integerBytes(number)); }
    std::size_t uid(std::uint8_t number) {
        return object({static_cast<char>(0x80), static_cast<char>(number)});
    }
    std::size_t array(const std::vector<std::size_t>& elements) {
        std::string bytes = head(0xA0, elements.size());
        for (const std::size_t element : elements)
            bytes += bigEndian(element, 4);
        return object(bytes);
    }
    std::size_t dictionary(const Entries& entries) {
        std::string keys;
        std::string values;
        for (const auto& [key, value] : entries) {
            keys += bigEndian(ascii(key), 4);
            values += bigEndian(value, 4);
        }
        return object(head(0xD0, entries.size()).append(keys).append(values));
    }

    std::string bytes(std::size_t top) const {
        std::string list = "bplist00";
        std::string table;
        for (const std::string& object : objects_) {
            table += bigEndian(list.size(), 4);
            list += object;
        }
        const std::size_t tableOffset = list.size();
        return list.append(table)
            .append(std::string(6, '\0'))
            .append("\x04\x04")
            .append(bigEndian(objects_.size(), 8))
            .append(bigEndian(top, 8))
            .append(bigEndian(tableOffset, 8));
    }

    static std::string bigEndian(std::uint64_t number, unsigned size) {
        std::string bytes;
        while (size > 0)
            bytes += static_cast<char>(number >> (8 * --size));
        return bytes;
    }
    /// The marker with its count, in an integer behind it from 15 on.
    static std::string head(std::uint8_t kind, std::uint64_t count) {
        if (count < 15) return {static_cast<char>(kind + count)};
        return std::string{static_cast<char>(kind + 15)}.append(integerBytes(count));
    }

private:
    static std::string integerBytes(std::uint64_t number) {
        return std::string("\x12").append(bigEndian(number, 4));
    }

    std::vector<std::string> objects_;
};

} // namespace quillbook::test
