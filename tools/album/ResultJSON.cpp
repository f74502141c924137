#include "tools/album/ResultJSON.h"

#include "core/records/EnumWords.h"
#include "core/text/UTF8.h"

#include <algorithm>

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

void writeCandidate(JSONWriter& json, const RecoveryCandidate& candidate) {
    json.beginObject();
    json.member("ambiguous", candidate.ambiguous);
    json.member("bytes", candidate.bytes);
    json.member("destination", repairedUTF8(candidate.relativeDestination));
    json.member("guid", candidate.attachment.guid);
    json.member("rowID", candidate.attachment.rowID);
    json.member("sourceURL", text(candidate.sourceURL));
    json.endObject();
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

void writeJSON(JSONWriter& json, const AttachmentStorageSurvey& survey) {
    json.beginObject();
    json.member("local", survey.local);
    json.member("missing", survey.missing);
    json.member("summary", storageSummary(survey.local, survey.missing));
    json.endObject();
}

void writeJSON(JSONWriter& json, const RecoveryReport& report) {
    json.beginObject();
    const auto isAmbiguous = [](const RecoveryCandidate& each) { return each.ambiguous; };
    json.member("ambiguous", std::count_if(report.candidates.begin(), report.candidates.end(), isAmbiguous));
    json.key("candidates");
    json.beginArray();
    for (const RecoveryCandidate& candidate : report.candidates)
        writeCandidate(json, candidate);
    json.endArray();
    json.member("summary", report.summary());
    json.member("unmatched", report.unmatchedCount);
    json.endObject();
}

void writeJSON(JSONWriter& json, const RecoveryOutcome& outcome) {
    json.beginObject();
    json.member("failedCount", outcome.failedCount);
    if (outcome.manifestURL) json.member("manifestURL", text(*outcome.manifestURL));
    json.member("recoveredBytes", outcome.recoveredBytes);
    json.member("recoveredCount", outcome.recoveredCount);
    json.endObject();
}

void writeJSON(JSONWriter& json, const PriorAlbum& prior) {
    json.beginObject();
    if (prior.summary) {
        json.member("archiveURL", text(prior.summary->archiveURL));
        json.member("archivedAt", prior.summary->archivedAt);
        json.member("messageCount", prior.summary->messageCount);
        json.member("newMessages", prior.newMessages);
        json.member("sourceMessageCount", prior.summary->sourceMessageCount);
    }
    json.endObject();
}

} // namespace quillbook::tools
