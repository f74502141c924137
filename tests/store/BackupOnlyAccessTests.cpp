#include "core/model/AppModel.h"
#include "platform/ThreadRunner.h"
#include "store/MessagesAccessChecker.h"
#include "store/RepositoryError.h"
#include "store/sources/BackupOnlyAccess.h"
#include "store/sources/MessageSourceProvider.h"
#include "tests/support/FolderSnapshot.h"
#include "tests/support/MessagesDatabase.h"
#include "tests/support/ModelFakes.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/backup/BackupWriter.h"
#include "tools/runloop/RunLoop.h"

#include <chrono>

#include <gmock/gmock.h>

namespace quillbook::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = MessagesAccessStatus::Kind;

constexpr auto patience = std::chrono::seconds(30);

MessageSource deviceWithoutBackup() {
    return {.id = "connected-device", .title = "iPhone is connected", .kind = ConnectedDeviceWithoutBackup()};
}

/// The decorators around fakes.
class BackupOnlyAccess : public testing::Test {
protected:
    MessagesAccessStatus check() { return BackupOnlyAccessChecker(library, sources, paths).checkAccess({}); }
    PreparedSource prepare(const MessageSource& source) {
        return BackupOnlySourceProvider(sources, library, paths).prepare(source, "a password", {});
    }

    TemporaryFolder home;
    MessagesPaths paths = MessagesPaths::below(home.path());
    std::shared_ptr<FakeAccessChecker> library = std::make_shared<FakeAccessChecker>();
    std::shared_ptr<FakeSourceProvider> sources = std::make_shared<FakeSourceProvider>();
};

struct AccessCase {
    const char* name;
    MessagesAccessStatus library;
    std::vector<MessageSource> sources;
    MessagesAccessStatus expected;
    bool isEmptyLibrary = false;
};

class BackupOnlyAccessTable : public BackupOnlyAccess, public testing::WithParamInterface<AccessCase> {
protected:
    void SetUp() override {
        home.write("Library/Messages/other", "");
        library->status = GetParam().library;
        sources->sources = GetParam().sources;
    }
};

TEST_P(BackupOnlyAccessTable, isGrantedForAMissingLibraryBesideABackupAlone) {
    EXPECT_EQ(check(), GetParam().expected);
}

TEST_P(BackupOnlyAccessTable, libraryIsOpenedAsEmptyUnderTheSameCondition) {
    prepare(localMacSource());
    EXPECT_EQ(sources->preparations() == 0, GetParam().isEmptyLibrary);
}

const MessagesAccessStatus missing{Kind::databaseMissing, {}};
const MessagesAccessStatus granted{Kind::granted, {}};
const MessagesAccessStatus denied{Kind::denied, {}};
const MessagesAccessStatus failed = MessagesAccessStatus::failed("words");

