#include "typedstream/TypedStreamDecoder.h"

#include "typedstream/TypeSignature.h"

#include <algorithm>
#include <string_view>

namespace quillbook {

using namespace typedstream;

namespace {

constexpr std::uint64_t headerVersion = 4;
constexpr std::string_view headerSignature = "streamtyped";
constexpr std::int64_t headerSystemVersion = 1000;

/// What a whole archive may copy through back references and types that take no bytes. A back reference of
/// two bytes commonly repeats some 160 bytes of values, so this leaves room for far more than Messages
/// writes, while an archive that refers to its longest item over and over ends in an error.
std::uint64_t copyBudget(std::uint64_t archiveLength) {
    constexpr std::uint64_t always = 1ULL << 20U;
    constexpr std::uint64_t perByte = 256;
    constexpr std::uint64_t countedLength = 256ULL << 10U;
    return always + perByte * std::min(archiveLength, countedLength);
}

std::uint64_t copyCost(const Class& type) {
    return sizeof(Class) + type.name.size();
}

std::uint64_t copyCost(const Object& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return sizeof(Object) + text->size();
    if (const auto* array = std::get_if<ByteArray>(&value)) return sizeof(Object) + array->bytes.size();
    if (const auto* type = std::get_if<Class>(&value)) return sizeof(Object) + type->name.size();
    return sizeof(Object);
}

std::uint64_t copyCost(const std::vector<Object>& values) {
    std::uint64_t cost = 0;
    for (const Object& value : values)
        cost += copyCost(value);
    return cost;
}

} // namespace

std::vector<Archivable> TypedStreamDecoder::decode(std::span<const std::uint8_t> archive) {
    TypedStreamDecoder decoder(archive);
    decoder.readHeader();
    std::vector<Archivable> items;
    while (true) {
        decoder.stream_.skipAll(END);
        if (decoder.stream_.isAtEnd()) return items;
        const TypeList* types = decoder.readTypes(Embedded::no);
        if (types == nullptr) continue;
        if (auto item = decoder.readValues(*types)) items.push_back(std::move(*item));
    }
}

TypedStreamDecoder::TypedStreamDecoder(std::span<const std::uint8_t> archive)
    : stream_(archive), copyBudget_(copyBudget(archive.size())) {}

void TypedStreamDecoder::readHeader() {
    const TypedStreamDecoderError invalid{TypedStreamDecoderError::InvalidHeader()};
    const std::uint64_t version = stream_.readUnsignedInt();
    // Another length is another signature, whatever its bytes are.
    if (stream_.readUnsignedInt() != headerSignature.size()) throw invalid;
    const std::string signature = stream_.readString(headerSignature.size());
    const std::int64_t systemVersion = stream_.readSignedInt();
    if (version != headerVersion || signature != headerSignature || systemVersion != headerSystemVersion) {
        throw invalid;
    }
}

// ---- Type lists

const TypeList* TypedStreamDecoder::readTypes(Embedded embedded) {
    switch (stream_.current()) {
    case START:
        return readNewTypes(embedded);
    case END:
        return nullptr;
    default:
        return readReferencedTypes(embedded);
    }
}

const TypeList* TypedStreamDecoder::readNewTypes(Embedded embedded) {
    stream_.skip();
    const std::uint64_t length = stream_.readUnsignedInt();
    typesTable_.push_back(parseSignature(stream_.readBytes(length)));
    const std::size_t index = typesTable_.size() - 1;
    if (embedded == Embedded::yes) noteEmbedded(index);
    return &typesTable_[index];
}

const TypeList* TypedStreamDecoder::readReferencedTypes(Embedded embedded) {
    while (stream_.current() == stream_.following())
        stream_.skip();
    const std::size_t index = stream_.readPointer();
    if (index >= typesTable_.size()) return nullptr;
    if (embedded == Embedded::yes) noteEmbedded(index);
    return &typesTable_[index];
}

void TypedStreamDecoder::noteEmbedded(std::size_t index) {
    const bool isNew = seenEmbeddedTypes_.insert(static_cast<std::uint32_t>(index)).second;
    if (isNew) objectTable_.emplace_back(TypeItem{typesTable_[index]});
}

// ---- Classes and objects

TypedStreamDecoder::ClassOrReference TypedStreamDecoder::readClass() {
    ClassChain chain;
    // A reference behind a chain names the rest of it, which stands in the table already.
    const auto ended = [&chain](std::size_t reference) {
        return chain.empty() ? ClassOrReference(reference) : ClassOrReference(std::move(chain));
    };
    while (true) {
        const std::uint8_t byte = stream_.current();
        if (byte != START && byte != EMPTY) return ended(stream_.readPointer());
        if (byte == EMPTY) {
            stream_.skip();
            return chain;
        }
        stream_.skipAll(START);
        const std::uint64_t length = stream_.readUnsignedInt();
        if (length >= REFERENCE_TAG) return ended(length - REFERENCE_TAG);
        std::string name = stream_.readString(length);
        const std::uint64_t version = stream_.readUnsignedInt();
        typesTable_.push_back({StringType{name}});
        chain.push_back(Class{std::move(name), version});
    }
}

const Archivable* TypedStreamDecoder::objectAt(std::size_t index) const {
    return index < objectTable_.size() ? &objectTable_[index] : nullptr;
}

const Archivable* TypedStreamDecoder::readObject() {
    switch (stream_.current()) {
    case EMPTY:
        stream_.skip();
        return nullptr;
    case START:
        break;
    default:
        return objectAt(stream_.readPointer());
    }
    ClassOrReference type = readClass();
    if (const auto* reference = std::get_if<std::size_t>(&type)) return objectAt(*reference);
    for (Class& link : std::get<ClassChain>(type))
        objectTable_.emplace_back(std::move(link));
    return nullptr;
}

// ---- Values

void TypedStreamDecoder::spend(std::uint64_t bytes) {
    if (bytes > copyBudget_) stream_.failOutOfBounds(stream_.index());
    copyBudget_ -= bytes;
}

/// Embedded data brings a type list of its own, and so on: the lists under way are a stack here, not one of
/// calls, because an archive may nest as deep as it is long.
std::optional<Archivable> TypedStreamDecoder::readValues(const TypeList& types) {
    std::vector<ValuePass> passes;
    passes.push_back(ValuePass{&types, 0, {}, false});
    while (!passes.empty()) {
        ValuePass& pass = passes.back();
        std::optional<Archivable> item;
        if (pass.next == pass.types->size()) {
            item = settle(pass);
            passes.pop_back();
        } else if (const Type& type = (*pass.types)[pass.next++]; type == Type(PlainType::embeddedData)) {
            stream_.skip();
            if (const TypeList* embedded = readTypes(Embedded::yes))
                passes.push_back(ValuePass{embedded, 0, {}, false});
        } else if (type == Type(PlainType::object)) {
            item = readObjectValue(pass);
        } else {
            readPlainValue(type, pass.values);
        }
        // An item found inside embedded data is the item of every list around it.
        if (item) return item;
    }
    return std::nullopt;
}

void TypedStreamDecoder::readPlainValue(const Type& type, std::vector<Object>& values) {
    if (const auto* name = std::get_if<StringType>(&type)) {
        spend(sizeof(Object) + name->text.size());
        values.emplace_back(name->text);
    } else if (const auto* unknown = std::get_if<UnknownType>(&type)) {
        spend(sizeof(Object));
        values.emplace_back(unknown->byte);
    } else if (const auto* array = std::get_if<ArrayType>(&type)) {
        const auto bytes = stream_.readBytes(static_cast<std::uint64_t>(array->count));
        values.emplace_back(ByteArray{{bytes.begin(), bytes.end()}});
    } else {
        switch (std::get<PlainType>(type)) {
        case PlainType::utf8String:
            values.emplace_back(stream_.readString(stream_.readUnsignedInt()));
            break;
        case PlainType::signedInt:
            values.emplace_back(stream_.readSignedInt());
            break;
        case PlainType::unsignedInt:
            values.emplace_back(stream_.readUnsignedInt());
            break;
        case PlainType::floatNumber:
            values.emplace_back(stream_.readFloat());
            break;
        case PlainType::doubleNumber:
            values.emplace_back(stream_.readDouble());
            break;
        case PlainType::embeddedData:
        case PlainType::object:
            break; // They are no plain values: readValues follows them.
        }
    }
}

/// Reserves a slot for the object and reads it. Gives an item only for a back reference to a finished object.
std::optional<Archivable> TypedStreamDecoder::readObjectValue(ValuePass& pass) {
    pass.sawObject = true;
    placeholder_ = objectTable_.size();
    objectTable_.emplace_back(Placeholder());
    const Archivable* found = readObject();
    if (found == nullptr) return std::nullopt;
    if (const auto* object = std::get_if<ObjectItem>(found); object != nullptr && !object->values.empty()) {
        spend(sizeof(Archivable) + copyCost(object->type) + copyCost(object->values));
        Archivable item = *object;
        placeholder_.reset();
        objectTable_.pop_back();
        return item;
    }
    if (const auto* data = std::get_if<DataItem>(found)) {
        spend(copyCost(data->values));
        pass.values.insert(pass.values.end(), data->values.begin(), data->values.end());
    } else if (const auto* type = std::get_if<Class>(found)) {
        spend(copyCost(*type));
        pass.values.emplace_back(*type);
    }
    return std::nullopt;
}

std::optional<Archivable> TypedStreamDecoder::settle(ValuePass& pass) {
    if (placeholder_ && !pass.values.empty()) {
        const auto* type = std::get_if<Class>(&pass.values.back());
        if (type == nullptr) return fillSlot(*placeholder_, pass.values);
        // Only the class is known so far; the slot goes on waiting for the values.
        objectTable_[*placeholder_] = ObjectItem{*type, {}};
    }
    if (pass.values.empty() || pass.sawObject) return std::nullopt;
    return DataItem{std::move(pass.values)};
}

std::optional<Archivable> TypedStreamDecoder::fillSlot(std::size_t slot, std::vector<Object>& values) {
    placeholder_.reset();
    Archivable& waiting = objectTable_[slot];
    const Archivable* behind = objectAt(slot + 1);
    if (const auto* type = behind == nullptr ? nullptr : std::get_if<Class>(behind)) {
        waiting = ObjectItem{*type, std::move(values)};
    } else if (auto* object = std::get_if<ObjectItem>(&waiting)) {
        std::move(values.begin(), values.end(), std::back_inserter(object->values));
    } else {
        waiting = DataItem{std::move(values)};
    }
    return waiting;
}

} // namespace quillbook
