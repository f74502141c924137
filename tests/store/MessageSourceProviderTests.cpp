#include "store/MessagesRepository.h"
#include "store/sources/MessageSourceProvider.h"
#include "store/sources/SourceError.h"
#include "tests/store/RepositoryFakes.h"

namespace quillbook {
namespace {

class MessageSourceProviderTest : public testing::Test {
protected:
    MessageSourceProvider provider() {
        return {MessagesPaths::below(home.path()), home.path(), [this] {
                    ++resolverCount;
                    return std::make_shared<test::KnownContacts>();
                }};
    }
    MessageSource localMac() { return provider().availableSources({}).front(); }

    test::TemporaryFolder home;
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

TEST_F(MessageSourceProviderTest, refusesADeviceThatHasNoBackup) {
    const MessageSource device{"connected-device", "A phone", std::nullopt, ConnectedDeviceWithoutBackup(),
                               false};
    EXPECT_THROW(provider().prepare(device, std::nullopt, {}), SourceError);
}

} // namespace
} // namespace quillbook
