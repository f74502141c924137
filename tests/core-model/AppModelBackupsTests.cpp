#include "backup/BackupError.h"
#include "core/model/AppModel.h"
#include "platform/ThreadRunner.h"
#include "store/sources/MessageSourceProvider.h"
#include "tests/support/MessagesDatabase.h"
#include "tests/support/ModelFakes.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/backup/BackupWriter.h"
#include "tools/runloop/RunLoop.h"

#include <chrono>
#include <thread>

#include <gmock/gmock.h>

namespace quillbook::test {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using Clock = std::chrono::steady_clock;

constexpr auto patience = 30s;
constexpr const char* password = "lake house";
constexpr const char* knownPlaintext = "The lighthouse is open until nine";

class NoContacts final : public ContactResolving {
public:
    ContactIdentities resolve(const std::vector<std::string>& /*addresses*/) override { return {}; }
};

class PluggedInPhone final : public USBDevices {
public:
    std::vector<USBDevice> attached() const override { return {{0x05AC, "iPhone"}}; }
};

/// Counts how often what the real provider prepared is closed.
class CountingProvider final : public MessageSourceProviding {
public:
    explicit CountingProvider(MessageSourceProvider real) : real_(std::move(real)) {}

    std::vector<MessageSource> availableSources(std::stop_token stop) override {
        return real_.availableSources(std::move(stop));
    }
    PreparedSource prepare(const MessageSource& source, const std::optional<std::string>& given,
                           std::stop_token stop) override {
        PreparedSource prepared = real_.prepare(source, given, std::move(stop));
        const auto count = std::make_shared<std::atomic<int>>(0);
        prepared.teardown = [count, teardown = std::move(prepared.teardown)] {
            ++*count;
            teardown();
        };
        const std::scoped_lock lock(mutex_);
        counts_.push_back(count);
        return prepared;
    }
    /// Of each prepared source, oldest first.
    std::vector<int> teardowns() const {
        const std::scoped_lock lock(mutex_);
        std::vector<int> all;
        for (const auto& count : counts_)
            all.push_back(*count);
        return all;
    }

private:
    MessageSourceProvider real_;
    mutable std::mutex mutex_;
    std::vector<std::shared_ptr<std::atomic<int>>> counts_;
};

/// The model over the real provider, on real threads. The library has the chat "At home"; each backup has one
/// that is named after it.
class AppModelBackups : public testing::Test {
protected:
    AppModelBackups() {
        MessagesDatabase database(home / "Library/Messages/chat.db");
        database.addMessage(database.addChat("home", "At home", "chat1"), {.guid = "m", .text = "hi"});
    }

    ~AppModelBackups() override {
        model.reset();
        threads.reset();
        loop->runPending();
    }

    sample::BackupDescription description(const std::string& name) const {
        return {.folder = home.path() / "Library/Application Support/MobileSync/Backup" / name};
    }
    sample::BackupDescription encrypted(const std::string& name) const {
        auto backup = description(name);
        backup.encryption = sample::BackupEncryption{.password = password, .rounds = 10};
        return backup;
    }
    static void write(const sample::BackupDescription& backup) {
        const TemporaryFolder messages;
        MessagesDatabase database(messages / "chat.db");
        const std::string name = backup.folder.filename().string();
        database.addMessage(database.addChat("chat", name, "chat2"), {.guid = "m", .text = knownPlaintext});
        sample::BackupWriter writer(backup);
        writer.addFile("HomeDomain", "Library/SMS/sms.db", messages / "chat.db");
        writer.finish();
    }
    /// A backup whose password takes longer to try than anybody lives.
    void writeAbsurd(const char* name, sample::KeyDerivation derivation) const {
        auto backup = encrypted(name);
        backup.encryption->derivation = derivation;
        backup.encryption->claimedRounds = INT64_MAX;
        write(backup);
    }

