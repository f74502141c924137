#include "tools/sample/AttributedBodies.h"

#include "core/text/UTF8.h"
#include "tools/sample/KeyedArchiveWriter.h"
#include "tools/sample/TypedStreamWriter.h"

#include <array>

namespace quillbook::sample {
namespace {

using Chain = std::vector<TypedStreamClass>;

constexpr std::string_view objectReplacement = "\xEF\xBF\xBC";
constexpr std::string_view partAttribute = "__kIMMessagePartAttributeName";

const Chain& stringChain(Mutability mutability) {
    static const Chain plain = {{"NSString", 1}, {"NSObject", 0}};
    static const Chain changing = {{"NSMutableString", 1}, {"NSString", 1}, {"NSObject", 0}};
    return mutability == Mutability::immutable ? plain : changing;
}

const Chain& attributedStringChain(Mutability mutability) {
    static const Chain plain = {{"NSAttributedString", 0}, {"NSObject", 0}};
    static const Chain changing = {
        {"NSMutableAttributedString", 0}, {"NSAttributedString", 0}, {"NSObject", 0}};
    return mutability == Mutability::immutable ? plain : changing;
}

/// Attribute runs count UTF-16 units.
std::size_t utf16Length(std::string_view text) {
    std::size_t units = 0;
    while (!text.empty())
        units += takeScalar(text) > 0xFFFF ? 2 : 1;
    return units;
}

void writeString(TypedStreamWriter& writer, std::string_view text, Mutability mutability) {
    writer.beginValues("@");
    writer.beginObject(stringChain(mutability));
    writer.beginValues("+");
    writer.writeBytes(text);
    writer.endObject();
}

/// `signature` is the number's C type: "i" for int, "q" for a 64-bit integer.
void writeNumber(TypedStreamWriter& writer, std::int64_t value, std::string_view signature) {
    static const Chain chain = {{"NSNumber", 0}, {"NSValue", 0}, {"NSObject", 0}};
    writer.beginValues("@");
    writer.beginObject(chain);
    writer.beginValues("*");
    writer.writeCString(signature);
    writer.beginValues(signature);
    writer.writeInteger(value);
    writer.endObject();
}

void beginAttributes(TypedStreamWriter& writer, std::int64_t count) {
    static const Chain chain = {{"NSDictionary", 0}, {"NSObject", 0}};
    writer.beginValues("@");
    writer.beginObject(chain);
    writer.beginValues("i");
    writer.writeInteger(count);
}

void writeKey(TypedStreamWriter& writer, std::string_view name) {
    writeString(writer, name, Mutability::immutable);
}

/// One run: its number, its length, and the attributes, which a run numbered for the first time brings along.
void beginRun(TypedStreamWriter& writer, std::size_t number, std::size_t length) {
    writer.beginValues("iI");
    writer.writeInteger(static_cast<std::int64_t>(number));
    writer.writeInteger(static_cast<std::int64_t>(length));
}

void writeAttachmentRun(TypedStreamWriter& writer, const BodyAttachment& attachment, std::size_t part) {
    beginRun(writer, part + 1, 1);
    beginAttributes(writer, 4);
    writeKey(writer, "__kIMFileTransferGUIDAttributeName");
    writeString(writer, attachment.guid, Mutability::immutable);
    writeKey(writer, "__kIMFilenameAttributeName");
    writeString(writer, attachment.name, Mutability::immutable);
    writeKey(writer, "__kIMBaseWritingDirectionAttributeName");
    writeNumber(writer, -1, "q");
    writeKey(writer, partAttribute);
    writeNumber(writer, static_cast<std::int64_t>(part), "i");
    writer.endObject();
}

void writeTextRun(TypedStreamWriter& writer, const BodyContents& contents) {
    const std::size_t part = contents.attachments.size();
    beginRun(writer, part + 1, utf16Length(contents.text));
    beginAttributes(writer, contents.isFromMe ? 2 : 1);
    if (contents.isFromMe) {
        writeKey(writer, "__kIMBaseWritingDirectionAttributeName");
        writeNumber(writer, -1, "q");
    }
    writeKey(writer, partAttribute);
    writeNumber(writer, static_cast<std::int64_t>(part), "i");
    writer.endObject();
}

} // namespace

std::string bodyText(const BodyContents& contents) {
    std::string text;
    for (std::size_t index = 0; index < contents.attachments.size(); ++index)
        text += objectReplacement;
    return text + contents.text;
}

Data typedArchiveBody(const BodyContents& contents, Mutability mutability) {
    TypedStreamWriter writer;
    writer.beginValues("@");
    writer.beginObject(attributedStringChain(mutability));
    writeString(writer, bodyText(contents), mutability);
    for (std::size_t part = 0; part < contents.attachments.size(); ++part) {
        writeAttachmentRun(writer, contents.attachments[part], part);
    }
    if (!contents.text.empty()) writeTextRun(writer, contents);
    writer.endObject();
    return writer.finish();
}

Data keyedArchiveBody(const BodyContents& contents) {
    KeyedArchiveWriter writer;
    const auto attributes = writer.addDictionary({{std::string(partAttribute), 0}});
    writer.setRoot(writer.addAttributedString(bodyText(contents), attributes));
    return writer.finish();
}

Data editSummary(const BodyContents& contents, std::string_view earlierText, std::int64_t editSeconds) {
    BodyContents earlier = contents;
    earlier.text = std::string(earlierText);
    return editSummaryPropertyList({typedArchiveBody(earlier, Mutability::immutable), editSeconds - 60},
                                   {typedArchiveBody(contents, Mutability::immutable), editSeconds},
                                   static_cast<std::int64_t>(utf16Length(earlierText)));
}

} // namespace quillbook::sample