INSTANTIATE_TEST_SUITE_P(
    Table, BackupOnlyAccessTable,
    testing::Values(
        AccessCase{
            "missingBesideABackup", missing, {localMacSource(), backupSource("b", false)}, granted, true},
        AccessCase{"missingBesideALockedBackup",
                   missing,
                   {localMacSource(), backupSource("b", true)},
                   granted,
                   true},
        AccessCase{"missingAlone", missing, {localMacSource()}, missing},
        AccessCase{"missingBesideADevice", missing, {localMacSource(), deviceWithoutBackup()}, missing},
        AccessCase{"grantedBesideABackup", granted, {localMacSource(), backupSource("b", false)}, granted},
        AccessCase{"deniedBesideABackup", denied, {localMacSource(), backupSource("b", false)}, denied},
        AccessCase{"failedBesideABackup", failed, {localMacSource(), backupSource("b", false)}, failed}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(BackupOnlyAccess, passesTheOtherCallsOn) {
    sources->sources = {localMacSource(), backupSource("b", true)};
    library->status = missing;
    BackupOnlyAccessChecker(library, sources, paths).openPrivacySettings();
    EXPECT_EQ(library->openedSettings, 1);
    EXPECT_EQ(BackupOnlySourceProvider(sources, library, paths).availableSources({}), sources->sources);
    prepare(sources->sources[1]);
    EXPECT_EQ(sources->prepared().back().sourceID, "b");
    EXPECT_EQ(sources->prepared().back().password, "a password");
}

/// A library that the checker calls denied, with a backup beside it.
class DeniedLibrary : public BackupOnlyAccess {
protected:
    DeniedLibrary() {
        library->status = denied;
        sources->sources = {localMacSource(), backupSource("b", false)};
    }
    void expect(const MessagesAccessStatus& status) {
        EXPECT_EQ(check(), status);
        prepare(localMacSource());
        EXPECT_EQ(sources->preparations() == 0, status.isGranted());
    }
};

TEST_F(DeniedLibrary, isMissingWhereItHasNoFolder) {
    expect(granted);
}

TEST_F(DeniedLibrary, isMissingWhereTheFolderAboveHasNone) {
    std::filesystem::create_directory(home / "Library");
    expect(granted);
}

TEST_F(DeniedLibrary, staysDeniedWhereItHasAFolder) {
    home.write("Library/Messages/other", "");
    expect(denied);
}

TEST_F(DeniedLibrary, staysDeniedWhereItsFolderIsALinkToNowhere) {
    std::filesystem::create_directory(home / "Library");
    std::filesystem::create_symlink(home / "unplugged", home / "Library/Messages");
    expect(denied);
}

TEST_F(DeniedLibrary, staysDeniedBehindALinkToNowhere) {
    std::filesystem::create_symlink(home / "unplugged", home / "Library");
    expect(denied);
}

TEST_F(DeniedLibrary, staysDeniedWhereAFileIsInTheWay) {
    home.write("Library", "no folder");
    expect(denied);
}

TEST_F(DeniedLibrary, isMissingWithoutABackupToo) {
    sources->sources = {localMacSource(), deviceWithoutBackup()};
    expect(missing);
}

class EmptyLibrary : public BackupOnlyAccess {
protected:
    void SetUp() override {
        library->status = missing;
        sources->sources = {localMacSource(), backupSource("b", false)};
        source = prepare(localMacSource());
    }
    PreparedSource source;
};

TEST_F(EmptyLibrary, holdsNothing) {
    EXPECT_THAT(source.store->searchConversations("", {}), IsEmpty());
    EXPECT_EQ(source.store->surveyAttachmentStorage(SourceID{"1"}, {}), AttachmentStorageSurvey());
    EXPECT_THAT(source.store->missingAttachments(SourceID{"1"}, {}), IsEmpty());
    EXPECT_EQ(source.store->locateAttachment("~/Library/Messages/Attachments/a"), std::nullopt);
    source.store->releaseAttachment("/nowhere");
    source.teardown();
}

TEST_F(EmptyLibrary, loadsAConversationNoMoreThanARepositoryWithoutIt) {
    try {
        source.store->loadConversation(SourceID{"7"}, {});
        FAIL();
    } catch (const RepositoryError& error) {
        EXPECT_EQ(error.reason, RepositoryError::Reason::conversationNotFound);
        EXPECT_EQ(error.subject, "7");
    }
}

TEST_F(EmptyLibrary, exportsNoConversationAndLeavesNothing) {
    const TemporaryFolder albums;
    EXPECT_THROW(
        source.exporter->exportConversation(SourceID{"7"}, albums.path(), {}, [](const auto&) {}, {}),
        RepositoryError);
    EXPECT_TRUE(std::filesystem::is_empty(albums.path()));
}

class NoContacts final : public ContactResolving {
public:
    ContactIdentities resolve(const std::vector<std::string>& /*addresses*/) override { return {}; }
};

class NoDevices final : public USBDevices {
public:
    std::vector<USBDevice> attached() const override { return {}; }
};

/// The model over real sources of a home folder.
class BackupOnlyModel : public testing::Test {
protected:
    ~BackupOnlyModel() override {
        if (model) model->tearDown();
    }
    void writeBackup() const {
        const TemporaryFolder messages;
        MessagesDatabase database(messages / "chat.db");
        database.addMessage(database.addChat("chat", "Lake house", "chat1"), {.guid = "m", .text = "hello"});
        sample::BackupWriter writer(
            {.folder = home.path() / "Library/Application Support/MobileSync/Backup/phone"});
        writer.addFile("HomeDomain", "Library/SMS/sms.db", messages / "chat.db");
        writer.finish();
    }
    void start() {
        SourcePlaces places = SourcePlaces::of(UserFolders::below(home.path()));
        places.temporaryDirectory = temporary.path();
        const auto library = std::make_shared<MessagesAccessChecker>(places.localLibrary);
        const auto sources = std::make_shared<MessageSourceProvider>(
            places, [] { return std::make_shared<NoContacts>(); }, std::make_shared<NoDevices>());
        const auto preferences = std::make_shared<FakePreferences>();
        preferences->values["onboarding.completed"] = true;
        AppModelServices services;
        services.accessChecker =
            std::make_shared<BackupOnlyAccessChecker>(library, sources, places.localLibrary);
        services.sourceProvider =
            std::make_shared<BackupOnlySourceProvider>(sources, library, places.localLibrary);
        services.preferences = preferences;
        services.mainThread = loop;
        services.backgroundRunner = runner;
        services.presence = std::make_shared<FakePresence>();
        services.cacheRecovery = std::make_shared<FakeCacheRecovery>();
        services.isWritableFolder = [](const auto&) { return true; };
        services.priorArchive = [](const auto&, const auto&) { return std::nullopt; };
        services.home = home.path();
        model = AppModel::make(std::move(services));
        run([this](auto done) { model->start(done); });
    }
    void run(const std::function<void(AppModel::Completion)>& operation) {
        const auto isDone = std::make_shared<bool>(false);
        operation([isDone] { *isDone = true; });
        EXPECT_TRUE(loop->runUntil([&] { return *isDone; }, patience));
    }
    const AppModelState& state() const { return model->state(); }
    std::vector<std::string> titles() const {
        std::vector<std::string> all;
        for (const auto& each : state().conversations)
            all.push_back(each.title);
        return all;
    }

    TemporaryFolder home;
    TemporaryFolder temporary;
    std::shared_ptr<RunLoop> loop = std::make_shared<RunLoop>();
    std::shared_ptr<ThreadRunner> runner = std::make_shared<ThreadRunner>();
    std::shared_ptr<AppModel> model;
};

TEST_F(BackupOnlyModel, startsOnAnEmptyListWithoutAnError) {
    writeBackup();
    start();
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_EQ(state().selectedSourceID, "local-mac");
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_FALSE(state().isLoading);
}

TEST_F(BackupOnlyModel, goesOnToTheBackupAndBack) {
    writeBackup();
    const auto before = snapshotOf(home.path());
    start();
    run([this](auto done) { model->selectSource("phone", done); });
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_THAT(titles(), ElementsAre("Lake house"));
    run([this](auto done) { model->selectSource("local-mac", done); });
    EXPECT_EQ(state().errorMessage, std::nullopt);
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_EQ(snapshotOf(home.path()), before);
}

TEST_F(BackupOnlyModel, startsInTheSameWayBesideAnEmptyFolder) {
    writeBackup();
    std::filesystem::create_directories(home / "Library/Messages");
    start();
    EXPECT_EQ(state().screen, AppScreen::chooseConversation);
    EXPECT_EQ(state().errorMessage, std::nullopt);
}

TEST_F(BackupOnlyModel, staysOnTheAccessScreenWithoutABackup) {
    std::filesystem::create_directories(home / "Library/Messages");
    start();
    EXPECT_EQ(state().screen, AppScreen::access);
    EXPECT_EQ(state().accessStatus, missing);
}

TEST_F(BackupOnlyModel, staysOnTheAccessScreenWithoutAnything) {
    start();
    EXPECT_EQ(state().screen, AppScreen::access);
    EXPECT_EQ(state().accessStatus, missing);
}

TEST_F(BackupOnlyModel, damagedLibraryIsToldAsBefore) {
    writeBackup();
    home.write("Library/Messages/chat.db", std::string(4'096, 'x'));
    start();
    EXPECT_TRUE(state().errorMessage);
}

TEST_F(BackupOnlyModel, libraryThatDoesNotOpenStaysDenied) {
    writeBackup();
    std::filesystem::create_directories(home / "Library/Messages/chat.db");
    start();
    EXPECT_EQ(state().screen, AppScreen::access);
    EXPECT_EQ(state().accessStatus, denied);
}

TEST_F(BackupOnlyModel, libraryThatIsThereIsTheOneInUse) {
    writeBackup();
    {
        MessagesDatabase database(home / "Library/Messages/chat.db");
        database.addMessage(database.addChat("own", "Grace", "chat2"), {.guid = "m", .text = "hi"});
    }
    start();
    EXPECT_THAT(titles(), ElementsAre("Grace"));
}

} // namespace
} // namespace quillbook::test
