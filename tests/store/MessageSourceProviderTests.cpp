#include "backup/BackupError.h"
#include "core/records/Cancellation.h"
#include "core/text/DateText.h"
#include "platform/UserFolders.h"
#include "store/MessagesRepository.h"
#include "store/sources/MessageSourceProvider.h"
#include "tests/store/RepositoryFakes.h"
#include "tests/support/FolderSnapshot.h"
#include "tools/backup/BackupWriter.h"

#include <algorithm>

#include <gmock/gmock.h>

namespace quillbook {
namespace {

/// The bus as a test wants it.
class PluggedIn final : public USBDevices {
public:
    explicit PluggedIn(std::vector<USBDevice> devices) : devices_(std::move(devices)) {}
    std::vector<USBDevice> attached() const override { return devices_; }

private:
    std::vector<USBDevice> devices_;
};

class MessageSourceProviderTest : public testing::Test {
protected:
    MessageSourceProvider provider() {
        SourcePlaces places = SourcePlaces::of(UserFolders::below(home.path()));
        places.temporaryDirectory = temporary.path();
        return {places,
                [this] {
                    ++resolverCount;
                    return std::make_shared<test::KnownContacts>();
                },
                std::make_shared<PluggedIn>(devices)};
    }
    MessageSource localMac() { return provider().availableSources({}).front(); }

    test::TemporaryFolder home;
    test::TemporaryFolder temporary;
    std::vector<USBDevice> devices;
    int resolverCount = 0;
};

/// How many descriptors of this process have the file open.
int openHandles(const std::filesystem::path& file) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (std::filesystem::read_symlink(entry.path(), gone) == file) ++count;
    }
    return count;
}

TEST_F(MessageSourceProviderTest, listsThisMachineAloneWithoutBackupsAndDevices) {
    const auto sources = provider().availableSources({});
    ASSERT_EQ(sources.size(), 1U);
    EXPECT_EQ(sources[0],
              (MessageSource{"local-mac", "This Mac", "Local Messages library", LocalMac(), false}));
}

TEST_F(MessageSourceProviderTest, failsWithSQLitesErrorWithoutALibrary) {
    EXPECT_THROW(provider().prepare(localMac(), std::nullopt, {}), SQLiteError);
}

TEST_F(MessageSourceProviderTest, preparesStoreAndExporterOverOneConnection) {
    {
        test::MessagesDatabase database(home / "Library/Messages/chat.db");
        database.addMessage(database.addChat("g", "Chat", std::nullopt), {.guid = "m", .text = "hi"});
    }
    const PreparedSource source = provider().prepare(localMac(), std::nullopt, {});
    EXPECT_EQ(source.store->searchConversations("", {}).size(), 1U);
    const auto album =
        source.exporter->exportConversation(SourceID{"1"}, home.path(), {}, [](const auto&) {}, {});
    EXPECT_TRUE(std::filesystem::exists(album.archiveURL / "manifest.json"));
    EXPECT_EQ(album.messageCount, 1);
    EXPECT_EQ(openHandles(home / "Library/Messages/chat.db"), 1);
    source.teardown();
}

TEST_F(MessageSourceProviderTest, makesOneResolverForEachPreparedSource) {
    test::MessagesDatabase database(home / "Library/Messages/chat.db");
    const auto provided = std::make_unique<MessageSourceProvider>(provider());
    provided->prepare(localMac(), std::nullopt, {});
    provided->prepare(localMac(), std::nullopt, {});
    EXPECT_EQ(resolverCount, 2);
}

TEST_F(MessageSourceProviderTest, takesTheUsualPlacesOfAHomeFolder) {
    const SourcePlaces places = SourcePlaces::of(UserFolders::below("/home/robin"));
    EXPECT_EQ(places.localLibrary.database(), "/home/robin/Library/Messages/chat.db");
    EXPECT_EQ(places.temporaryDirectory, temporaryFolder());
    EXPECT_EQ(places.recoveryRoot, "/home/robin/.local/share/Quillbook/Recovered Attachments");
}

