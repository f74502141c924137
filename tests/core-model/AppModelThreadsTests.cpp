#include "core/model/AppModel.h"
#include "core/records/Cancellation.h"
#include "tests/support/ModelFakes.h"
#include "tools/runloop/RunLoop.h"
#include "tools/runloop/ThreadRunner.h"

#include <chrono>
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
        AppModelServices services{
            checker,   provider, preferences, loop, threads, presence, [](const auto&) { return true; },
            "/albums", "/"};
        preferences->values["onboarding.completed"] = true;
        model = AppModel::make(std::move(services));
        model->observe([this](AppModelProperty) { ++announcements; });
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
        switch (dice.roll(13)) {
        case 0:
            return model->start([this] { ++ended; });
        case 1:
        case 2:
            return model->selectSource(provider->sources[dice.roll(count)].id, [this] { ++ended; });
        case 3:
            return model->submitBackupPassword("secret", [this] { ++ended; });
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
        default:
            return model->continueToExportSetup();
        }
    }

    void choose() {
        const auto& all = model->state().conversations;
        if (!all.empty())
            model->setSelectedConversationID(all[dice.roll(static_cast<unsigned>(all.size()))].id);
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
    std::shared_ptr<RunLoop> loop = std::make_shared<RunLoop>();
    std::shared_ptr<ThreadRunner> threads = std::make_shared<ThreadRunner>();
    std::shared_ptr<AppModel> model;
    std::atomic<bool> preparationsMayFail = true;
    std::atomic<int> exportsWithoutSource = 0;
    int announcements = 0;
    int ended = 0;
};

TEST_P(AppModelThreads, settlesOnTheLastTextOfTheSourceInUse) {
    operateForAWhile(60);
    ASSERT_TRUE(loop->runUntil([&] { return isQuiet(); }, patience));
    preparationsMayFail = false;
    model->start();
    ASSERT_TRUE(loop->runUntil([&] { return model->state().store && isQuiet(); }, patience));
    model->setSearchText("Grace");
    // Asked anew each time: the start may still be on its way to this Mac's library.
    const auto listsTheMatch = [&] {
        const auto& all = provider->conversations.at(model->state().selectedSourceID.value());
        return model->state().conversations == std::vector{all[0]} && isQuiet();
    };
    EXPECT_TRUE(loop->runUntil(listsTheMatch, patience));
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

TEST_P(AppModelThreads, everyRunThatEndsTellsSo) {
    int begun = 0;
    for (int each = 0; each < 30; ++each) {
        const auto tell = [this] { ++ended; };
        begun += 3;
        model->start(tell);
        model->loadConversations(tell);
        model->selectSource("open-backup", tell);
        loop->runUntil([] { return false; }, std::chrono::microseconds(dice.roll(1500)));
    }
    EXPECT_TRUE(loop->runUntil([&] { return ended == begun; }, patience));
}

INSTANTIATE_TEST_SUITE_P(Seed, AppModelThreads, testing::Range(1U, 9U));

} // namespace
} // namespace quillbook::test
