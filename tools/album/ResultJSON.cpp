#include "tools/album/ResultJSON.h"

#include "core/records/EnumWords.h"
#include "core/text/UTF8.h"

namespace quillbook::tools {
namespace {

std::string_view kindWord(const MessageSource& source) {
    if (source.isLocalMac()) return "localMac";
    return std::holds_alternative<DeviceBackup>(source.kind) ? "deviceBackup"
                                                             : "connectedDeviceWithoutBackup";
}

std::string text(const std::filesystem::path& path) {
    return repairedUTF8(path.string());
}

} // namespace

void writeJSON(JSONWriter& json, const MessageSource& source) {
    json.beginObject();
    json.member("id", source.id);
    json.member("kind", kindWord(source));
    json.member("requiresPassword", source.requiresPassword);
    json.member("subtitle", source.subtitle);
    json.member("title", source.title);
    json.endObject();
}

void writeJSON(JSONWriter& json, const ExportProgress& progress) {
    json.beginObject();
    json.member("completed", progress.completed);
    json.member("detail", progress.detail);
    json.member("fraction", progress.fractionCompleted());
    json.member("stage", rawValue(progress.stage));
    json.member("total", progress.total);
    json.endObject();
}

void writeJSON(JSONWriter& json, const ExportResult& result) {
    json.beginObject();
    json.member("archiveURL", text(result.archiveURL));
    json.member("attachmentCount", result.attachmentCount);
    json.member("attachmentRecordCount", result.attachmentRecordCount);
    json.member("messageCount", result.messageCount);
    json.key("photoPreviewURLs");
    json.beginArray();
    for (const auto& preview : result.photoPreviewURLs)
        json.value(text(preview));
    json.endArray();
    json.member("reusedAttachmentCount", result.reusedAttachmentCount);
    writeJSONArray(json, "warnings", result.warnings);
    json.endObject();
}

} // namespace quillbook::tools
