#include "core/model/AppModel.h"
#include "core/records/Cancellation.h"
#include "platform/ThreadRunner.h"
#include "tests/support/ModelFakes.h"
#include "tools/runloop/RunLoop.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <random>
#include <set>
#include <thread>

#include <gtest/gtest.h>

namespace quillbook::test {
namespace {

using namespace std::chrono_literals;

constexpr auto patience = 30s;

/// Random numbers for any thread, the same for the same seed and order of asking.
class Dice {
public:
    explicit Dice(unsigned seed) : engine_(seed) {}
    unsigned roll(unsigned sides) {
        const std::scoped_lock lock(mutex_);
        return static_cast<unsigned>(engine_() % sides);
    }

private:
    std::mutex mutex_;
    std::mt19937 engine_;
};

/// The model on real threads. Every slow call takes up to 1.5 ms, and some fail; all follow from the seed and
/// the scheduler.
class AppModelThreads : public testing::TestWithParam<unsigned> {
protected:
    AppModelThreads() {
        setUpSources();
        checker->answer = [this](std::stop_token stop) {
            work(stop, 3);
            return MessagesAccessStatus{MessagesAccessStatus::Kind::granted, {}};
        };
        setUpCaches();
        AppModelServices services;
        services.accessChecker = checker;
        services.sourceProvider = provider;
        services.preferences = preferences;
        services.mainThread = loop;
        services.backgroundRunner = threads;
        services.presence = presence;
        services.cacheRecovery = caches;
        services.isWritableFolder = [](const auto&) { return true; };
        services.priorArchive = [this](const SourceID& id, const std::filesystem::path& folder) {
            pause();
            return std::optional(priorArchiveOf(id, folder));
        };
        services.downloads = "/albums";
        services.home = "/";
        preferences->values["onboarding.completed"] = true;
        model = AppModel::make(std::move(services));
        model->observe([this](AppModelProperty) { look(); });
    }

    ~AppModelThreads() override {
        if (model) model->tearDown();
        end();
    }

    void setUpSources() {
        provider->sources = {localMacSource(), backupSource("open-backup", false),
                             backupSource("locked-backup", true)};
        for (const auto& each : provider->sources) {
            provider->conversations[each.id] = {conversation(each.id + "1", "Grace of " + each.id),
                                                conversation(each.id + "2", "Katherine of " + each.id)};
        }
        provider->beforePrepared = [this](const auto&, const auto&, std::stop_token stop) {
            work(stop, 3);
            if (dice.roll(5) == 0 && preparationsMayFail) throw SpokenError("Not today.");
        };
        provider->onPrepared = [this](PreparedFake& fake) { slowDown(fake); };
    }

    void slowDown(PreparedFake& fake) {
        fake.store->answer = [this, id = fake.sourceID](const std::string& query, std::stop_token stop) {
            work(stop, 2);
            std::vector<ConversationSummary> matches;
            for (const auto& each : provider->conversations.at(id)) {
                if (each.title.find(query) != std::string::npos) matches.push_back(each);
            }
            return matches;
        };
        slowDownSurveys(*fake.store);
        fake.exporter->answer = [this, teardowns = fake.teardowns](const ProgressCallback& progress,
                                                                   std::stop_token stop) {
            std::thread helper([&] { progress({ExportStage::copyingAttachments, 1, 2, "from a helper"}); });
            progress({ExportStage::readingMessages, 1, 1, "from the export"});
            helper.join();
            pause();
            if (*teardowns > 0 && !stop.stop_requested()) ++exportsWithoutSource;
            throwIfCancelled(stop);
            if (dice.roll(4) == 0) throw SpokenError("Disk full.");
            return ExportResult();
        };
    }

    /// The number of a conversation's missing attachments, which tells it from every other.
    static std::int64_t missingOf(const SourceID& id) {
        return static_cast<std::int64_t>(std::hash<SourceID>()(id) % 1000 + 1);
    }
    static PriorArchiveSummary priorArchiveOf(const SourceID& id, const std::filesystem::path& folder) {
        PriorArchiveSummary summary;
        summary.archiveURL = folder / id.rawValue;
        return summary;
    }

    void setUpCaches() {
        caches->onSearch = [this] {
            pause();
            if (dice.roll(5) == 0) throw SpokenError("A cache went away.");
            return dice.roll(2) == 0 ? RecoveryReport() : recoveryReport({1});
        };
        caches->onRecover = [this] {
            pause();
            isRecovered = true;
            return RecoveryOutcome{1, 0, std::nullopt, 7};
        };
    }

