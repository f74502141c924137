#include "core/text/ISO8601.h"
#include "shell/adapter/AppModelAdapter.h"
#include "tests/screens/StateJSON.h"
#include "tests/support/ModelHarness.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaProperty>
#include <QSignalSpy>
#include <memory>
#include <vector>

namespace quillbook::test {
namespace {

class SilentDesktop final : public FileRevealing, public FolderChoosing, public SoundPlaying {
public:
    void reveal(const std::filesystem::path& /*file*/) override {}
    void open(const std::filesystem::path& /*file*/) override {}
    void playCompletion() override {}
    void chooseFolder(const FolderQuestion& /*question*/, Answer answer) override {
        waiting = std::move(answer);
    }

    Answer waiting;
};

/// What QML shows is what it read when a property was last announced. Here every property that reads
/// otherwise after a step than before must have been announced by it.
class Announcements : public ModelHarness {
protected:
    Announcements() {
        services_.avatars = std::make_shared<AvatarStore>();
        services_.files = desktop;
        services_.folders = desktop;
        services_.sound = desktop;
    }
    ~Announcements() override {
        spies_.clear();
        adapter.reset();
    }

    void watch() {
        adapter = std::make_unique<AppModelAdapter>(model, services_);
        const QMetaObject& meta = *adapter->metaObject();
        for (int each = meta.propertyOffset(); each < meta.propertyCount(); ++each)
            if (meta.property(each).hasNotifySignal())
                spies_.push_back(
                    {meta.property(each).name(),
                     std::make_unique<QSignalSpy>(adapter.get(), meta.property(each).notifySignal())});
        known_ = current();
    }

    template <typename Step>
    void check(const char* name, Step step) {
        for (const auto& each : spies_)
            each.spy->clear();
        step();
        const QJsonObject now = current();
        for (const auto& each : spies_) {
            if (now[QLatin1String(each.property)] != known_[QLatin1String(each.property)]) {
                ++changes;
                EXPECT_GT(each.spy->count(), 0) << each.property << " changed unheard: " << name;
            }
        }
        known_ = now;
    }

    /// Lets everything happen, checked turn by turn.
    void settleChecked(const char* name) {
        while (mainThread->posted() > 0 || background->waiting() > 0) {
            background->performAll();
            check(name, [this] { mainThread->turnOnce(); });
        }
    }
    template <typename Step>
    void checkAll(const char* name, Step step) {
        check(name, step);
        settleChecked(name);
    }
    void search(const char* text) {
        checkAll("search text", [&] { adapter->setSearchText(QString::fromUtf8(text)); });
        checkAll("search", [&] { mainThread->advance(std::chrono::milliseconds(220)); });
    }

    std::shared_ptr<SilentDesktop> desktop = std::make_shared<SilentDesktop>();
    std::unique_ptr<AppModelAdapter> adapter;
    int changes = 0;

private:
    struct Watched {
        const char* property;
        std::unique_ptr<QSignalSpy> spy;
    };

    QJsonObject current() const {
        return QJsonDocument::fromJson(QByteArray::fromStdString(stateJSON(*adapter))).object();
    }

