#include "shell/adapter/CompletionFacts.h"

#include "core/text/Localization.h"
#include "shell/adapter/AlbumPictureProvider.h"
#include "shell/adapter/Words.h"

#include <algorithm>

namespace quillbook {
namespace {

/// The button's words, where the album was made of this machine's own library and a backup may hold more.
QString findInBackup(const AppModelState& state) {
    if (state.selectedSourceID != "local-mac") return {};
    const auto& sources = state.availableSources;
    const auto backup = std::find_if(sources.begin(), sources.end(), [](const MessageSource& source) {
        return std::holds_alternative<DeviceBackup>(source.kind);
    });
    if (backup == sources.end()) return {};
    return qtText(localizedFormat("Find this conversation in {}", shownName(backup->title).toStdString()));
}

void tellMissing(const ExportResult& result, const AppModelState& state, CompletionFacts& facts) {
    const std::int64_t missing = result.attachmentRecordCount - result.attachmentCount;
    if (missing < 1) return;
    facts.isAnythingMissing = true;
    facts.missing = qtText(localizedFormat(
        "{} of {} attachments are kept in iCloud and weren’t downloaded to this Mac, so they couldn’t be "
        "included. Open the conversation in Messages to download them, or back up from an iPhone to include "
        "everything.",
        countWords(missing), countWords(result.attachmentRecordCount)));
    facts.findInBackup = findInBackup(state);
}

void tellWarnings(const ExportResult& result, CompletionFacts& facts) {
    for (const ArchiveWarning& warning : result.warnings)
        if (warning.code != "attachment_missing") facts.warnings += shownText(warning.localizedSummary());
    if (facts.warnings.isEmpty()) return;
    facts.warningsHeading =
        qtText(localizedFormat("{} items need attention", countWords(facts.warnings.size())));
}

} // namespace

CompletionFacts completionFacts(const AppModelState& state) {
    CompletionFacts facts;
    if (!state.result) return facts;
    const ExportResult& result = *state.result;
    facts.isPresent = true;
    facts.heading =
        qtText(localizedFormat("{} messages and {} attachments are safe in a portable archive.",
                               countWords(result.messageCount), countWords(result.attachmentCount)));
    for (const auto& picture : result.photoPreviewURLs)
        facts.pictures += albumPictureURL(picture);
    tellMissing(result, state, facts);
    tellWarnings(result, facts);
    return facts;
}

} // namespace quillbook