    void slowDownSurveys(FakeStore& store) {
        store.survey = [this](const SourceID& id, std::stop_token stop) {
            const bool wasRecovered = isRecovered;
            work(stop, 2);
            if (dice.roll(6) == 0) throw SpokenError("The database is locked.");
            return AttachmentStorageSurvey{wasRecovered ? 1 : 0, missingOf(id)};
        };
        store.missing = [this](const SourceID& id, std::stop_token stop) {
            work(stop, 1);
            return std::vector<MissingAttachmentRecord>(static_cast<std::size_t>(missingOf(id)));
        };
    }

    /// Every announcement must find what is shown to be about the selected conversation.
    void look() {
        ++announcements;
        if (!model) return; // An export that still runs holds it.
        const AppModelState& state = model->state();
        const auto& id = state.selectedConversationID;
        if (state.attachmentStorage && (!id || state.attachmentStorage->missing != missingOf(*id)))
            ++staleSights;
        if (state.priorArchive && (!id || state.priorArchive->archiveURL.filename() != id->rawValue))
            ++staleSights;
        if (!state.cacheRecovery) return;
        if (!id || state.selectedSourceID != "local-mac") ++staleSights;
        const auto* none = std::get_if<CacheRecoveryStatus::NothingRecoverable>(&state.cacheRecovery->state);
        if (none != nullptr && none->missing != missingOf(id.value_or(SourceID()))) ++staleSights;
    }

    void pause() { std::this_thread::sleep_for(std::chrono::microseconds(dice.roll(500))); }
    /// Takes a while in `steps` steps; some calls look at the token and some don't.
    void work(const std::stop_token& stop, int steps) {
        const bool looks = dice.roll(2) == 0;
        for (int step = 0; step < steps; ++step) {
            pause();
            if (looks) throwIfCancelled(stop);
        }
    }

    void operate() {
        static constexpr const char* texts[] = {"", "G", "Gr", "Kath", "of"};
        const auto count = static_cast<unsigned>(provider->sources.size());
        switch (dice.roll(18)) {
        case 0:
            return model->start([this] { ++ended; });
        case 1:
        case 2:
            return model->selectSource(provider->sources[dice.roll(count)].id, [this] { ++ended; });
        case 3:
            return model->submitBackupPassword(SecretText("secret"), [this] { ++ended; });
        case 4:
            return model->cancelBackupPassword();
        case 5:
            return model->loadConversations([this] { ++ended; });
        case 6:
        case 7:
            return model->setSearchText(texts[dice.roll(5)]);
        case 8:
            return model->chooseConversation();
        case 9:
            return choose();
        case 10:
            return model->startExport();
        case 11:
            return model->cancelExport();
        case 12:
        case 13:
            return model->continueToExportSetup();
        default:
            return survey();
        }
    }

    void choose() {
        const auto& all = model->state().conversations;
        if (!all.empty())
            model->setSelectedConversationID(all[dice.roll(static_cast<unsigned>(all.size()))].id);
    }

    void survey() {
        const auto tell = [this] { ++ended; };
        switch (dice.roll(6)) {
        case 0:
            return model->refreshPriorArchive(tell);
        case 1:
            return model->setDestination(dice.roll(2) == 0 ? "/albums" : "/others");
        case 2:
            return model->refreshAttachmentStorage(tell);
        case 3:
            return model->surveyCaches(tell);
        case 4:
            return model->lookInDeviceBackup(tell);
        default:
            return model->recoverFromCaches(recoveryReport({1}), tell);
        }
    }

    void operateForAWhile(int operations) {
        loop->post([this] { model->start(); });
        for (int each = 0; each < operations; ++each) {
            loop->runUntil([] { return false; }, std::chrono::microseconds(dice.roll(700)));
            operate();
        }
    }

    bool isQuiet() const { return !model->state().isLoading && !model->isExporting(); }

    /// Lets the model go, waits for every thread and runs what they left for the main thread.
    void end() {
        const std::weak_ptr<AppModel> held = model;
        model.reset();
        EXPECT_TRUE(loop->runUntil([&] { return held.expired(); }, patience));
        threads.reset();
        loop->runPending();
    }

