#pragma once

#include "core/interfaces/CacheRecovery.h"
#include "core/interfaces/MessageSourceProviding.h"
#include "core/interfaces/PriorArchiveSummary.h"
#include "core/records/ExportProgress.h"
#include "core/records/ExportResult.h"
#include "core/records/RecordsJSON.h"

#include <cstdio>
#include <string>
#include <string_view>

namespace quillbook::tools {

// The application itself never writes these records; this is how the developers' program prints them.
void writeJSON(JSONWriter& json, const MessageSource& source);
void writeJSON(JSONWriter& json, const ExportProgress& progress);
void writeJSON(JSONWriter& json, const ExportResult& result);
void writeJSON(JSONWriter& json, const AttachmentStorageSurvey& survey);
void writeJSON(JSONWriter& json, const RecoveryReport& report);
void writeJSON(JSONWriter& json, const RecoveryOutcome& outcome);

/// The newest earlier album, if there is one, and how many messages came since.
struct PriorAlbum {
    std::optional<PriorArchiveSummary> summary;
    std::optional<std::int64_t> newMessages;
};
void writeJSON(JSONWriter& json, const PriorAlbum& prior);

/// One record on one line of standard output, at once.
template <typename Record>
void printLine(const Record& record) {
    std::string text;
    JSONWriter json([&](std::string_view piece) { text += piece; }, JSONForm::compact);
    writeJSON(json, record);
    json.finish();
    text += '\n';
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

} // namespace quillbook::tools