    /// Starts the model and lets it settle on the library.
    void startModel() {
        SourcePlaces places = SourcePlaces::of(UserFolders::below(home.path()));
        places.temporaryDirectory = temporary.path();
        provider = std::make_shared<CountingProvider>(MessageSourceProvider(
            places, [] { return std::make_shared<NoContacts>(); }, devices));
        const auto preferences = std::make_shared<FakePreferences>();
        preferences->values["onboarding.completed"] = true;
        AppModelServices services;
        services.accessChecker = std::make_shared<FakeAccessChecker>();
        services.sourceProvider = provider;
        services.preferences = preferences;
        services.mainThread = loop;
        services.backgroundRunner = threads;
        services.presence = std::make_shared<FakePresence>();
        services.cacheRecovery = std::make_shared<FakeCacheRecovery>();
        services.isWritableFolder = [](const auto&) { return true; };
        services.priorArchive = [](const auto&, const auto&) { return std::nullopt; };
        services.downloads = "/albums";
        services.home = "/";
        model = AppModel::make(std::move(services));
        bool isStarted = false;
        model->start([&] { isStarted = true; });
        ASSERT_TRUE(turnUntil([&] { return isStarted; }));
        ASSERT_EQ(state().selectedSourceID, "local-mac");
    }
    /// As a user does who picks an encrypted backup and answers the prompt.
    void choose(const std::string& id, const std::string& answer) {
        model->selectSource(id);
        ASSERT_TRUE(state().pendingPasswordSource);
        model->submitBackupPassword(SecretText(answer), [this] { isOver = true; });
    }
    void chooseAndWait(const std::string& id, const std::string& answer = password) {
        isOver = false;
        choose(id, answer);
        ASSERT_TRUE(turnUntil([this] { return isOver; }));
    }
    void switchTo(const std::string& id) {
        const auto isDone = std::make_shared<bool>(false);
        model->selectSource(id, [isDone] { *isDone = true; });
        ASSERT_TRUE(turnUntil([isDone] { return *isDone; }));
    }
    /// Runs the main thread until the condition holds, which nothing on that thread need bring about.
    bool turnUntil(const std::function<bool()>& condition) {
        const auto end = Clock::now() + patience;
        while (!condition()) {
            if (Clock::now() > end) return false;
            loop->runUntil(condition, 2ms);
        }
        return true;
    }

    const AppModelState& state() const { return model->state(); }
    std::vector<std::string> titles() const {
        std::vector<std::string> all;
        for (const auto& each : state().conversations)
            all.push_back(each.title);
        return all;
    }
    /// The working directories that there are, hidden ones as well.
    std::size_t workingDirectories() const {
        const auto entries = fs::directory_iterator(temporary.path());
        return static_cast<std::size_t>(std::distance(fs::begin(entries), fs::end(entries)));
    }

    TemporaryFolder home;
    TemporaryFolder temporary;
    std::shared_ptr<const USBDevices> devices = std::make_shared<SystemUSBDevices>(home / "no bus");
    std::shared_ptr<CountingProvider> provider;
    std::shared_ptr<RunLoop> loop = std::make_shared<RunLoop>();
    std::shared_ptr<ThreadRunner> threads = std::make_shared<ThreadRunner>();
    std::shared_ptr<AppModel> model;
    bool isOver = false;
};

TEST_F(AppModelBackups, rightPasswordListsTheBackup) {
    write(encrypted("locked"));
    startModel();
    chooseAndWait("locked");
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_EQ(state().selectedSourceID, "locked");
    EXPECT_THAT(titles(), ElementsAre("locked"));
}

TEST_F(AppModelBackups, wrongPasswordClosesThePromptAndTellsInItsWords) {
    write(encrypted("locked"));
    startModel();
    chooseAndWait("locked", "lake hause");
    EXPECT_EQ(state().pendingPasswordSource, std::nullopt);
    EXPECT_EQ(state().errorMessage, "The backup password is incorrect.");
    EXPECT_FALSE(state().isLoading);
}

TEST_F(AppModelBackups, wrongPasswordLeavesTheLibraryInUse) {
    write(encrypted("locked"));
    startModel();
    const auto store = state().store;
    const auto exporter = state().exporter;
    chooseAndWait("locked", "lake hause");
    EXPECT_EQ(state().store, store);
    EXPECT_EQ(state().exporter, exporter);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
    EXPECT_THAT(titles(), ElementsAre("At home"));
    EXPECT_THAT(provider->teardowns(), ElementsAre(0));
    EXPECT_EQ(store->searchConversations("", {}).size(), 1U);
}

TEST_F(AppModelBackups, wrongPasswordLeavesNothingBehind) {
    write(encrypted("locked"));
    startModel();
    chooseAndWait("locked", "lake hause");
    EXPECT_EQ(workingDirectories(), 0U);
}

TEST_F(AppModelBackups, rightPasswordIsTakenAfterAWrongOne) {
    write(encrypted("locked"));
    startModel();
    chooseAndWait("locked", "lake hause");
    chooseAndWait("locked");
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_THAT(titles(), ElementsAre("locked"));
}

TEST_F(AppModelBackups, damagedBackupLeavesTheLibraryInUse) {
    sample::BackupWriter(description("empty")).finish();
    startModel();
    switchTo("empty");
    EXPECT_EQ(state().errorMessage, BackupError(BackupError::Reason::messageDatabaseMissing).description());
    EXPECT_EQ(state().selectedSourceID, "local-mac");
    EXPECT_THAT(titles(), ElementsAre("At home"));
    EXPECT_EQ(workingDirectories(), 0U);
}

TEST_F(AppModelBackups, deviceWithoutBackupTellsWhatToDo) {
    devices = std::make_shared<PluggedInPhone>();
    startModel();
    switchTo("connected-device");
    EXPECT_EQ(state().errorMessage, BackupError(BackupError::Reason::deviceNotBackedUp).description());
    EXPECT_EQ(state().selectedSourceID, "local-mac");
}

TEST_F(AppModelBackups, switchingClosesEachBackupOnceAndRemovesWhatItDecrypted) {
    write(description("open"));
    write(encrypted("locked"));
    startModel();
    chooseAndWait("locked");
    EXPECT_EQ(workingDirectories(), 1U);
    EXPECT_THAT(provider->teardowns(), ElementsAre(1, 0));
    switchTo("open");
    EXPECT_EQ(workingDirectories(), 1U);
    EXPECT_THAT(provider->teardowns(), ElementsAre(1, 1, 0));
    chooseAndWait("locked");
    EXPECT_THAT(provider->teardowns(), ElementsAre(1, 1, 1, 0));
    switchTo("local-mac");
    EXPECT_EQ(workingDirectories(), 0U);
    model->tearDown();
    model.reset();
    EXPECT_THAT(provider->teardowns(), ElementsAre(1, 1, 1, 1, 1));
}

TEST_F(AppModelBackups, failedSwitchLeavesTheOpenBackupAsItIs) {
    write(description("open"));
    write(encrypted("locked"));
    startModel();
    switchTo("open");
    chooseAndWait("locked", "lake hause");
    EXPECT_EQ(state().selectedSourceID, "open");
    EXPECT_THAT(provider->teardowns(), ElementsAre(1, 0));
    EXPECT_EQ(workingDirectories(), 1U);
    EXPECT_EQ(state().store->searchConversations("", {}).size(), 1U);
}

TEST_F(AppModelBackups, quittingRemovesTheOpenBackupBeforeItReturns) {
    write(encrypted("locked"));
    startModel();
    chooseAndWait("locked");
    model->tearDown();
    EXPECT_EQ(workingDirectories(), 0U);
    model->tearDown();
    EXPECT_THAT(provider->teardowns(), ElementsAre(1, 1));
}

/// In which step of the derivation the rounds are without end.
class AbsurdRounds : public AppModelBackups, public testing::WithParamInterface<sample::KeyDerivation> {
protected:
    /// The prompt is answered, and the password is being tried.
    void tryThePassword() {
        writeAbsurd("absurd", GetParam());
        write(description("open"));
        startModel();
        choose("absurd", password);
        ASSERT_TRUE(turnUntil([this] { return workingDirectories() == 1; }));
    }
    void expectNothingLeft() {
        const auto asked = Clock::now();
        EXPECT_TRUE(turnUntil([this] { return workingDirectories() == 0 && isOver; }));
        const auto latency = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - asked);
        RecordProperty("latencyMilliseconds", static_cast<int>(latency.count()));
        // Far below 100 ms; machines that run tests may be very busy.
        EXPECT_LT(latency, 5s);
    }
};

