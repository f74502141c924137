#pragma once

#include "core/records/ArchiveConversation.h"
#include "core/records/ConversationSummary.h"
#include "core/records/ExportOptions.h"
#include "core/records/ExportProgress.h"
#include "core/records/JSONReader.h"
#include "core/records/JSONWriter.h"

#include <string>

namespace quillbook {

// The JSON form of the records. Each key is the field's name, keys ascend, an absent field has no key, arrays
// always stand.

void writeJSON(JSONWriter& json, ExportStage stage);
void writeJSON(JSONWriter& json, ReactionKind kind);
void writeJSON(JSONWriter& json, MessagePayloadState state);
void writeJSON(JSONWriter& json, AttachmentAvailability availability);
void writeJSON(JSONWriter& json, const SourceID& id);
void writeJSON(JSONWriter& json, const ExportOptions& options);
void writeJSON(JSONWriter& json, const ArchiveWarning& warning);
void writeJSON(JSONWriter& json, const ConversationSummary& summary);
void writeJSON(JSONWriter& json, const ArchiveReaction& reaction);
void writeJSON(JSONWriter& json, const ArchiveAttachment& attachment);
void writeJSON(JSONWriter& json, const ArchiveParticipant& participant);
void writeJSON(JSONWriter& json, const ArchiveMessage& message);
void writeJSON(JSONWriter& json, const ArchiveConversation& conversation);

/// Reads a record back. Throws JSONDecodingError where a required key is missing, a value has another type,
/// or a word is no case of its enumeration; unknown keys are passed over. Made for every record that
/// `writeJSON` takes.
template <typename Record>
Record readJSON(const JSONValue& json);

/// An array of records under the key `name`; written also when empty.
template <typename Record>
void writeJSONArray(JSONWriter& json, std::string_view name, const std::vector<Record>& records) {
    json.key(name);
    json.beginArray();
    for (const Record& record : records)
        writeJSON(json, record);
    json.endArray();
}

template <typename Record>
std::vector<Record> readJSONArray(const JSONValue& json, std::string_view name) {
    std::vector<Record> records;
    for (const JSONValue& element : json.required(name).elements())
        records.push_back(readJSON<Record>(element));
    return records;
}

/// The whole JSON text of one record.
template <typename Record>
std::string jsonText(const Record& record, JSONForm form = JSONForm::pretty) {
    std::string text;
    JSONWriter json([&](std::string_view piece) { text += piece; }, form);
    writeJSON(json, record);
    json.finish();
    return text;
}

/// The record that a JSON text holds. Throws JSONDecodingError.
template <typename Record>
Record recordFromJSON(std::string_view text) {
    const JSONDocument document(text);
    return readJSON<Record>(document.root());
}

} // namespace quillbook