    Dice dice{GetParam()};
    std::shared_ptr<FakeAccessChecker> checker = std::make_shared<FakeAccessChecker>();
    std::shared_ptr<FakeSourceProvider> provider = std::make_shared<FakeSourceProvider>();
    std::shared_ptr<FakePreferences> preferences = std::make_shared<FakePreferences>();
    std::shared_ptr<FakePresence> presence = std::make_shared<FakePresence>();
    std::shared_ptr<FakeCacheRecovery> caches = std::make_shared<FakeCacheRecovery>();
    std::shared_ptr<RunLoop> loop = std::make_shared<RunLoop>();
    std::shared_ptr<ThreadRunner> threads = std::make_shared<ThreadRunner>();
    std::shared_ptr<AppModel> model;
    std::atomic<bool> preparationsMayFail = true;
    std::atomic<int> exportsWithoutSource = 0;
    std::atomic<bool> isRecovered = false;
    int announcements = 0;
    int staleSights = 0;
    int ended = 0;
};

TEST_P(AppModelThreads, settlesOnTheLastTextOfTheSourceInUse) {
    operateForAWhile(60);
    ASSERT_TRUE(loop->runUntil([&] { return isQuiet(); }, patience));
    preparationsMayFail = false;
    model->start();
    ASSERT_TRUE(loop->runUntil([&] { return model->state().store && isQuiet(); }, patience));
    model->setPendingSearchHint(std::nullopt); // One may wait for a backup that did not open.
    model->setSearchText("Grace");
    // Asked anew each time: the start may still be on its way to this Mac's library.
    const auto listsTheMatch = [&] {
        const auto& all = provider->conversations.at(model->state().selectedSourceID.value());
        return model->state().conversations == std::vector{all[0]} && isQuiet();
    };
    EXPECT_TRUE(loop->runUntil(listsTheMatch, patience)) << "searched for: " << model->state().searchText;
    EXPECT_GT(announcements, 0);
}

TEST_P(AppModelThreads, keepsOpenExactlyTheSourceInUse) {
    operateForAWhile(60);
    ASSERT_TRUE(loop->runUntil([&] { return isQuiet(); }, patience));
    // A preparation that was abandoned closes what it opened when its thread comes to it.
    EXPECT_TRUE(loop->runUntil(
        [&] {
            for (const auto& each : provider->prepared()) {
                if (*each.teardowns != (each.store == model->state().store ? 0 : 1)) return false;
            }
            return true;
        },
        patience));
    EXPECT_EQ(exportsWithoutSource, 0);
}

TEST_P(AppModelThreads, quittingAtAnyMomentClosesEverySourceOnce) {
    operateForAWhile(static_cast<int>(dice.roll(40)));
    model->tearDown();
    end();
    for (const auto& each : provider->prepared())
        EXPECT_EQ(*each.teardowns, 1) << each.sourceID;
}

TEST_P(AppModelThreads, modelThatGoesAtAnyMomentClosesEverySourceOnce) {
    operateForAWhile(static_cast<int>(dice.roll(40)));
    end();
    for (const auto& each : provider->prepared())
        EXPECT_EQ(*each.teardowns, 1) << each.sourceID;
}

TEST_P(AppModelThreads, nothingShownIsAboutAnotherConversation) {
    operateForAWhile(120);
    ASSERT_TRUE(loop->runUntil([&] { return isQuiet(); }, patience));
    EXPECT_GT(announcements, 0);
    EXPECT_EQ(staleSights, 0);
}

TEST_P(AppModelThreads, countsTakeInARecoveryWhateverWasSelectedMeanwhile) {
    preparationsMayFail = false;
    model->start();
    ASSERT_TRUE(loop->runUntil([&] { return !model->state().conversations.empty() && isQuiet(); }, patience));
    model->setSelectedConversationID(SourceID{"local-mac1"});
    int over = 0;
    model->recoverFromCaches(recoveryReport({1}), [&] { ++over; });
    ASSERT_TRUE(loop->runUntil([&] { return !caches->recoveries().empty(); }, patience));
    model->setSelectedConversationID(SourceID{"local-mac2"});
    model->continueToExportSetup();
    ASSERT_TRUE(loop->runUntil([&] { return over == 1; }, patience));
    // A survey may fail; then there are no numbers, and the user asks again.
    for (int tries = 0; tries < 100 && !model->state().attachmentStorage; ++tries) {
        int asked = 0;
        model->refreshAttachmentStorage([&] { ++asked; });
        ASSERT_TRUE(loop->runUntil([&] { return asked == 1; }, patience));
    }
    EXPECT_EQ(model->state().attachmentStorage,
              (AttachmentStorageSurvey{1, missingOf(SourceID{"local-mac2"})}));
    EXPECT_EQ(staleSights, 0);
}

TEST_P(AppModelThreads, everyRunThatEndsTellsSo) {
    int begun = 0;
    for (int each = 0; each < 30; ++each) {
        const auto tell = [this] { ++ended; };
        begun += 8;
        model->start(tell);
        model->loadConversations(tell);
        model->selectSource("open-backup", tell);
        choose();
        model->refreshPriorArchive(tell);
        model->refreshAttachmentStorage(tell);
        model->surveyCaches(tell);
        model->recoverFromCaches(recoveryReport({1}), tell);
        model->lookInDeviceBackup(tell);
        loop->runUntil([] { return false; }, std::chrono::microseconds(dice.roll(1500)));
    }
    EXPECT_TRUE(loop->runUntil([&] { return ended == begun; }, patience));
}

INSTANTIATE_TEST_SUITE_P(Seed, AppModelThreads, testing::Range(1U, 9U));

} // namespace
} // namespace quillbook::test
