#include "core/model/PreferenceKeys.h"
#include "shell/application/UserPreferences.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <array>

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace quillbook::test {
namespace {

namespace fs = std::filesystem;
namespace keys = preferenceKeys;
using testing::HasSubstr;
using testing::Not;

constexpr std::array allKeys = {keys::includeJSON, keys::includeMarkdown, keys::includeCSV,
                                keys::onboardingCompleted};

class UserPreferencesTest : public testing::Test {
protected:
    UserPreferences preferences() const { return UserPreferences(file); }

    TemporaryFolder folder;
    fs::path file = folder / "Quillbook/Quillbook.conf";
};

TEST_F(UserPreferencesTest, holdNothingAtFirst) {
    for (const auto key : allKeys)
        EXPECT_EQ(preferences().truth(key), std::nullopt);
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(UserPreferencesTest, keepEachKey) {
    for (const auto key : allKeys) {
        for (const bool value : {true, false}) {
            preferences().setTruth(key, value);
            EXPECT_EQ(preferences().truth(key), value) << key;
        }
    }
}

TEST_F(UserPreferencesTest, keepTheOtherKeysWithOne) {
    preferences().setTruth(keys::includeCSV, true);
    preferences().setTruth(keys::includeJSON, false);
    EXPECT_EQ(preferences().truth(keys::includeCSV), true);
    EXPECT_EQ(preferences().truth(keys::includeJSON), false);
    EXPECT_EQ(preferences().truth(keys::includeMarkdown), std::nullopt);
}

TEST_F(UserPreferencesTest, standInTheFileAtOnce) {
    UserPreferences open = preferences();
    open.setTruth(keys::includeCSV, true);
    EXPECT_THAT(readFile(file), HasSubstr("export.includeCSV=true"));
    open.setTruth(keys::includeCSV, false);
    EXPECT_THAT(readFile(file), HasSubstr("export.includeCSV=false"));
}

TEST_F(UserPreferencesTest, fileIsTheOwnersAlone) {
    preferences().setTruth(keys::includeCSV, true);
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(UserPreferencesTest, leaveNothingBesideTheFile) {
    preferences().setTruth(keys::includeCSV, true);
    EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), fs::directory_iterator()), 1);
}

TEST_F(UserPreferencesTest, standInTheFileAsTheyAlwaysDid) {
    UserPreferences open = preferences();
    open.setTruth(keys::onboardingCompleted, true);
    open.setTruth(keys::includeJSON, false);
    EXPECT_EQ(readFile(file), "[General]\nexport.includeJSON=false\nonboarding.completed=true\n");
}

TEST_F(UserPreferencesTest, lieUnderNamesOfAnyBytes) {
    file = folder / "\xFF\xE9/Quillbook/Quillbook.conf";
    preferences().setTruth(keys::includeCSV, true);
    EXPECT_EQ(preferences().truth(keys::includeCSV), true);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 1);
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(UserPreferencesTest, makeTheirFoldersForTheOwnerAlone) {
    file = folder / "config/Quillbook/Quillbook.conf";
    preferences().setTruth(keys::includeCSV, true);
    EXPECT_EQ(fs::status(folder / "config").permissions(), fs::perms::owner_all);
    EXPECT_EQ(fs::status(folder / "config/Quillbook").permissions(), fs::perms::owner_all);
}

TEST_F(UserPreferencesTest, areNotWrittenWhereNothingChanges) {
    const std::string before = "[General]\nexport.includeCSV=true\nother=1\n";
    folder.write("Quillbook/Quillbook.conf", before);
    preferences().setTruth(keys::includeCSV, true);
    EXPECT_EQ(readFile(file), before);
}

TEST_F(UserPreferencesTest, areWrittenAgainWhereTheyCouldNotBe) {
    folder.write("Quillbook", "in the way");
    UserPreferences open = preferences();
    open.setTruth(keys::includeCSV, true);
    fs::remove(folder / "Quillbook");
    open.setTruth(keys::includeCSV, true);
    EXPECT_EQ(preferences().truth(keys::includeCSV), true);
}

TEST_F(UserPreferencesTest, behindALinkLeaveTheLink) {
    const auto target = folder.write("elsewhere.conf", "[General]\nexport.includeCSV=true\n");
    fs::create_directories(file.parent_path());
    fs::create_symlink(target, file);
    preferences().setTruth(keys::includeCSV, false);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_THAT(readFile(target), HasSubstr("export.includeCSV=false"));
}

TEST_F(UserPreferencesTest, ofOtherSectionsAreNotOurs) {
    folder.write("Quillbook/Quillbook.conf",
                 "[Window]\nexport.includeCSV=true\n[General]\r\n export.includeJSON = true \r");
    EXPECT_EQ(preferences().truth(keys::includeCSV), std::nullopt);
    EXPECT_EQ(preferences().truth(keys::includeJSON), true);
}

TEST_F(UserPreferencesTest, dropForeignKeysAtTheNextWriting) {
    folder.write("Quillbook/Quillbook.conf",
                 "[General]\nexport.includeCSV=true\npassword=secret\n[Window]\nwidth=5\n");
    preferences().setTruth(keys::includeJSON, true);
    EXPECT_THAT(readFile(file), Not(HasSubstr("secret")));
    EXPECT_THAT(readFile(file), Not(HasSubstr("Window")));
    EXPECT_EQ(preferences().truth(keys::includeCSV), true);
}

#ifndef NDEBUG
TEST_F(UserPreferencesTest, otherKeysAreOurOwnMistake) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_DEATH(preferences().setTruth("backup.password", true), "isKnown");
}
#endif

struct ValueCase {
    const char* name;
    const char* value;
    std::optional<bool> truth;
};

class StoredValue : public UserPreferencesTest, public testing::WithParamInterface<ValueCase> {};

