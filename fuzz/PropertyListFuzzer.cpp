#include "backup/BinaryPlist.h"
#include "core/text/UTF8.h"
#include "fuzz/Harness.h"

#include <cstring>
#include <set>

namespace quillbook {
namespace {

struct Outcome {
    std::optional<BinaryPlist> list;
    std::optional<BinaryPlistError> error;
};

Outcome outcomeOf(std::span<const std::uint8_t> bytes) {
    try {
        return {BinaryPlist::parse(bytes), std::nullopt};
    } catch (const BinaryPlistError& error) {
        return {std::nullopt, error};
    }
}

/// A real that is no number equals nothing, itself included; its bits do.
bool isSame(const PlistValue& one, const PlistValue& other) {
    const auto* oneReal = one.as<double>();
    const auto* otherReal = other.as<double>();
    if (oneReal == nullptr || otherReal == nullptr) return one == other;
    return std::memcmp(oneReal, otherReal, sizeof *oneReal) == 0;
}

/// Adds up what the objects of a list take, a shared payload once.
class Scale {
public:
    std::size_t sizeOf(const PlistValue& value) {
        const std::size_t size = sizeof(PlistValue);
        if (const auto* text = value.as<PlistString>()) return size + sizeOf(*text);
        if (const auto* bytes = value.as<PlistData>())
            return size + (isNew(&**bytes) ? sizeof **bytes + (*bytes)->size() : 0);
        if (const auto* elements = value.as<PlistArray>()) return size + sizeOf(*elements);
        if (const auto* pairs = value.as<PlistDictionary>()) return size + sizeOf(*pairs);
        return size;
    }

private:
    bool isNew(const void* payload) { return met_.insert(payload).second; }

    std::size_t sizeOf(const PlistString& text) {
        fuzz::require(isValidUTF8(*text), "every text is UTF-8");
        return isNew(&*text) ? sizeof *text + text->size() : 0;
    }
    std::size_t sizeOf(const PlistArray& elements) {
        if (!isNew(&*elements)) return 0;
        for (const PlistValue& element : *elements)
            requireReference(element);
        return sizeof *elements + elements->size() * sizeof(PlistValue);
    }
    std::size_t sizeOf(const PlistDictionary& pairs) {
        if (!isNew(&*pairs)) return 0;
        std::size_t size = sizeof *pairs;
        const std::string* last = nullptr;
        for (const auto& [key, value] : *pairs) {
            fuzz::require(last == nullptr || *last < *key, "keys differ and are in order");
            last = &*key;
            requireReference(value);
            size += sizeof(PlistEntries::Entry) + sizeOf(key);
        }
        return size;
    }
    static void requireReference(const PlistValue& value) {
        const auto* reference = value.as<PlistUID>();
        fuzz::require(reference != nullptr && reference->number >= 0,
                      "arrays and dictionaries hold numbers of objects");
    }

    std::set<const void*> met_;
};

/// The elements of the first array stand for a keyed archive's objects.
void checkResolving(const BinaryPlist& list) {
    std::span<const PlistValue> archive;
    for (const PlistValue& object : list.objects) {
        const auto* elements = object.as<PlistArray>();
        if (elements != nullptr && archive.empty()) archive = **elements;
    }
    for (const PlistValue& object : list.objects) {
        const auto resolved = resolve(object, list.objects, archive);
        if (object.as<PlistUID>() == nullptr)
            fuzz::require(resolved && isSame(*resolved, object), "what is no reference stands for itself");
    }
}

void checkList(const BinaryPlist& list, std::size_t fileSize) {
    fuzz::require(list.root < list.objects.size(), "the top object is one of the list");
    fuzz::require(list.objects.size() <= fileSize, "every object takes a byte of the offset table at least");
    Scale scale;
    std::size_t size = 0;
    for (const PlistValue& object : list.objects)
        size += scale.sizeOf(object);
    fuzz::require(size <= (2U << 20U) + 256 * fileSize, "the list stays in proportion to the file");
    checkResolving(list);
}

} // namespace
} // namespace quillbook

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quillbook;
    const Outcome first = outcomeOf({data, size});
    const Outcome second = outcomeOf({data, size});
    fuzz::require(first.error == second.error, "a file fails always alike or never");
    fuzz::require(!first.error || !first.error->description().empty(), "an error has words");
    if (!first.list) return 0;
    fuzz::require(first.list->objects.size() == second.list->objects.size(),
                  "a file has one number of objects");
    for (std::size_t number = 0; number < first.list->objects.size(); ++number)
        fuzz::require(isSame(first.list->objects[number], second.list->objects[number]),
                      "a file gives the same objects each time");
    checkList(*first.list, size);
    return 0;
}
