#include "recovery/RecoveryManifest.h"

#include "core/records/JSONWriter.h"
#include "core/text/ISO8601.h"
#include "core/text/UTF8.h"
#include "platform/AtomicFile.h"

namespace quillbook {
namespace {

/// All values are texts. Names of files and identifiers may be any bytes, JSON takes UTF-8 alone.
void writeEntry(JSONWriter& json, const RecoveryManifestEntry& entry) {
    const RecoveryCandidate& candidate = entry.candidate;
    json.beginObject();
    json.member("ambiguous", candidate.ambiguous ? "true" : "false");
    json.member("bytes", std::to_string(candidate.bytes));
    json.member("guid", repairedUTF8(candidate.attachment.guid));
    json.member("rowid", std::to_string(candidate.attachment.rowID));
    json.member("sha256", entry.sha256);
    json.member("source", repairedUTF8(candidate.sourceURL.filename().native()));
    json.endObject();
}

} // namespace

void writeRecoveryManifest(const std::filesystem::path& path,
                           const std::vector<RecoveryManifestEntry>& entries, Date recoveredAt) {
    AtomicFile file(path);
    JSONWriter json([&](std::string_view piece) { file.write(piece); });
    json.beginObject();
    json.member("count", static_cast<std::int64_t>(entries.size()));
    json.key("entries");
    json.beginArray();
    for (const RecoveryManifestEntry& entry : entries)
        writeEntry(json, entry);
    json.endArray();
    json.member("recoveredAt", iso8601Seconds(recoveredAt));
    json.endObject();
    json.finish();
    file.commit();
}

} // namespace quillbook
