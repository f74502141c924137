#include "export/ArchiveManifest.h"

namespace quillbook {

void writeJSON(JSONWriter& json, const ManifestFile& file) {
    json.beginObject();
    json.member("byteSize", file.byteSize);
    json.member("path", file.path);
    json.member("sha256", file.sha256);
    json.endObject();
}

void writeJSON(JSONWriter& json, const ArchiveManifest& manifest) {
    json.beginObject();
    json.member("attachmentRecordCount", manifest.attachmentRecordCount);
    json.member("availableMessageCount", manifest.availableMessageCount);
    json.member("conversationTitle", manifest.conversationTitle);
    json.member("copiedAttachmentCount", manifest.copiedAttachmentCount);
    writeJSONArray(json, "files", manifest.files);
    json.member("generatedAt", manifest.generatedAt);
    json.member("messageCount", manifest.messageCount);
    json.member("missingAttachmentCount", manifest.missingAttachmentCount);
    json.member("schemaVersion", manifest.schemaVersion);
    json.member("sourceChatID", manifest.sourceChatID);
    json.member("sourceMessageCount", manifest.sourceMessageCount);
    writeJSONArray(json, "warnings", manifest.warnings);
    json.endObject();
}

template <>
ManifestFile readJSON(const JSONValue& json) {
    return ManifestFile{
        .path = json.required("path").text(),
        .byteSize = json.required("byteSize").integer(),
        .sha256 = json.required("sha256").text(),
    };
}

template <>
ArchiveManifest readJSON(const JSONValue& json) {
    return ArchiveManifest{
        .schemaVersion = json.required("schemaVersion").integer(),
        .conversationTitle = json.required("conversationTitle").text(),
        .sourceChatID = readJSON<SourceID>(json.required("sourceChatID")),
        .generatedAt = json.required("generatedAt").date(),
        .sourceMessageCount = json.required("sourceMessageCount").integer(),
        .availableMessageCount = json.required("availableMessageCount").integer(),
        .messageCount = json.required("messageCount").integer(),
        .attachmentRecordCount = json.required("attachmentRecordCount").integer(),
        .copiedAttachmentCount = json.required("copiedAttachmentCount").integer(),
        .missingAttachmentCount = json.required("missingAttachmentCount").integer(),
        .warnings = readJSONArray<ArchiveWarning>(json, "warnings"),
        .files = readJSONArray<ManifestFile>(json, "files"),
    };
}

} // namespace quillbook