TEST_P(AbsurdRounds, leaveTheMainThreadFree) {
    tryThePassword();
    model->setSearchText("no such chat");
    EXPECT_TRUE(turnUntil([this] { return titles().empty(); }));
    EXPECT_TRUE(state().isLoading);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
    EXPECT_FALSE(isOver);
    model->cancelBackupPassword();
    expectNothingLeft();
}

TEST_P(AbsurdRounds, endWithTheirPromptAndLeaveNothing) {
    tryThePassword();
    model->cancelBackupPassword();
    EXPECT_FALSE(state().isLoading);
    expectNothingLeft();
    EXPECT_EQ(state().pendingPasswordSource, std::nullopt);
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
    EXPECT_THAT(titles(), ElementsAre("At home"));
    EXPECT_THAT(provider->teardowns(), ElementsAre(0));
}

TEST_P(AbsurdRounds, endWithTheApplicationAndLeaveNothing) {
    tryThePassword();
    model->tearDown();
    expectNothingLeft();
    EXPECT_THAT(provider->teardowns(), ElementsAre(1));
}

TEST_P(AbsurdRounds, endWithTheModelAndLeaveNothing) {
    tryThePassword();
    model.reset();
    expectNothingLeft();
}

/// An application that quits turns its main thread no more.
TEST_P(AbsurdRounds, endThoughTheMainThreadNeverTurnsAgain) {
    tryThePassword();
    model->tearDown();
    const auto end = Clock::now() + patience;
    while (workingDirectories() > 0 && Clock::now() < end)
        std::this_thread::sleep_for(1ms);
    EXPECT_EQ(workingDirectories(), 0U);
}

TEST_P(AbsurdRounds, keepNobodyFromAnotherSource) {
    tryThePassword();
    model->cancelBackupPassword();
    switchTo("open");
    EXPECT_EQ(state().selectedSourceID, "open");
    EXPECT_THAT(titles(), ElementsAre("open"));
    EXPECT_TRUE(turnUntil([this] { return workingDirectories() == 1; }));
}

INSTANTIATE_TEST_SUITE_P(Derivation, AbsurdRounds,
                         testing::Values(sample::KeyDerivation::single, sample::KeyDerivation::twofold),
                         [](const auto& test) {
                             return test.param == sample::KeyDerivation::single ? "single" : "twofold";
                         });

} // namespace
} // namespace quillbook::test
