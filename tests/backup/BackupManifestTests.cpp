#include "backup/BackupManifest.h"
#include "backup/BinaryPlist.h"
#include "backup/FileRecord.h"
#include "tests/support/TemporaryFolder.h"

#include <limits>
#include <memory>
#include <stdexcept>

#include <gmock/gmock.h>
#include <sqlite3.h>

namespace quillbook {
namespace {

using test::TemporaryFolder;

const std::string fileID = "3d0d7e5fb2ce288813306e4d4636395e047a3d28";
const std::string path = "Library/SMS/sms.db";

/// A backup folder with an index of the rows that SQL puts in.
class ManifestFolder {
public:
    explicit ManifestFolder(const std::string& statements) {
        sqlite3* handle = nullptr;
        const std::string file = database().string();
        if (sqlite3_open(file.c_str(), &handle) != SQLITE_OK) throw std::runtime_error("no database");
        const std::unique_ptr<sqlite3, int (*)(sqlite3*)> owner(handle, sqlite3_close);
        if (sqlite3_exec(handle, statements.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
            throw std::runtime_error(sqlite3_errmsg(handle));
    }

    std::filesystem::path database() const { return folder_ / "Manifest.db"; }
    const std::filesystem::path& path() const { return folder_.path(); }
    BackupManifest manifest() const { return {std::make_shared<SQLiteDatabase>(database()), folder_.path()}; }

private:
    TemporaryFolder folder_;
};

/// Columns without types keep every value as it is given.
const std::string table = "CREATE TABLE Files (fileID, domain, relativePath, flags, file);";

std::string row(const std::string& idValue, const std::string& flags = "1",
                const std::string& file = "x'0102'") {
    return "INSERT INTO Files VALUES (" + idValue + ", 'HomeDomain', '" + path + "', " + flags + ", " + file +
           ");";
}

std::string quoted(const std::string& text) {
    return "'" + text + "'";
}

std::optional<ManifestEntry> entryOf(const std::string& rows, const std::string& domain = "HomeDomain",
                                     const std::string& relativePath = path) {
    return ManifestFolder(table + rows).manifest().entry(domain, relativePath);
}

TEST(BackupManifest, FindsAFileByItsDomainAndPath) {
    EXPECT_EQ(entryOf(row(quoted(fileID))), (ManifestEntry{fileID, "HomeDomain", path, 1, Data{0x01, 0x02}}));
}

struct PlaceCase {
    const char* name;
    std::string domain;
    std::string relativePath;
};

class FileThatIsNotListed : public testing::TestWithParam<PlaceCase> {};

TEST_P(FileThatIsNotListed, IsNotFound) {
    EXPECT_EQ(entryOf(row(quoted(fileID)), GetParam().domain, GetParam().relativePath), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Table, FileThatIsNotListed,
                         testing::Values(PlaceCase{"otherDomain", "MediaDomain", path},
                                         PlaceCase{"domainOfOtherCase", "homedomain", path},
                                         PlaceCase{"otherPath", "HomeDomain", path + "-wal"},
                                         PlaceCase{"pathOfOtherCase", "HomeDomain", "Library/SMS/SMS.db"},
                                         PlaceCase{"pattern", "HomeDomain", "Library/SMS/%"},
                                         PlaceCase{"wordsOfSQL", "HomeDomain", "' OR '1' = '1"},
                                         PlaceCase{"emptyPath", "HomeDomain", ""}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(BackupManifest, FindsTheOneOfTwoFilesThatDiffersInCase) {
    const std::string other = std::string(40, 'a');
    const std::string rows = "INSERT INTO Files VALUES (" + quoted(other) +
                             ", 'HomeDomain', 'library/sms/SMS.DB', 1, x'');" + row(quoted(fileID));
    EXPECT_EQ(entryOf(rows)->fileID, fileID);
}

class FileIDThatIsNoText : public testing::TestWithParam<const char*> {};

TEST_P(FileIDThatIsNoText, CountsAsNotFound) {
    EXPECT_EQ(entryOf(row(GetParam())), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Table, FileIDThatIsNoText,
                         testing::Values("NULL", "7", "0.5", "x'3d0d7e5fb2ce288813306e4d4636395e047a3d28'"));

struct FileIDCase {
    const char* name;
    std::string text;
    bool isMalformed;
};

class FileID : public testing::TestWithParam<FileIDCase> {};

TEST_P(FileID, HasFortyHexadecimalDigits) {
    try {
        EXPECT_EQ(entryOf(row(quoted(GetParam().text)))->fileID, GetParam().text);
        EXPECT_FALSE(GetParam().isMalformed);
    } catch (const ManifestError& error) {
        EXPECT_TRUE(GetParam().isMalformed);
        EXPECT_EQ(error.malformedFileID, GetParam().text);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, FileID,
    testing::Values(FileIDCase{"lowerCase", "0123456789abcdef0123456789abcdef01234567", false},
                    FileIDCase{"upperCase", "0123456789ABCDEF0123456789ABCDEF01234567", false},
                    FileIDCase{"bothCases", "0123456789abcdefABCDEF0123456789abcdefAB", false},
                    FileIDCase{"thirtyNineDigits", std::string(39, 'a'), true},
                    FileIDCase{"fortyOneDigits", std::string(41, 'a'), true}, FileIDCase{"nothing", "", true},
                    FileIDCase{"aSeparator", "ab/" + std::string(37, 'a'), true},
                    FileIDCase{"theParentFolder", "../" + std::string(37, 'a'), true},
                    FileIDCase{"dotsAtTheEnd", std::string(38, 'a') + "..", true},
                    FileIDCase{"anAbsolutePath", "/etc/" + std::string(35, 'a'), true},
                    FileIDCase{"aLetterBehindF", std::string(39, 'a') + "g", true},
                    FileIDCase{"theCharacterBehind9", std::string(39, 'a') + ":", true},
                    FileIDCase{"theCharacterBefore0", std::string(39, 'a') + "/", true},
                    FileIDCase{"theCharacterBeforeA", std::string(39, 'a') + "@", true},
                    FileIDCase{"theCharacterBeforeSmallA", std::string(39, 'a') + "`", true},
                    FileIDCase{"aBlank", std::string(39, 'a') + " ", true},
                    FileIDCase{"fortyBytesWithALetterOfTwo", std::string(38, 'a') + "\xC3\xA4", true},
                    FileIDCase{"fortyLettersOfTwoBytes",
                               [] {
                                   std::string text;
                                   for (int count = 0; count < 40; ++count)
                                       text += "\xC3\xA4";
                                   return text;
                               }(),
                               true}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(ManifestError, DoesNotNameTheValue) {
    EXPECT_EQ(ManifestError("../../etc/passwd").description(),
              "This backup's file index is malformed, so Quillbook stopped rather than read from it.");
}

struct FlagsCase {
    const char* name;
    const char* sql;
    std::int64_t flags;
};

class ManifestFlags : public testing::TestWithParam<FlagsCase> {};

TEST_P(ManifestFlags, AreAnIntegerOrZero) {
    EXPECT_EQ(entryOf(row(quoted(fileID), GetParam().sql))->flags, GetParam().flags);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ManifestFlags,
    testing::Values(FlagsCase{"integer", "4", 4}, FlagsCase{"belowZero", "-4", -4},
                    FlagsCase{"lowest", "-9223372036854775807 - 1", std::numeric_limits<std::int64_t>::min()},
                    FlagsCase{"realAboveZero", "2.9", 2}, FlagsCase{"realBelowZero", "-2.9", -2},
                    FlagsCase{"realBeyondTheRange", "9.3e18", 0},
                    FlagsCase{"realOfTwoToTheSixtyThird", "9223372036854775808.0", 0},
                    FlagsCase{"realBelowTheRange", "-9.3e18", 0}, FlagsCase{"infinity", "9e999", 0},
                    FlagsCase{"infinityBelowZero", "-9e999", 0}, FlagsCase{"text", "'4'", 0},
                    FlagsCase{"blob", "x'04'", 0}, FlagsCase{"null", "NULL", 0}),
    [](const auto& test) { return std::string(test.param.name); });

class FileColumnThatIsNoBlob : public testing::TestWithParam<const char*> {};

TEST_P(FileColumnThatIsNoBlob, IsAnEmptyBlobThatTheReaderRefuses) {
    const auto entry = entryOf(row(quoted(fileID), "1", GetParam()));
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->fileBlob, Data());
    try {
        fileRecord(entry->fileBlob);
        FAIL() << "an empty record was read";
    } catch (const BinaryPlistError& error) {
        EXPECT_EQ(error.reason, BinaryPlistError::Reason::notBinaryPlist);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, FileColumnThatIsNoBlob,
                         testing::Values("NULL", "'bplist00'", "7", "0.5", "x''"));

/// A collation or an affinity can make a row match whose columns are not the texts that were asked for.
TEST(BackupManifest, TakesTheTextsOfTheRowAsTheyStandThere) {
    const ManifestFolder folder("CREATE TABLE Files (fileID, domain TEXT COLLATE NOCASE, relativePath TEXT "
                                "COLLATE NOCASE, flags, file);" +
                                row(quoted(fileID)));
    const auto entry = folder.manifest().entry("homedomain", "LIBRARY/sms/sms.db");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->domain, "HomeDomain");
    EXPECT_EQ(entry->relativePath, path);
}

TEST(BackupManifest, TakesTheArgumentsForColumnsThatAreNoText) {
    // A number in a column of numeric affinity equals the text of its digits.
    const ManifestFolder folder("CREATE TABLE Files (fileID, domain NUMERIC, relativePath NUMERIC, flags, "
                                "file); INSERT INTO Files VALUES (" +
                                quoted(fileID) + ", 12, 34, 1, x'');");
    const auto entry = folder.manifest().entry("012", "034");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->domain, "012");
    EXPECT_EQ(entry->relativePath, "034");
}

TEST(BackupManifest, NeedsNothingBeyondTheFiveColumns) {
    const ManifestFolder folder("CREATE TABLE Files (file, other, flags, relativePath, domain, fileID);"
                                "INSERT INTO Files VALUES (x'05', 'z', 2, 'a', 'b', " +
                                quoted(fileID) + ");");
    EXPECT_EQ(folder.manifest().entry("b", "a"), (ManifestEntry{fileID, "b", "a", 2, Data{0x05}}));
}

TEST(BackupManifest, PassesOnTheErrorOfADatabaseWithoutTheTable) {
    EXPECT_THROW(ManifestFolder("CREATE TABLE Other (fileID);").manifest().entry("a", "b"), SQLiteError);
}

TEST(BackupManifest, KnowsWhereAStoredFileLies) {
    const BackupManifest manifest = ManifestFolder(table).manifest();
    const ManifestEntry entry = {.fileID = fileID};
    EXPECT_EQ(manifest.storedFile(entry), manifest.backupURL() / "3d" / fileID);
}

TEST(BackupManifest, KeepsTheCaseOfAFileIDInItsPath) {
    const std::string upper = "AB" + std::string(38, 'C');
    const ManifestFolder folder(table + row(quoted(upper)));
    const BackupManifest manifest = folder.manifest();
    EXPECT_EQ(manifest.storedFile(*manifest.entry("HomeDomain", path)), folder.path() / "AB" / upper);
}

TEST(BackupManifest, LeavesTheIndexAsItIs) {
    const ManifestFolder folder(table + row(quoted(fileID)));
    const std::string before = test::readFile(folder.database());
    folder.manifest().entry("HomeDomain", path);
    EXPECT_EQ(test::readFile(folder.database()), before);
}

} // namespace
} // namespace quillbook
