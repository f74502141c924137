#include "tests/screens/ScreenStates.h"

#include "core/text/ISO8601.h"

#include <QBuffer>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QQuickItem>

namespace quillbook::test {
namespace {

using Kind = MessagesAccessStatus::Kind;

Data portrait(Qt::GlobalColor colour) {
    QImage image(96, 96, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 0, 96);
    sky.setColorAt(0, colour);
    sky.setColorAt(1, Qt::white);
    painter.fillRect(image.rect(), sky);
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return {bytes.begin(), bytes.end()};
}

std::string photo(Qt::GlobalColor colour) {
    const Data bytes = portrait(colour);
    return {bytes.begin(), bytes.end()};
}

ConversationSummary row(const char* id, const char* title, std::vector<std::string> addresses,
                        const char* lastMessage, std::int64_t messages, std::int64_t attachments) {
    ConversationSummary summary = conversation(id, title);
    summary.participantAddresses = std::move(addresses);
    summary.lastMessage = lastMessage;
    summary.firstMessageDate = parseISO8601Seconds("2019-03-04T09:30:00Z");
    summary.lastMessageDate = parseISO8601Seconds("2026-11-15T19:48:57Z");
    summary.messageCount = messages;
    summary.attachmentCount = attachments;
    return summary;
}

void fill(ScreenStage& stage) {
    stage.provider->conversations["local-mac"] = inventedConversations();
    stage.provider->conversations["open-backup"] = inventedConversations();
}

void listed(ScreenStage& stage) {
    fill(stage);
    stage.startedModel();
}

void selected(ScreenStage& stage) {
    listed(stage);
    stage.model->setSelectedConversationID(SourceID{"1"});
}

/// What the survey of the attachments answers, in each source.
void answerSurveys(ScreenStage& stage, AttachmentStorageSurvey survey) {
    stage.provider->onPrepared = [survey](PreparedFake& prepared) {
        prepared.store->survey = [survey](const SourceID&, std::stop_token) { return survey; };
        prepared.store->missing = [survey](const SourceID&, std::stop_token) {
            return std::vector<MissingAttachmentRecord>(static_cast<std::size_t>(survey.missing),
                                                        missingAttachment(1));
        };
    };
}

void atSetup(ScreenStage& stage) {
    selected(stage);
    stage.model->continueToExportSetup();
    stage.settle();
}

void atSetupMissing(ScreenStage& stage) {
    answerSurveys(stage, {.local = 25, .missing = 6});
    atSetup(stage);
}

void surveyFails(ScreenStage& stage) {
    atSetupMissing(stage);
    stage.caches->onSearch = []() -> RecoveryReport { throw SpokenError("The disk went away."); };
    stage.model->surveyCaches();
    stage.settle();
}

void atSetupOfBackup(ScreenStage& stage) {
    answerSurveys(stage, {.local = 25, .missing = 6});
    listed(stage);
    stage.model->selectSource("open-backup");
    stage.settle();
    stage.model->setSelectedConversationID(SourceID{"1"});
    stage.model->continueToExportSetup();
    stage.settle();
}

RecoveryReport reportOf(std::int64_t ambiguous) {
    RecoveryReport report = recoveryReport({1, 2, 3, 4});
    for (auto& candidate : report.candidates) {
        candidate.bytes = 1'250'000;
        candidate.ambiguous = ambiguous-- > 0;
    }
    report.unmatchedCount = 2;
    return report;
}

void withAccess(ScreenStage& stage, const MessagesAccessStatus& status) {
    stage.checker->status = status;
    stage.makeModel();
    stage.model->start();
    stage.settle();
}

ScreenState accessState(const char* name, MessagesAccessStatus status) {
    return {name, [status](ScreenStage& stage) { withAccess(stage, status); }};
}

ScreenState onboarding(const char* name, int page) {
    return {name, [page](ScreenStage& stage) {
                stage.preferences->values.clear();
                stage.makeModel();
                stage.model->start();
                stage.settle();
                stage.model->setOnboardingPage(page);
            }};
}

ScreenState setup(const char* name, std::function<void(ScreenStage&)> before) {
    return {name, [before](ScreenStage& stage) {
                before(stage);
                atSetup(stage);
            }};
}

PriorArchiveSummary prior(std::int64_t messages) {
    return {.archiveURL = "/home/ada/Downloads/Grace",
            .archivedAt = parseISO8601Seconds("2025-12-24T18:00:00Z").value(),
            .messageCount = messages,
            .sourceMessageCount = messages};
}

ExportResult delivered(std::int64_t attachments, std::int64_t records,
                       std::vector<ArchiveWarning> warnings = {}) {
    ExportResult result;
    result.messageCount = 12'408;
    result.attachmentCount = attachments;
    result.attachmentRecordCount = records;
    result.warnings = std::move(warnings);
    return result;
}

/// Ends an export of the first conversation of a source with what `result` says.
void completed(ScreenStage& stage, const char* source, const ExportResult& result) {
    stage.startedModel();
    if (stage.model->state().selectedSourceID != source) {
        stage.model->selectSource(source);
        stage.settle();
    }
    stage.model->setSelectedConversationID(SourceID{"1"});
    stage.model->continueToExportSetup();
    stage.settle();
    stage.provider->prepared().back().exporter->result = result;
    stage.model->startExport();
    stage.settle();
}

ScreenState complete(const char* name, ExportResult result, const char* source = "local-mac",
                     bool hasBackup = true) {
    result.archiveURL = "/home/ada/Downloads/Grace Hopper 2026-11-15";
    return {name, [result, source, hasBackup](ScreenStage& stage) {
                fill(stage);
                if (!hasBackup) stage.provider->sources.resize(1);
                completed(stage, source, result);
            }};
}

ArchiveWarning warning(const char* code, const char* summary = "As the album has it.") {
    return {.id = code, .code = code, .summary = summary, .sourceID = std::nullopt};
}

void exporting(ScreenStage& stage, const ExportProgress& progress) {
    atSetup(stage);
    stage.model->startExport();
    stage.provider->prepared().back().exporter->answer = [progress](const ProgressCallback& report,
                                                                    std::stop_token) {
        report(progress);
        return ExportResult();
    };
    stage.background->perform();
    stage.mainThread->turnOnce(); // The report; the end behind it waits.
}

std::vector<ScreenState> firstRunStates() {
    return {onboarding("onboarding-1", 0),
            onboarding("onboarding-2", 1),
            onboarding("onboarding-3", 2),
            {"onboarding-replayed",
             [](ScreenStage& stage) {
                 listed(stage);
                 stage.model->replayOnboarding();
             }},
            {"onboarding-replayed-end",
             [](ScreenStage& stage) {
                 listed(stage);
                 stage.model->replayOnboarding();
                 stage.model->setOnboardingPage(2);
             }},
            accessState("access-denied", {Kind::denied, {}}),
            accessState("access-missing", {Kind::databaseMissing, {}}),
            accessState("access-failed", MessagesAccessStatus::failed("SQLite 26: file is not a database")),
            {"access-checking",
             [](ScreenStage& stage) {
                 withAccess(stage, {Kind::denied, {}});
                 stage.model->start();
             }},
            {"access-granted",
             [](ScreenStage& stage) {
                 withAccess(stage, {Kind::denied, {}});
                 stage.checker->status = {Kind::granted, {}};
                 stage.model->start();
                 stage.background->perform();
                 stage.mainThread->turnOnce();
             }},
            {"setup-guide", [](ScreenStage& stage) {
                 listed(stage);
                 stage.model->setShowingSetupGuide(true);
             }}};
}

std::vector<ScreenState> listStates() {
    return {{"list", listed},
            {"list-selected", selected},
            {"list-group-selected",
             [](ScreenStage& stage) {
                 listed(stage);
                 stage.model->setSelectedConversationID(SourceID{"2"});
             }},
            {"list-empty-search",
             [](ScreenStage& stage) {
                 listed(stage);
                 stage.model->setSearchText("nobody of this name");
                 stage.model->loadConversations();
                 stage.settle();
             }},
            {"list-empty-library",
             [](ScreenStage& stage) {
                 stage.provider->conversations.clear();
                 stage.startedModel();
             }},
            {"list-loading",
             [](ScreenStage& stage) {
                 fill(stage);
                 stage.makeModel();
                 stage.model->start();
                 while (!stage.model->state().isLoading) {
                     stage.background->perform();
                     stage.mainThread->turn();
                 }
             }},
            {"list-backup",
             [](ScreenStage& stage) {
                 listed(stage);
                 stage.model->selectSource("open-backup");
                 stage.settle();
             }},
            {"list-error",
             [](ScreenStage& stage) {
                 stage.provider->sources.clear();
                 stage.startedModel();
             }},
            {"list-source-menu",
             [](ScreenStage& stage) {
                 stage.provider->sources.push_back({"connected-device", "Ada’s iPad", "Not backed up yet",
                                                    ConnectedDeviceWithoutBackup(), false});
                 listed(stage);
             },
             openSourceMenu},
            {"password", [](ScreenStage& stage) {
                 listed(stage);
                 stage.model->selectSource("locked-backup");
             }}};
}

std::vector<ScreenState> setupStates() {
    return {
        setup("setup", [](ScreenStage&) {}),
        setup("setup-no-formats",
              [](ScreenStage& stage) {
                  stage.preferences->values["export.includeJSON"] = false;
                  stage.preferences->values["export.includeMarkdown"] = false;
              }),
        setup("setup-all-local",
              [](ScreenStage& stage) { answerSurveys(stage, {.local = 31, .missing = 0}); }),
        setup("setup-prior",
              [](ScreenStage& stage) {
                  stage.priorArchive = [](const auto&, const auto&) { return prior(12'408); };
              }),
        setup("setup-prior-news",
              [](ScreenStage& stage) {
                  stage.priorArchive = [](const auto&, const auto&) { return prior(11'000); };
              }),
        {"setup-not-writable",
         [](ScreenStage& stage) {
             atSetup(stage);
             stage.destinationIsWritable = false;
             stage.model->startExport();
         }},
    };
}

std::vector<ScreenState> recoveryStates() {
    return {
        {"recovery-empty",
         [](ScreenStage& stage) {
             answerSurveys(stage, {.local = 25, .missing = 6});
             atSetup(stage);
             stage.model->setSelectedConversationID(std::nullopt);
             stage.model->setSelectedConversationID(SourceID{"1"});
         }},
        {"recovery-surveying",
         [](ScreenStage& stage) {
             atSetupMissing(stage);
             stage.model->surveyCaches();
         }},
        {"recovery-nothing-missing",
         [](ScreenStage& stage) {
             atSetupMissing(stage);
             stage.provider->prepared().back().store->missing = [](const SourceID&, std::stop_token) {
                 return std::vector<MissingAttachmentRecord>();
             };
             stage.model->surveyCaches();
             stage.settle();
         }},
        {"recovery-nothing-recoverable", atSetupMissing},
        {"recovery-report",
         [](ScreenStage& stage) {
             stage.caches->report = reportOf(0);
             atSetupMissing(stage);
         }},
        {"recovery-report-ambiguous",
         [](ScreenStage& stage) {
             stage.caches->report = reportOf(2);
             atSetupMissing(stage);
         }},
        {"recovery-recovering",
         [](ScreenStage& stage) {
             stage.caches->report = reportOf(0);
             atSetupMissing(stage);
             stage.model->recoverFromCaches(reportOf(0));
         }},
        {"recovery-failed", surveyFails},
        {"recovery-in-backup", atSetupOfBackup},
    };
}

std::vector<ScreenState> exportStates() {
    return {
        {"progress-preparing",
         [](ScreenStage& stage) {
             exporting(stage, {ExportStage::preparing, 0, 1, "Preparing"});
         }},
        {"progress-copying",
         [](ScreenStage& stage) {
             exporting(stage, {ExportStage::copyingAttachments, 1'204, 3'166, "IMG_0042.HEIC"});
         }},
        complete("complete", delivered(31, 31)),
        {"complete-pictures", completeWithPictures},
        complete("complete-missing", delivered(25, 31, {warning("attachment_missing")})),
        complete("complete-missing-from-backup", delivered(28, 31), "open-backup"),
        complete("complete-missing-no-backup", delivered(25, 31), "local-mac", false),
        complete("complete-warning-reaction", delivered(31, 31, {warning("unresolved_reaction")})),
        complete("complete-warning-payload", delivered(31, 31, {warning("unsupported_payload")})),
        complete("complete-warning-unreadable", delivered(30, 31, {warning("attachment_unreadable")})),
        complete("complete-warning-unknown",
                 delivered(31, 31, {warning("something_new", "A thing that later versions know.")})),
        complete("complete-warnings",
                 delivered(25, 31, std::vector<ArchiveWarning>(40, warning("unresolved_reaction")))),
    };
}

} // namespace

std::vector<ConversationSummary> inventedConversations() {
    std::vector<ConversationSummary> rows = {
        row("1", "Grace Hopper", {"+12125550101"}, "See you at the lake house on Saturday!", 12'408, 31),
        row("2", "Lighthouse Crew", {"+12125550101", "+12125550102", "katherine@example.com"},
            "Katherine: The boat is in the water, and the weather looks kind for the whole weekend", 894,
            120),
        row("3", "+1 (212) 555-0199", {"+12125550199"}, "Your table is ready.", 3, 0),
        row("4", "Emmy Noether", {"emmy@example.com"}, "Did the symmetry hold?", 2'051, 18),
        row("5", "rosalind@example.com", {"rosalind@example.com"}, "Photo 51 is attached", 77, 51),
    };
    rows[0].avatarData = portrait(Qt::darkCyan);
    rows[3].avatarData = Data{1, 2, 3}; // Does not decode.
    rows[2].lastMessageDate.reset();
    rows[2].firstMessageDate.reset();
    return rows;
}

void completeWithPictures(ScreenStage& stage) {
    fill(stage);
    const std::string vectors = "<svg xmlns='http://www.w3.org/2000/svg' width='96' height='96'>"
                                "<rect width='96' height='96' fill='#ff0000'/></svg>";
    ExportResult result = delivered(31, 31);
    result.archiveURL = stage.folder.path();
    result.photoPreviewURLs = {
        stage.folder.write("lake.png", photo(Qt::darkBlue)), stage.folder.write("drawing.jpeg", vectors),
        stage.folder.write("Ä #1.png", photo(Qt::darkGreen)), stage.folder.write("words.png", "no picture"),
        stage.folder.write("\xFF\xFE.png", photo(Qt::darkYellow))};
    completed(stage, "local-mac", result);
}

void openSourceMenu(ScreenStage& stage) {
    for (const QQuickItem* each : stage.itemsWith("symbol"))
        if (each->inherits("QQuickButton") && each->property("model").isValid()) stage.click(each);
    stage.refresh();
}

void atSetupWithReport(ScreenStage& stage) {
    stage.caches->report = reportOf(0);
    atSetupMissing(stage);
}

std::vector<ScreenState> screenStates() {
    std::vector<ScreenState> all;
    for (auto* part : {&firstRunStates, &listStates, &setupStates, &recoveryStates, &exportStates})
        for (ScreenState& state : part())
            all.push_back(std::move(state));
    return all;
}

} // namespace quillbook::test
