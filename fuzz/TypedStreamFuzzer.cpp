#include "core/text/UTF8.h"
#include "fuzz/Harness.h"
#include "typedstream/TypedStreamDecoder.h"

#include <optional>

namespace quillbook {
namespace {

using namespace typedstream;
using Items = std::vector<Archivable>;

struct Outcome {
    std::optional<Items> items;
    std::string error;
};

Outcome outcomeOf(std::span<const std::uint8_t> archive) {
    try {
        return {TypedStreamDecoder::decode(archive), ""};
    } catch (const TypedStreamDecoderError& error) {
        return {std::nullopt, error.description()};
    }
}

/// Hashes instead of values: a decimal that is no number equals nothing, itself included.
std::size_t hashOf(const Items& items) {
    std::size_t hash = items.size();
    for (const Archivable& item : items)
        hash = hash * 31 + std::hash<Archivable>()(item);
    return hash;
}

std::size_t sizeOf(const Object& value) {
    std::size_t size = sizeof(Object);
    if (const auto* text = std::get_if<std::string>(&value)) {
        fuzz::require(isValidUTF8(*text), "every text is UTF-8");
        size += text->size();
    } else if (const auto* array = std::get_if<ByteArray>(&value)) {
        size += array->bytes.size();
    } else if (const auto* type = std::get_if<Class>(&value)) {
        size += type->name.size();
    }
    return size;
}

std::size_t sizeOf(const Archivable& item) {
    std::size_t size = sizeof(Archivable);
    const std::vector<Object>* values = nullptr;
    if (const auto* object = std::get_if<ObjectItem>(&item)) {
        fuzz::require(!object->values.empty(), "an object of the result has values");
        size += object->type.name.size();
        values = &object->values;
    } else if (const auto* data = std::get_if<DataItem>(&item)) {
        values = &data->values;
    }
    fuzz::require(values != nullptr, "the result holds objects and data alone");
    for (const Object& value : *values)
        size += sizeOf(value);
    return size;
}

void checkItems(const Items& items, std::size_t archiveSize) {
    std::size_t size = 0;
    for (const Archivable& item : items) {
        size += sizeOf(item);
        if (const auto text = stringValue(item))
            fuzz::require(!text->empty(), "a text that a person wrote is not empty");
        fuzz::require(!(signedIntegerValue(item) && unsignedIntegerValue(item)), "a number is of one kind");
    }
    fuzz::require(items.size() <= archiveSize, "every item takes a byte at least");
    fuzz::require(size <= (2U << 20U) + 1024 * archiveSize, "the result stays in proportion to the archive");
}

} // namespace
} // namespace quillbook

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quillbook;
    const Outcome first = outcomeOf({data, size});
    const Outcome second = outcomeOf({data, size});
    fuzz::require(first.error == second.error && first.items.has_value() == second.items.has_value(),
                  "an archive fails always or never");
    fuzz::require(first.items || !first.error.empty(), "an error has words");
    if (!first.items) return 0;
    fuzz::require(hashOf(*first.items) == hashOf(*second.items), "an archive gives the same items each time");
    checkItems(*first.items, size);
    return 0;
}