constexpr const char* password = "lake house";
const USBDevice phone{.vendorID = 0x05AC, .productName = "iPhone"};

class BackupSources : public MessageSourceProviderTest {
protected:
    sample::BackupDescription description(const std::string& name) const {
        return {.folder = home.path() / "Library/Application Support/MobileSync/Backup" / name};
    }
    sample::BackupDescription encrypted(const std::string& name) const {
        auto backup = description(name);
        backup.encryption = sample::BackupEncryption{.password = password, .rounds = 10};
        return backup;
    }
    /// A backup of one chat with one message and one attachment, which two stored paths lead to.
    void write(const sample::BackupDescription& backup) const {
        const test::TemporaryFolder messages;
        test::MessagesDatabase database(messages / "chat.db");
        const auto chat = database.addChat("chat", "Lake house", "chat1");
        const auto message = database.addMessage(chat, {.guid = "m", .text = "hello"});
        for (const char* root : {"~/", "/var/mobile/"}) {
            database.addAttachment(message, {.guid = root,
                                             .filename = root + std::string("Library/SMS/Attachments/a.txt"),
                                             .transferName = "a.txt"});
        }
        sample::BackupWriter writer(backup);
        writer.addFile("HomeDomain", "Library/SMS/sms.db", messages / "chat.db");
        writer.addBytes("MediaDomain", "Library/SMS/Attachments/a.txt", "attached");
        writer.finish();
    }
    MessageSource source(const std::string& id) {
        const auto all = provider().availableSources({});
        return *std::find_if(all.begin(), all.end(), [&](const auto& each) { return each.id == id; });
    }
    std::vector<MessageSource> sourcesBehindThisMac() {
        auto all = provider().availableSources({});
        EXPECT_TRUE(all.front().isLocalMac());
        all.erase(all.begin());
        return all;
    }
    bool isTemporaryEmpty() const { return std::filesystem::is_empty(temporary.path()); }
};