    AdapterServices services_;
    std::vector<Watched> spies_;
    QJsonObject known_;
};

TEST_F(Announcements, comeOnTheFirstRoad) {
    preferences->values.clear();
    checker->status = {MessagesAccessStatus::Kind::denied, {}};
    makeModel();
    watch();
    checkAll("start", [this] { adapter->start(); });
    checkAll("next page", [this] { adapter->showNextOnboardingPage(); });
    checkAll("onboarding finished", [this] { adapter->finishOnboarding(); });
    checker->status = MessagesAccessStatus::failed("A reason");
    checkAll("failed", [this] { adapter->start(); });
    checker->status = {MessagesAccessStatus::Kind::granted, {}};
    checkAll("granted", [this] { adapter->start(); });
    checkAll("guide", [this] { adapter->openSetupGuide(); });
    checkAll("guide closed", [this] { adapter->closeSetupGuide(); });
    checkAll("replay", [this] { adapter->replayOnboarding(); });
    checkAll("replay finished", [this] { adapter->finishOnboarding(); });
    EXPECT_GT(changes, 20);
}

TEST_F(Announcements, comeInTheListAndAmongSources) {
    startedModel();
    watch();
    search("Kath");
    search("nobody");
    search("");
    checkAll("selection", [this] { adapter->selectConversation(QStringLiteral("1")); });
    search("Kath"); // Filters the selection away.
    checkAll("source", [this] { adapter->selectSource(QStringLiteral("open-backup")); });
    checkAll("password wanted", [this] { adapter->selectSource(QStringLiteral("locked-backup")); });
    checkAll("password dropped", [this] { adapter->cancelBackupPassword(); });
    provider->beforePrepared = [](const auto&, const auto&, std::stop_token) { throw SpokenError("No."); };
    checkAll("source fails", [this] { adapter->selectSource(QStringLiteral("local-mac")); });
    checkAll("error dismissed", [this] { adapter->dismissError(); });
    EXPECT_GT(changes, 20);
}

TEST_F(Announcements, comeOnTheWayToAnAlbum) {
    priorArchive = [](const auto&,
                      const std::filesystem::path& folder) -> std::optional<PriorArchiveSummary> {
        return PriorArchiveSummary{.archiveURL = folder / "Grace",
                                   .archivedAt = parseISO8601Seconds("2025-12-24T12:00:00Z").value(),
                                   .messageCount = 1,
                                   .sourceMessageCount = 1};
    };
    caches->report = recoveryReport({1});
    provider->onPrepared = [](PreparedFake& prepared) {
        prepared.store->survey = [](const SourceID&, std::stop_token) {
            return AttachmentStorageSurvey{.local = 1, .missing = 1};
        };
        prepared.store->missing = [](const SourceID&, std::stop_token) {
            return std::vector{missingAttachment(1)};
        };
        prepared.exporter->answer = [](const ProgressCallback& report, std::stop_token) {
            report({ExportStage::copyingAttachments, 3, 7, "IMG_0042.HEIC"});
            return ExportResult{
                .archiveURL = "/home/ada/Grace", .messageCount = 3, .attachmentRecordCount = 2};
        };
    };
    startedModel();
    watch();
    checkAll("selection", [this] { adapter->selectConversation(QStringLiteral("1")); });
    checkAll("setup", [this] { adapter->continueToExportSetup(); });
    checkAll("format", [this] { adapter->setIncludeCSV(true); });
    checkAll("destination", [this] {
        adapter->chooseDestination();
        desktop->waiting("/media/disk");
    });
    checkAll("recovery", [this] { adapter->recoverFromCaches(); });
    checkAll("caches", [this] { adapter->surveyCaches(); });
    checkAll("export", [this] { adapter->startExport(); });
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::complete);
    checkAll("back to the list", [this] { adapter->chooseConversation(); });
    EXPECT_GT(changes, 20);
}

/// A search begun on the list may end on a later screen.
class LateSearch : public Announcements {
protected:
    /// The list answers with another title and more messages the next time.
    void answerLater() {
        lastPrepared().store->answer = [](const std::string&, std::stop_token) {
            ConversationSummary grace = conversation("1", "Grace M. Hopper");
            grace.messageCount = 50;
            return std::vector{grace};
        };
    }
};

TEST_F(LateSearch, changesWhatIsNewSinceTheEarlierAlbum) {
    priorArchive = [](const auto&, const auto&) { return PriorArchiveSummary{.sourceMessageCount = 1}; };
    modelAtExportSetup();
    watch();
    answerLater();
    checkAll("list", [this] { model->loadConversations(); });
    EXPECT_EQ(adapter->priorArchive().news, QStringLiteral("49 new messages since then"));
}

TEST_F(LateSearch, changesTheNameOnTheProgressScreen) {
    modelAtExportSetup();
    watch();
    answerLater();
    check("export", [this] { adapter->startExport(); });
    checkAll("list", [this] {
        model->loadConversations();
        background->perform(1);
        mainThread->turn();
    });
}

TEST_F(Announcements, comeWithARunningExportThatIsCancelled) {
    modelAtExportSetup();
    watch();
    check("export", [this] { adapter->startExport(); });
    checkAll("cancelled", [this] { adapter->cancelExport(); });
    EXPECT_EQ(adapter->screen(), AppModelAdapter::Screen::exportSetup);
}

} // namespace
} // namespace quillbook::test
