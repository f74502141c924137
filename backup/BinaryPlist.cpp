#include "backup/BinaryPlist.h"

#include "core/text/Localization.h"
#include "core/text/UTF8.h"

#include <algorithm>
#include <cstring>

namespace quillbook {
namespace {

using Bytes = std::span<const std::uint8_t>;
using Reason = BinaryPlistError::Reason;

constexpr std::string_view header = "bplist00";
constexpr std::size_t trailerLength = 32;
constexpr std::size_t shortestFile = 40;

/// How long a chain of dictionaries may be of which each is a key of the one before. Property lists have
/// strings for keys: a chain of one link.
constexpr int longestKeyChain = 128;

[[noreturn]] void throwTruncated() {
    throw BinaryPlistError(Reason::truncated);
}

/// Big-endian; of more than eight bytes the last eight count.
std::uint64_t number(Bytes bytes) {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes)
        value = value << 8U | byte;
    return value;
}

/// A number that counts or refers: all are signed 64-bit, and none is negative.
std::size_t count(Bytes bytes) {
    const std::uint64_t value = number(bytes);
    if (value >> 63U != 0) throwTruncated();
    return value;
}

template <typename Real, typename Bits>
double real(Bits bits) {
    static_assert(sizeof(Real) == sizeof(Bits));
    Real value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::string_view characters(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// UTF-16, big-endian, as UTF-8; appendScalar replaces the surrogates that stand alone.
std::string textOfUTF16(Bytes bytes) {
    std::string text;
    text.reserve(bytes.size() / 2);
    const auto unitAt = [bytes](std::size_t index) -> char32_t {
        return index < bytes.size() ? static_cast<char32_t>(bytes[index] << 8U | bytes[index + 1]) : 0;
    };
    for (std::size_t index = 0; index < bytes.size(); index += 2) {
        const char32_t unit = unitAt(index);
        const char32_t next = unitAt(index + 2);
        const bool isPair = unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000;
        appendScalar(text, isPair ? 0x10000 + ((unit - 0xD800) << 10U) + (next - 0xDC00) : unit);
        if (isPair) index += 2;
    }
    return text;
}

/// The last 32 bytes of a file.
struct Trailer {
    std::size_t offsetSize;
    std::size_t referenceSize;
    std::size_t objectCount;
    std::size_t topObject;
    std::size_t tablePosition;
};

/// Afterwards the offset table lies in the file. It may run into the trailer.
Trailer readTrailer(Bytes file) {
    const Bytes bytes = file.last(trailerLength);
    const Trailer trailer{bytes[6], bytes[7], count(bytes.subspan(8, 8)), count(bytes.subspan(16, 8)),
                          count(bytes.subspan(24, 8))};
    const auto isSize = [](std::size_t size) { return size >= 1 && size <= 8; };
    if (!isSize(trailer.offsetSize) || !isSize(trailer.referenceSize)) throwTruncated();
    if (trailer.topObject >= trailer.objectCount) throwTruncated();
    if (trailer.objectCount > file.size() / trailer.offsetSize) throwTruncated();
    if (trailer.tablePosition > file.size() - trailer.objectCount * trailer.offsetSize) throwTruncated();
    return trailer;
}

/// Bounds what objects may ask for together. A writer lays objects side by side, so that their bodies add up
/// to less than the file; twice that, and a constant for small files of any make, is more than enough.
/// Keys are charged once a pair, since each is compared there with others: a pair takes two bytes at least,
/// so even a file of nothing but pairs may have keys of 128 bytes each.
class Allowance {
public:
    explicit Allowance(std::size_t fileSize)
        : bodies_(2 * fileSize + 65'536), keys_(64 * fileSize + 1'048'576) {}

    void takeBody(std::size_t size) { take(bodies_, size); }
    void takeKey(std::size_t size) { take(keys_, size); }

private:
    static void take(std::size_t& left, std::size_t size) {
        if (size > left) throwTruncated();
        left -= size;
    }

    std::size_t bodies_;
    std::size_t keys_;
};

class ObjectReader {
public:
    ObjectReader(Bytes file, const Trailer& trailer)
        : file_(file), trailer_(trailer), allowance_(file.size()), states_(file.size(), unread),
          objects_(trailer.objectCount) {}

    std::vector<PlistValue> readAll() &&;

private:
    // States of a place in the file; from `readAsFirst` on the number of the object that was read there.
    static constexpr std::size_t unread = 0;
    static constexpr std::size_t beingRead = 1;
    static constexpr std::size_t readAsFirst = 2;

    std::size_t offsetOf(std::size_t object) const;
    const PlistValue& read(std::size_t object, int chainLength);
    PlistValue parse(std::size_t offset, int chainLength);
    PlistValue parseReal(std::size_t offset) const;
    PlistValue parseUID(std::size_t offset) const;
    PlistValue parseArray(std::size_t offset);
    PlistValue parseDictionary(std::size_t offset, int chainLength);
    PlistString keyText(std::size_t object, int chainLength);

    std::uint64_t lenientNumber(std::size_t start, std::size_t size) const;
    Bytes body(std::size_t offset, std::size_t unitSize);
    std::size_t reference(Bytes body, std::size_t index) const;

    Bytes file_;
    Trailer trailer_;
    Allowance allowance_;
    std::vector<std::size_t> states_; ///< By offset.
    std::vector<PlistValue> objects_; ///< By number; never resized, so references into it hold.
};

std::size_t ObjectReader::offsetOf(std::size_t object) const {
    return count(file_.subspan(trailer_.tablePosition + object * trailer_.offsetSize, trailer_.offsetSize));
}

std::vector<PlistValue> ObjectReader::readAll() && {
    // An offset that is no offset comes before every fault of an object.
    for (std::size_t object = 0; object < trailer_.objectCount; ++object)
        offsetOf(object);
    for (std::size_t object = 0; object < trailer_.objectCount; ++object) {
        const PlistValue& value = read(object, 0);
        if (&value != &objects_[object]) objects_[object] = value;
    }
    return std::move(objects_);
}

/// Each place is read once, however many numbers and keys lead to it; a place that needs itself is a loop of
/// keys.
const PlistValue& ObjectReader::read(std::size_t object, int chainLength) {
    const std::size_t offset = offsetOf(object);
    if (offset >= file_.size() || chainLength > longestKeyChain) throwTruncated();
    std::size_t& state = states_[offset];
    if (state == beingRead) throwTruncated();
    if (state == unread) {
        state = beingRead;
        objects_[object] = parse(offset, chainLength);
        state = readAsFirst + object;
    }
    return objects_[state - readAsFirst];
}

PlistValue ObjectReader::parse(std::size_t offset, int chainLength) {
    const std::uint8_t marker = file_[offset];
    switch (marker >> 4U) {
    case 0x0:
        if (marker != 0x08 && marker != 0x09) return {PlistNull()};
        return {marker == 0x09};
    case 0x1:
        return {static_cast<std::int64_t>(lenientNumber(offset + 1, std::size_t{1} << (marker & 0x0FU)))};
    case 0x2:
        return parseReal(offset);
    case 0x3:
        return {real<double>(lenientNumber(offset + 1, 8))};
    case 0x4: {
        const Bytes bytes = body(offset, 1);
        return {PlistData(Data(bytes.begin(), bytes.end()))};
    }
    case 0x5:
        return {PlistString(repairedUTF8(characters(body(offset, 1))))};
    case 0x6:
        return {PlistString(textOfUTF16(body(offset, 2)))};
    case 0x8:
        return parseUID(offset);
    case 0xA:
        return parseArray(offset);
    case 0xD:
        return parseDictionary(offset, chainLength);
    default:
        throw BinaryPlistError(Reason::unsupportedObject, marker);
    }
}

/// Four bytes are a float; the bits of every other count are those of a double as they stand.
PlistValue ObjectReader::parseReal(std::size_t offset) const {
    const std::size_t size = std::size_t{1} << (file_[offset] & 0x0FU);
    const std::uint64_t bits = lenientNumber(offset + 1, size);
    return {size == 4 ? real<float>(static_cast<std::uint32_t>(bits)) : real<double>(bits)};
}

PlistValue ObjectReader::parseUID(std::size_t offset) const {
    const std::size_t size = (file_[offset] & 0x0FU) + 1U;
    if (size > file_.size() - offset - 1) throwTruncated();
    return {PlistUID{static_cast<std::int64_t>(count(file_.subspan(offset + 1, size)))}};
}

PlistValue ObjectReader::parseArray(std::size_t offset) {
    const Bytes references = body(offset, trailer_.referenceSize);
    std::vector<PlistValue> elements(references.size() / trailer_.referenceSize);
    for (std::size_t index = 0; index < elements.size(); ++index)
        elements[index].content = PlistUID{static_cast<std::int64_t>(reference(references, index))};
    return {PlistArray(std::move(elements))};
}

/// All references of keys come before all those of values.
PlistValue ObjectReader::parseDictionary(std::size_t offset, int chainLength) {
    const Bytes references = body(offset, 2 * trailer_.referenceSize);
    const std::size_t pairCount = references.size() / (2 * trailer_.referenceSize);
    std::vector<PlistEntries::Entry> pairs;
    pairs.reserve(pairCount);
    for (std::size_t index = 0; index < pairCount; ++index) {
        const std::size_t key = reference(references, index);
        const std::size_t value = reference(references, pairCount + index);
        if (key >= trailer_.objectCount) throwTruncated();
        pairs.push_back({keyText(key, chainLength + 1), {PlistUID{static_cast<std::int64_t>(value)}}});
    }
    return {PlistDictionary(PlistEntries(std::move(pairs)))};
}

/// The text of a key, which is the number of its object where that is no string.
PlistString ObjectReader::keyText(std::size_t object, int chainLength) {
    const PlistValue& key = read(object, chainLength);
    const auto* text = key.as<PlistString>();
    if (text == nullptr) return std::to_string(object);
    allowance_.takeKey((*text)->size());
    return *text;
}

/// Of a number that runs past the end of the file the bytes that are there count.
std::uint64_t ObjectReader::lenientNumber(std::size_t start, std::size_t size) const {
    const Bytes bytes = file_.subspan(start, std::min(size, file_.size() - start));
    return number(bytes.last(std::min<std::size_t>(bytes.size(), 8)));
}

/// What follows a marker with a length, which counts units: the length is in the marker, or 15 there and an
/// integer object behind it.
Bytes ObjectReader::body(std::size_t offset, std::size_t unitSize) {
    std::size_t start = offset + 1;
    std::size_t length = file_[offset] & 0x0FU;
    if (length == 15) {
        if (start == file_.size() || file_[start] < 0x10 || file_[start] > 0x13) throwTruncated();
        const std::size_t size = std::size_t{1} << (file_[start] & 0x0FU);
        ++start;
        if (size > file_.size() - start) throwTruncated();
        length = count(file_.subspan(start, size));
        start += size;
    }
    if (length > (file_.size() - start) / unitSize) throwTruncated();
    allowance_.takeBody(length * unitSize);
    return file_.subspan(start, length * unitSize);
}

std::size_t ObjectReader::reference(Bytes references, std::size_t index) const {
    return count(references.subspan(index * trailer_.referenceSize, trailer_.referenceSize));
}

const PlistValue* element(std::span<const PlistValue> values, std::int64_t index) {
    if (index < 0 || static_cast<std::uint64_t>(index) >= values.size()) return nullptr;
    return &values[static_cast<std::size_t>(index)];
}

} // namespace

BinaryPlistError::BinaryPlistError(Reason why, std::uint8_t objectMarker)
    : reason(why), marker(objectMarker) {}

std::string BinaryPlistError::description() const {
    return localized("An unexpected error occurred.");
}

BinaryPlist BinaryPlist::parse(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < shortestFile || characters(bytes.first(header.size())) != header)
        throw BinaryPlistError(Reason::notBinaryPlist);
    const Trailer trailer = readTrailer(bytes);
    return {ObjectReader(bytes, trailer).readAll(), trailer.topObject};
}

std::optional<PlistValue> resolve(const PlistValue& value, std::span<const PlistValue> objects,
                                  std::span<const PlistValue> archiveObjects) {
    const auto* reference = value.as<PlistUID>();
    if (reference == nullptr) return value;
    const PlistValue* object = element(objects, reference->number);
    const auto* archived = object == nullptr ? reference : object->as<PlistUID>();
    if (archived == nullptr) return *object;
    const PlistValue* entry = element(archiveObjects, archived->number);
    if (entry == nullptr) return std::nullopt;
    const auto* last = entry->as<PlistUID>();
    const PlistValue* target = last == nullptr ? nullptr : element(objects, last->number);
    return target == nullptr ? *entry : *target;
}

} // namespace quillbook
