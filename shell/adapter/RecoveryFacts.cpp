#include "shell/adapter/RecoveryFacts.h"

#include "core/text/ByteCountText.h"
#include "core/text/Localization.h"
#include "shell/adapter/Words.h"

#include <algorithm>

namespace quillbook {
namespace {

RecoveryFacts facts(const char* state, const char* symbol, const std::string& line) {
    RecoveryFacts made;
    made.state = QString::fromLatin1(state);
    made.symbol = QString::fromLatin1(symbol);
    made.lines = QStringList{shownText(line)};
    return made;
}

RecoveryFacts busy(const char* state, const std::string& line) {
    RecoveryFacts made = facts(state, "", line);
    made.isBusy = true;
    return made;
}

struct FactsOfState {
    RecoveryFacts operator()(const CacheRecoveryStatus::Surveying& /*state*/) const {
        return busy("surveying", localized("Searching Messages caches…"));
    }
    RecoveryFacts operator()(const CacheRecoveryStatus::NothingMissing& /*state*/) const {
        return facts("nothingMissing", "checkmark.circle", localized("Nothing is missing."));
    }
    RecoveryFacts operator()(const CacheRecoveryStatus::NothingRecoverable& state) const {
        return facts("nothingRecoverable", "magnifyingglass",
                     localizedFormat("Searched this Mac’s Messages caches: no recoverable copies of the {} "
                                     "missing attachments. They exist only in iCloud — download them in "
                                     "Messages first.",
                                     countWords(state.missing)));
    }
    RecoveryFacts operator()(const RecoveryReport& report) const {
        std::string line = report.summary();
        const auto ambiguous = std::count_if(report.candidates.begin(), report.candidates.end(),
                                             [](const RecoveryCandidate& each) { return each.ambiguous; });
        if (ambiguous > 0)
            line += localizedFormat(" ({} had several identical cache copies; one was chosen.)",
                                    countWords(ambiguous));
        RecoveryFacts made = facts("report", "checkmark.circle.trianglebadge.exclamationmark", line);
        made.canRecover = true;
        made.note =
            qtText(localized("Recovered copies are stored in the app’s Application Support folder and "
                             "included in this and future backups. Nothing is written into your "
                             "Messages library."));
        return made;
    }
    RecoveryFacts operator()(const CacheRecoveryStatus::Recovering& /*state*/) const {
        return busy("recovering", localized("Copying recovered attachments…"));
    }
    RecoveryFacts operator()(const RecoveryOutcome& outcome) const {
        RecoveryFacts made =
            facts("recovered", "checkmark.circle.fill",
                  localizedFormat("Recovered: {} attachments ({})", countWords(outcome.recoveredCount),
                                  ByteCountText::user().fileSize(outcome.recoveredBytes)));
        if (outcome.failedCount > 0)
            made.lines += qtText(
                localizedFormat("{} copies failed and remain missing.", countWords(outcome.failedCount)));
        if (outcome.manifestURL)
            made.lines += qtText(localizedFormat("Manifest: {}", outcome.manifestURL->filename().string()));
        return made;
    }
    RecoveryFacts operator()(const CacheRecoveryStatus::Failed& state) const {
        return facts("failed", "xmark.octagon", localizedFormat("Recovery failed: {}", state.message));
    }
};

} // namespace

RecoveryFacts recoveryFacts(const std::optional<CacheRecoveryStatus>& status) {
    if (status) return std::visit(FactsOfState(), status->state);
    RecoveryFacts none;
    none.canSurvey = true;
    return none;
}

} // namespace quillbook
