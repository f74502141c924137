#include "tests/support/TypedStreamBuilder.h"

namespace quillbook::test {
namespace {

constexpr std::uint8_t startTag = 0x84;
constexpr std::uint8_t emptyTag = 0x85;
constexpr std::uint8_t endTag = 0x86;
constexpr std::size_t firstReference = 0x92;

/// UTF-16 code units, as a run of attributes counts them.
std::int64_t utf16Length(std::string_view utf8) {
    std::int64_t length = 0;
    for (const char byte : utf8) {
        const auto unit = static_cast<unsigned char>(byte);
        length += unit >= 0xF0 ? 2 : (unit & 0xC0U) != 0x80 ? 1 : 0;
    }
    return length;
}

std::vector<std::uint8_t> archive(const TypedStreamBuilder::ClassChain& attributedClass,
                                  const TypedStreamBuilder::ClassChain& stringClass, std::string_view utf8) {
    TypedStreamBuilder builder;
    builder.types("@").beginObject(attributedClass);
    builder.types("@").string(stringClass, utf8);
    builder.types("iI").integer(1).integer(utf16Length(utf8));
    builder.types("@").beginObject(TypedStreamBuilder::nsDictionary).types("i").integer(1);
    builder.types("@").string(TypedStreamBuilder::nsString, "__kIMMessagePartAttributeName");
    builder.types("@").number(0);
    return builder.endObject().endObject().bytes();
}

} // namespace

const TypedStreamBuilder::ClassChain TypedStreamBuilder::nsString = {{"NSString", 1}, {"NSObject", 0}};
const TypedStreamBuilder::ClassChain TypedStreamBuilder::nsMutableString = {
    {"NSMutableString", 1}, {"NSString", 1}, {"NSObject", 0}};
const TypedStreamBuilder::ClassChain TypedStreamBuilder::nsAttributedString = {{"NSAttributedString", 0},
                                                                               {"NSObject", 0}};
const TypedStreamBuilder::ClassChain TypedStreamBuilder::nsMutableAttributedString = {
    {"NSMutableAttributedString", 0}, {"NSAttributedString", 0}, {"NSObject", 0}};
const TypedStreamBuilder::ClassChain TypedStreamBuilder::nsDictionary = {{"NSDictionary", 0},
                                                                         {"NSObject", 0}};
const TypedStreamBuilder::ClassChain TypedStreamBuilder::nsNumber = {
    {"NSNumber", 0}, {"NSValue", 0}, {"NSObject", 0}};
const TypedStreamBuilder::ClassChain TypedStreamBuilder::nsObject = {{"NSObject", 0}};

TypedStreamBuilder::TypedStreamBuilder() {
    raw({0x04, 0x0B}).raw("streamtyped").raw({0x81, 0xE8, 0x03});
}

TypedStreamBuilder& TypedStreamBuilder::types(std::string_view signature) {
    sharedString(signature);
    return *this;
}

TypedStreamBuilder& TypedStreamBuilder::beginObject(const ClassChain& chain) {
    bytes_.push_back(startTag);
    ++objectCount_;
    classChain(chain);
    return *this;
}

TypedStreamBuilder& TypedStreamBuilder::endObject() {
    bytes_.push_back(endTag);
    return *this;
}

TypedStreamBuilder& TypedStreamBuilder::integer(std::int64_t number) {
    const auto bits = static_cast<std::uint64_t>(number);
    const bool isSmall = number >= -0x80 && number < 0x80;
    const int size = isSmall ? 1 : number >= -0x8000 && number < 0x8000 ? 2 : 4;
    if (size > 1) bytes_.push_back(size == 2 ? 0x81 : 0x82);
    for (int index = 0; index < size; ++index)
        bytes_.push_back(static_cast<std::uint8_t>(bits >> (8 * index)));
    return *this;
}

TypedStreamBuilder& TypedStreamBuilder::text(std::string_view utf8) {
    return integer(static_cast<std::int64_t>(utf8.size())).raw(utf8);
}

TypedStreamBuilder& TypedStreamBuilder::string(const ClassChain& chain, std::string_view utf8) {
    const auto known = stringObjects_.find(utf8);
    if (known != stringObjects_.end()) return reference(known->second);
    stringObjects_.emplace(utf8, objectCount_);
    return beginObject(chain).types("+").text(utf8).endObject();
}

TypedStreamBuilder& TypedStreamBuilder::number(std::int8_t value) {
    beginObject(nsNumber).types("*");
    // The signature as a C string: an object of its own the first time.
    if (signatureObject_) {
        reference(*signatureObject_);
    } else {
        signatureObject_ = objectCount_++;
        bytes_.push_back(startTag);
        sharedString("q");
    }
    return types("q").integer(value).endObject();
}

TypedStreamBuilder& TypedStreamBuilder::reference(std::size_t index) {
    return integer(static_cast<std::int64_t>(static_cast<std::int8_t>(firstReference + index)));
}

TypedStreamBuilder& TypedStreamBuilder::raw(std::span<const std::uint8_t> bytes) {
    for (const auto byte : bytes)
        bytes_.push_back(static_cast<std::uint8_t>(byte));
    return *this;
}

TypedStreamBuilder& TypedStreamBuilder::raw(std::initializer_list<std::uint8_t> bytes) {
    return raw(std::span(bytes.begin(), bytes.size()));
}

TypedStreamBuilder& TypedStreamBuilder::raw(std::string_view bytes) {
    for (const auto byte : bytes)
        bytes_.push_back(static_cast<std::uint8_t>(byte));
    return *this;
}

void TypedStreamBuilder::sharedString(std::string_view text) {
    const auto [entry, isNew] = sharedStrings_.emplace(text, sharedStrings_.size());
    if (!isNew) {
        reference(entry->second);
        return;
    }
    raw({startTag, static_cast<std::uint8_t>(text.size())}).raw(text);
}

void TypedStreamBuilder::classChain(const ClassChain& chain) {
    for (const ClassLink& link : chain) {
        const auto [entry, isNew] = classes_.emplace(link.name, objectCount_);
        if (!isNew) {
            reference(entry->second);
            return;
        }
        ++objectCount_;
        bytes_.push_back(startTag);
        sharedString(link.name);
        bytes_.push_back(link.version);
    }
    bytes_.push_back(emptyTag);
}

std::vector<std::uint8_t> archivedBody(std::string_view utf8) {
    return archive(TypedStreamBuilder::nsAttributedString, TypedStreamBuilder::nsString, utf8);
}

std::vector<std::uint8_t> archivedMutableBody(std::string_view utf8) {
    return archive(TypedStreamBuilder::nsMutableAttributedString, TypedStreamBuilder::nsMutableString, utf8);
}

} // namespace quillbook::test
