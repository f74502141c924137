#include "shell/adapter/SetupFacts.h"

#include "core/text/DateText.h"
#include "core/text/Localization.h"
#include "shell/adapter/Words.h"

namespace quillbook {

StorageFacts storageFacts(const std::optional<AttachmentStorageSurvey>& survey) {
    StorageFacts facts;
    if (!survey || survey->missing < 1) return facts;
    facts.isShown = true;
    facts.text = qtText(storageSummary(survey->local, survey->missing));
    return facts;
}

FolderFacts folderFacts(const std::filesystem::path& folder) {
    const std::filesystem::path named = folder.has_filename() ? folder : folder.parent_path();
    FolderFacts facts;
    facts.path = qtText(named.string());
    facts.name = named.has_filename() ? qtText(named.filename().string()) : facts.path;
    return facts;
}

PriorArchiveFacts priorArchiveFacts(const std::optional<PriorArchiveSummary>& prior,
                                    std::optional<std::int64_t> newMessages) {
    PriorArchiveFacts facts;
    if (!prior) return facts;
    facts.isShown = true;
    facts.date = qtText(DateText::user().day(prior->archivedAt));
    const std::int64_t count = newMessages.value_or(0);
    facts.news = count > 0 ? qtText(localizedFormat("{} new messages since then", countWords(count)))
                           : qtText(localized("No new messages since then"));
    facts.symbol = count > 0 ? QStringLiteral("plus.circle.fill") : QStringLiteral("checkmark.circle");
    return facts;
}

ProgressFacts progressFacts(const ExportProgress& progress, const std::optional<std::string>& title) {
    ProgressFacts facts;
    facts.heading = shownText(
        localizedFormat("Making the album for {}", title ? *title : localized("this conversation")));
    facts.detail = shownText(progress.detail);
    facts.stageLine =
        progress.total < 2
            ? qtText(quillbook::title(progress.stage))
            : qtText(localizedFormat("{} of {}", countWords(progress.completed), countWords(progress.total)));
    facts.completed = static_cast<double>(progress.completed);
    facts.total = static_cast<double>(progress.total);
    return facts;
}

} // namespace quillbook
