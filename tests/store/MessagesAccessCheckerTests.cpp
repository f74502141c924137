#include "store/MessagesAccessChecker.h"
#include "tests/support/MessagesDatabase.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

using Kind = MessagesAccessStatus::Kind;
using test::TemporaryFolder;

Kind kindBelow(const TemporaryFolder& home) {
    return MessagesAccessChecker(MessagesPaths::below(home.path())).checkAccess({}).kind;
}

TEST(MessagesAccess, isGrantedForADatabaseThatAnswers) {
    const TemporaryFolder home;
    const test::MessagesDatabase database(home / "Library/Messages/chat.db");
    EXPECT_EQ(kindBelow(home), Kind::granted);
}

TEST(MessagesAccess, isDeniedWithoutAMessagesFolder) {
    EXPECT_EQ(kindBelow(TemporaryFolder()), Kind::denied);
}

TEST(MessagesAccess, isMissingForAFolderWithoutADatabase) {
    const TemporaryFolder home;
    home.write("Library/Messages/chat.db-wal", "");
    EXPECT_EQ(kindBelow(home), Kind::databaseMissing);
}

TEST(MessagesAccess, isDeniedForADatabaseThatWillNotOpen) {
    const TemporaryFolder home;
    std::filesystem::create_directories(home / "Library/Messages/chat.db");
    EXPECT_EQ(kindBelow(home), Kind::denied);
}

TEST(MessagesAccess, isDeniedForADatabaseThatOnlySeemsAbsent) {
    const TemporaryFolder home;
    std::filesystem::create_directories(home / "Library/Messages");
    std::filesystem::create_symlink("/nowhere/chat.db", home / "Library/Messages/chat.db");
    EXPECT_EQ(kindBelow(home), Kind::denied);
}

TEST(MessagesAccess, leavesTheFolderAsItWas) {
    const TemporaryFolder home;
    std::filesystem::create_directories(home / "Library/Messages");
    kindBelow(home);
    EXPECT_TRUE(std::filesystem::is_empty(home / "Library/Messages"));
}

TEST(PrivacySettings, areOpenedByTheirURL) {
    std::string opened;
    MessagesAccessChecker checker({"/nowhere"}, [&](const std::string& url) { opened = url; });
    checker.openPrivacySettings();
    EXPECT_EQ(opened, "x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles");
}

TEST(PrivacySettings, areNotOpenedWhereNothingOpensURLs) {
    EXPECT_NO_THROW(MessagesAccessChecker({"/nowhere"}).openPrivacySettings());
}

} // namespace
} // namespace quillbook
