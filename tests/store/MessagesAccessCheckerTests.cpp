#include "store/MessagesAccessChecker.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/MessagesDatabase.h"
#include "tests/support/TemporaryFolder.h"

#include <stdexcept>

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

TEST(MessagesAccess, isDeniedForAFolderThatMayNotBeListed) {
    const TemporaryFolder home;
    const test::MessagesDatabase database(home / "Library/Messages/chat.db");
    std::filesystem::permissions(home.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(home / "Library/Messages", std::filesystem::perms(0));
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  if (!test::becomeOrdinaryUser()) return "could not change the user";
                  return kindBelow(home) == Kind::denied ? "" : "not denied";
              }),
              "");
    std::filesystem::permissions(home / "Library/Messages", std::filesystem::perms(0755));
}

TEST(MessagesAccess, failsInTheWordsOfAnErrorThatIsNotSQLites) {
    MessagesAccessChecker checker({"/nowhere"}, {},
                                  [](const auto&) { throw std::runtime_error("No room left."); });
    EXPECT_EQ(checker.checkAccess({}), MessagesAccessStatus::failed("No room left."));
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