TEST_F(BackupSources, areListedNewestFirstWithWhatTheyAre) {
    auto older = description("older");
    older.deviceName = "Robin’s iPad";
    older.lastBackupDate = Date::fromUnixSeconds(1'700'000'000);
    write(older);
    auto newer = encrypted("newer");
    newer.lastBackupDate = Date::fromUnixSeconds(1'710'000'000);
    write(newer);
    const auto sources = sourcesBehindThisMac();
    ASSERT_EQ(sources.size(), 2U);
    const std::string newerDay = DateText::user().mediumDay(newer.lastBackupDate);
    const std::string olderDay = DateText::user().mediumDay(older.lastBackupDate);
    EXPECT_EQ(sources[0].id, "newer");
    EXPECT_EQ(sources[0].title, "Robin’s iPhone");
    EXPECT_EQ(sources[0].subtitle, newerDay + " · Encrypted backup");
    EXPECT_TRUE(sources[0].requiresPassword);
    EXPECT_EQ(sources[1].id, "older");
    EXPECT_EQ(sources[1].title, "Robin’s iPad");
    EXPECT_EQ(sources[1].subtitle, olderDay + " · Backup");
    EXPECT_FALSE(sources[1].requiresPassword);
    EXPECT_EQ(std::get<DeviceBackup>(sources[1].kind).url, older.folder);
}

/// A backup folder with nothing but what a listing looks at.
void writeDatelessBackup(const test::TemporaryFolder& home, const std::string& name,
                         const char* isEncrypted) {
    const std::string folder = "Library/Application Support/MobileSync/Backup/" + name;
    home.write(folder + "/Manifest.db", "");
    home.write(folder + "/Manifest.plist",
               std::string("<plist version=\"1.0\"><dict><key>IsEncrypted</key><") + isEncrypted +
                   "/></dict></plist>");
}

TEST_F(BackupSources, withoutADateSayOnlyWhatTheyAre) {
    writeDatelessBackup(home, "a", "false");
    writeDatelessBackup(home, "b", "true");
    const auto sources = sourcesBehindThisMac();
    ASSERT_EQ(sources.size(), 2U);
    EXPECT_EQ(sources[0].subtitle, "Backup");
    EXPECT_EQ(sources[1].subtitle, "Encrypted backup");
}

TEST_F(BackupSources, hideADeviceThatIsPluggedIn) {
    writeDatelessBackup(home, "a", "false");
    devices = {phone};
    const auto sources = sourcesBehindThisMac();
    ASSERT_EQ(sources.size(), 1U);
    EXPECT_EQ(sources[0].id, "a");
}

TEST_F(BackupSources, areReplacedByTheFirstDeviceWhereThereAreNone) {
    devices = {phone, USBDevice{.vendorID = 0x05AC, .productName = "iPad"}};
    EXPECT_THAT(sourcesBehindThisMac(),
                testing::ElementsAre(MessageSource{"connected-device", "iPhone is connected",
                                                   "Back it up in Finder first, then it appears here",
                                                   ConnectedDeviceWithoutBackup(), false}));
}

TEST_F(BackupSources, refuseADeviceThatHasNoBackup) {
    devices = {phone};
    try {
        provider().prepare(sourcesBehindThisMac().front(), std::nullopt, {});
        FAIL();
    } catch (const BackupError& error) {
        EXPECT_EQ(error, BackupError(BackupError::Reason::deviceNotBackedUp));
    }
}

TEST_F(BackupSources, areOpenedListedAndExportedLikeAnyOther) {
    write(description("plain"));
    write(encrypted("encrypted"));
    const auto before = test::snapshotOf(home.path());
    for (const std::string id : {"plain", "encrypted"}) {
        const PreparedSource opened = provider().prepare(source(id), password, {});
        EXPECT_EQ(opened.store->searchConversations("", {}).size(), 1U);
        const test::TemporaryFolder albums;
        const auto album =
            opened.exporter->exportConversation(SourceID{"1"}, albums.path(), {}, [](const auto&) {}, {});
        EXPECT_EQ(album.attachmentCount, 2);
        EXPECT_EQ(test::readFile(album.archiveURL / "attachments/a.txt"), "attached");
        opened.teardown();
        EXPECT_TRUE(isTemporaryEmpty());
    }
    EXPECT_EQ(test::snapshotOf(home.path()), before);
}

TEST_F(BackupSources, reachOneFileThroughBothFormsOfItsPath) {
    write(encrypted("encrypted"));
    const PreparedSource opened = provider().prepare(source("encrypted"), password, {});
    const auto file = opened.store->locateAttachment("~/Library/SMS/Attachments/a.txt");
    ASSERT_TRUE(file);
    EXPECT_EQ(opened.store->locateAttachment("/var/mobile/Library/SMS/Attachments/a.txt"), file);
    opened.store->releaseAttachment(*file);
    EXPECT_FALSE(std::filesystem::exists(*file));
    opened.teardown();
}

TEST_F(BackupSources, areSurveyedWithoutADecryption) {
    write(encrypted("encrypted"));
    const PreparedSource opened = provider().prepare(source("encrypted"), password, {});
    EXPECT_EQ(opened.store->surveyAttachmentStorage(SourceID{"1"}, {}), (AttachmentStorageSurvey{2, 0}));
    EXPECT_THAT(opened.store->missingAttachments(SourceID{"1"}, {}), testing::IsEmpty());
    for (const auto& entry : std::filesystem::recursive_directory_iterator(temporary.path()))
        EXPECT_NE(entry.path().filename(), "files");
    opened.teardown();
}

TEST_F(BackupSources, answerNobodyOnceTheyAreClosed) {
    write(encrypted("encrypted"));
    const PreparedSource opened = provider().prepare(source("encrypted"), password, {});
    opened.teardown();
    EXPECT_EQ(opened.store->locateAttachment("~/Library/SMS/Attachments/a.txt"), std::nullopt);
}

TEST_F(BackupSources, takeOneDecryptedAttachmentAtATimeDuringAnExport) {
    const test::TemporaryFolder messages;
    test::MessagesDatabase database(messages / "chat.db");
    const auto message = database.addMessage(database.addChat("chat", "Lake house", "chat1"), {.guid = "m"});
    sample::BackupWriter writer(encrypted("many"));
    for (int number = 0; number < 20; ++number) {
        const std::string path = "Library/SMS/Attachments/" + std::to_string(number);
        database.addAttachment(message, {.guid = path, .filename = "~/" + path});
        writer.addBytes("MediaDomain", path, std::string(100'000, 'x'));
    }
    writer.addFile("HomeDomain", "Library/SMS/sms.db", messages / "chat.db");
    writer.finish();
    const PreparedSource opened = provider().prepare(source("many"), password, {});
    const test::TemporaryFolder albums;
    std::size_t mostAtOnce = 0;
    const auto watch = [&](const auto&) {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(temporary.path()))
            count += entry.is_regular_file() && entry.path().parent_path().filename() == "files" ? 1U : 0U;
        mostAtOnce = std::max(mostAtOnce, count);
    };
    const auto album = opened.exporter->exportConversation(SourceID{"1"}, albums.path(), {}, watch, {});
    EXPECT_EQ(album.attachmentCount, 20);
    EXPECT_LE(mostAtOnce, 1U);
    opened.teardown();
}

TEST_F(BackupSources, leaveOutAnAttachmentThatCannotBeDecryptedAndGoOn) {
    const test::TemporaryFolder messages;
    test::MessagesDatabase database(messages / "chat.db");
    const auto message = database.addMessage(database.addChat("chat", "Lake house", "chat1"), {.guid = "m"});
    sample::BackupWriter writer(encrypted("damaged"));
    const auto attach = [&](const std::string& name, const sample::BackupFileOptions& options) {
        database.addAttachment(message, {.guid = name, .filename = "~/" + name, .transferName = name});
        writer.addBytes("MediaDomain", name, "attached", options);
    };
    attach("tooLong.txt", {.claimedSize = 1'000});
    attach("keyless.txt", {.hasKey = false});
    attach("sound.txt", {});
    writer.addFile("HomeDomain", "Library/SMS/sms.db", messages / "chat.db");
    writer.finish();
    const PreparedSource opened = provider().prepare(source("damaged"), password, {});
    const test::TemporaryFolder albums;
    const auto album =
        opened.exporter->exportConversation(SourceID{"1"}, albums.path(), {}, [](const auto&) {}, {});
    EXPECT_EQ(album.attachmentRecordCount, 3);
    EXPECT_EQ(album.attachmentCount, 1);
    EXPECT_EQ(test::readFile(album.archiveURL / "attachments/sound.txt"), "attached");
    opened.teardown();
}

TEST_F(BackupSources, failWithTheWordsOfTheOpeningAndLeaveNothing) {
    write(encrypted("encrypted"));
    EXPECT_THROW(provider().prepare(source("encrypted"), "another", {}), BackupError);
    EXPECT_THROW(provider().prepare(source("encrypted"), std::nullopt, {}), BackupError);
    EXPECT_TRUE(isTemporaryEmpty());
}

TEST_F(BackupSources, endTheOpenedBackupWhereNoRepositoryCanBeMade) {
    write(encrypted("encrypted"));
    SourcePlaces places = SourcePlaces::of(UserFolders::below(home.path()));
    places.temporaryDirectory = temporary.path();
    MessageSourceProvider failing(places, []() -> std::shared_ptr<ContactResolving> {
        throw BackupError(BackupError::Reason::manifestUnreadable);
    });
    EXPECT_THROW(failing.prepare(source("encrypted"), password, {}), BackupError);
    EXPECT_TRUE(isTemporaryEmpty());
}

TEST_F(BackupSources, stopOpeningWhenTheyAreCancelled) {
    write(encrypted("encrypted"));
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(provider().prepare(source("encrypted"), password, stop.get_token()), CancellationError);
    EXPECT_TRUE(isTemporaryEmpty());
}

} // namespace
} // namespace quillbook