TEST_P(StoredValue, countsOnlyAsABool) {
    folder.write("Quillbook/Quillbook.conf",
                 std::string("[General]\nexport.includeCSV=") + GetParam().value + "\n");
    EXPECT_EQ(preferences().truth(keys::includeCSV), GetParam().truth);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StoredValue,
    testing::Values(ValueCase{"true", "true", true}, ValueCase{"false", "false", false},
                    ValueCase{"one", "1", std::nullopt}, ValueCase{"zero", "0", std::nullopt},
                    ValueCase{"yes", "yes", std::nullopt}, ValueCase{"capitals", "True", std::nullopt},
                    ValueCase{"number", "0.5", std::nullopt}, ValueCase{"list", "true, false", std::nullopt},
                    ValueCase{"empty", "", std::nullopt},
                    ValueCase{"bytes", "@ByteArray(true)", std::nullopt},
                    ValueCase{"invalid", "@Invalid()", std::nullopt},
                    ValueCase{"text", "\"true or false\"", std::nullopt},
                    ValueCase{"brokenVariant", "@Variant(\\0\\0\\0\\x7f\\xff)", std::nullopt}),
    [](const auto& test) { return std::string(test.param.name); });

struct DamageCase {
    const char* name;
    std::string contents;
};

class DamagedFile : public UserPreferencesTest, public testing::WithParamInterface<DamageCase> {};

TEST_P(DamagedFile, countsAsNoneAndIsReplaced) {
    folder.write("Quillbook/Quillbook.conf", GetParam().contents);
    EXPECT_EQ(preferences().truth(keys::includeCSV), std::nullopt);
    preferences().setTruth(keys::includeJSON, false);
    EXPECT_EQ(preferences().truth(keys::includeJSON), false);
    EXPECT_LT(fs::file_size(file), 1'000U);
}

INSTANTIATE_TEST_SUITE_P(Table, DamagedFile,
                         testing::Values(DamageCase{"empty", ""},
                                         DamageCase{"binary", std::string("\x00\xFF\xFE\x01[\n]=", 8)},
                                         DamageCase{"noSettings", "[General\nno equals sign here\n"},
                                         DamageCase{"zeros", std::string(4'096, '\0')},
                                         DamageCase{"endless", "[General]\nexport.includeCSV=true\nx=" +
                                                                   std::string(1'000'000, 'x')}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(UserPreferencesTest, folderInThePlaceOfTheFileLeavesThemInMemory) {
    fs::create_directories(file);
    UserPreferences open = preferences();
    open.setTruth(keys::includeCSV, true);
    EXPECT_EQ(open.truth(keys::includeCSV), true);
    EXPECT_TRUE(fs::is_directory(file));
}

TEST_F(UserPreferencesTest, pipeInThePlaceOfTheFileKeepsNobodyWaiting) {
    fs::create_directories(file.parent_path());
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    UserPreferences open = preferences();
    open.setTruth(keys::includeCSV, true);
    EXPECT_EQ(open.truth(keys::includeCSV), true);
}

TEST_F(UserPreferencesTest, folderThatCannotBeMadeLeavesThemInMemory) {
    UserPreferences open(folder.write("file", "text") / "Quillbook/Quillbook.conf");
    open.setTruth(keys::includeCSV, true);
    EXPECT_EQ(open.truth(keys::includeCSV), true);
}

TEST_F(UserPreferencesTest, readOnlyFolderLeavesThemInMemory) {
    folder.write("Quillbook/Quillbook.conf", "[General]\nexport.includeCSV=true\n");
    fs::permissions(file, fs::perms(0444));
    fs::permissions(file.parent_path(), fs::perms(0555));
    fs::permissions(folder.path(), fs::perms(0755));
    EXPECT_EQ(runInChild([this]() -> std::string {
                  if (!becomeOrdinaryUser()) return "still another user";
                  UserPreferences open = preferences();
                  if (open.truth(keys::includeCSV) != true) return "not read";
                  open.setTruth(keys::includeCSV, false);
                  if (open.truth(keys::includeCSV) != false) return "not in memory";
                  return readFile(file) == "[General]\nexport.includeCSV=true\n" ? "" : "written";
              }),
              "");
    fs::permissions(file.parent_path(), fs::perms(0755));
}

TEST_F(UserPreferencesTest, unreadableFileCountsAsNone) {
    folder.write("Quillbook/Quillbook.conf", "[General]\nexport.includeCSV=true\n");
    fs::permissions(file, fs::perms(0));
    fs::permissions(file.parent_path(), fs::perms(0555));
    fs::permissions(folder.path(), fs::perms(0755));
    EXPECT_EQ(runInChild([this]() -> std::string {
                  if (!becomeOrdinaryUser()) return "still another user";
                  UserPreferences open = preferences();
                  if (open.truth(keys::includeCSV)) return "read";
                  open.setTruth(keys::includeJSON, true);
                  return open.truth(keys::includeJSON) == true ? "" : "not in memory";
              }),
              "");
    fs::permissions(file.parent_path(), fs::perms(0755));
}

TEST(PreferencesFile, liesInTheConfigurationFolder) {
    EXPECT_EQ(preferencesFile("/config", "/home/ada"), "/config/Quillbook/Quillbook.conf");
    EXPECT_EQ(preferencesFile(std::nullopt, "/home/ada"), "/home/ada/.config/Quillbook/Quillbook.conf");
    EXPECT_EQ(preferencesFile("", "/home/ada"), "/home/ada/.config/Quillbook/Quillbook.conf");
    EXPECT_EQ(preferencesFile("relative", "/home/ada"), "/home/ada/.config/Quillbook/Quillbook.conf");
}

} // namespace
} // namespace quillbook::test
