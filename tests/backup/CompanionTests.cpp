#include "backup/PreparedBackup.h"
#include "tests/backup/BackupFixture.h"

#include <fstream>

#include <sqlite3.h>
#include <sys/stat.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using sample::BackupWriter;
using test::BackupKind;
using test::EitherBackup;
using test::knownPlaintext;
using test::messageTexts;
using testing::ElementsAre;

bool hasCompanions(const fs::path& database) {
    return fs::exists(fs::symlink_status(database.native() + "-wal")) ||
           fs::exists(fs::symlink_status(database.native() + "-shm"));
}

/// What may stand where a companion is stored without being one.
struct PlaceCase {
    const char* name;
    std::function<void(const fs::path& stored)> apply;
};

class OddCompanion : public test::BackupFixture,
                     public testing::WithParamInterface<std::tuple<BackupKind, PlaceCase>> {
protected:
    BackupKind kind() const { return std::get<0>(GetParam()); }
    void writeWithOdd(const char* companion) {
        write(kind());
        fs::remove(stored(companion));
        std::get<1>(GetParam()).apply(stored(companion));
    }
};

TEST_P(OddCompanion, asTheLogCostsTheRowsOfTheLogAlone) {
    writeWithOdd("sms.db-wal");
    const auto opened = open(kind());
    EXPECT_THAT(messageTexts(opened->messageDatabaseURL()), ElementsAre(knownPlaintext));
    EXPECT_FALSE(hasCompanions(opened->messageDatabaseURL()));
}

TEST_P(OddCompanion, asTheIndexOfTheLogCostsNothing) {
    writeWithOdd("sms.db-shm");
    const auto opened = open(kind());
    EXPECT_THAT(messageTexts(opened->messageDatabaseURL()), ElementsAre(knownPlaintext, "in the log"));
    EXPECT_FALSE(hasCompanions(opened->messageDatabaseURL()));
}

TEST_P(OddCompanion, isNeitherReadThroughNorChanged) {
    writeWithOdd("sms.db-wal");
    folder.write("outside", "a file of somebody");
    const auto before = test::snapshotOf(folder.path());
    open(kind());
    EXPECT_EQ(test::snapshotOf(folder.path()), before);
}

INSTANTIATE_TEST_SUITE_P(
    Table, OddCompanion,
    testing::Combine(
        testing::Values(BackupKind::plain, BackupKind::encrypted),
        testing::Values(
            PlaceCase{"nothing", [](const fs::path&) {}},
            PlaceCase{"folder", [](const fs::path& stored) { fs::create_directory(stored); }},
            PlaceCase{"pipe", [](const fs::path& stored) { ASSERT_EQ(::mkfifo(stored.c_str(), 0600), 0); }},
            PlaceCase{"linkOutOfTheBackup",
                      [](const fs::path& stored) {
                          fs::create_symlink(stored.parent_path().parent_path().parent_path() / "outside",
                                             stored);
                      }},
            PlaceCase{"linkToNothing", [](const fs::path& stored) { fs::create_symlink("gone", stored); }},
            PlaceCase{"linkToADevice",
                      [](const fs::path& stored) { fs::create_symlink("/dev/zero", stored); }},
            PlaceCase{"fewBytes", [](const fs::path& stored) { std::ofstream(stored) << "no companion"; }})),
    test::nameOfCase<OddCompanion>);

/// The header of a log as SQLite's file format, section 4.1, has it, of a format version that is none.
std::string logOfAnotherVersion() {
    const std::vector<std::uint32_t> words = {0x377F0682, 3'007'001, 4'096, 0, 1, 2};
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    std::string bytes;
    const auto append = [&bytes](std::uint32_t word) {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes.push_back(static_cast<char>(word >> static_cast<unsigned int>(shift)));
    };
    // This magic number says that the checksum takes the words as little-endian.
    const auto littleEndian = [](std::uint32_t word) {
        return (word >> 24U) | ((word >> 8U) & 0xFF00U) | ((word << 8U) & 0xFF0000U) | (word << 24U);
    };
    for (std::size_t index = 0; index < words.size(); index += 2) {
        first += littleEndian(words[index]) + second;
        second += littleEndian(words[index + 1]) + first;
    }
    for (const std::uint32_t word : words)
        append(word);
    append(first);
    append(second);
    return bytes + std::string(8'192, '\0');
}

TEST_P(EitherBackup, withALogOfAnUnknownVersionStillOpens) {
    write(kind(), [](BackupWriter& writer) {
        const test::TemporaryFolder messages;
        sqlite3* handle = nullptr;
        sqlite3_open((messages / "sms.db").c_str(), &handle);
        sqlite3_exec(handle, "CREATE TABLE message (text); INSERT INTO message VALUES ('hello')", nullptr,
                     nullptr, nullptr);
        sqlite3_close(handle);
        writer.addFile("HomeDomain", "Library/SMS/sms.db", messages / "sms.db");
        writer.addBytes("HomeDomain", "Library/SMS/sms.db-wal", logOfAnotherVersion());
    });
    const auto opened = open(kind());
    EXPECT_FALSE(hasCompanions(opened->messageDatabaseURL()));
    EXPECT_THAT(messageTexts(opened->messageDatabaseURL()), ElementsAre("hello"));
}

class PlainIndex : public test::BackupFixture {};

TEST_F(PlainIndex, withALinkForItsLogReadsNothingThroughIt) {
    write(BackupKind::plain);
    fs::create_symlink(folder.write("outside", std::string(4'096, 'x')), backup / "Manifest.db-wal");
    const auto before = test::snapshotOf(folder.path());
    const auto opened = open(BackupKind::plain);
    EXPECT_EQ(messageTexts(opened->messageDatabaseURL()).size(), 2U);
    opened->teardown();
    EXPECT_EQ(test::snapshotOf(folder.path()), before);
}

/// The times of a folder tell of a file that came and went.
std::map<std::string, fs::file_time_type> timesOfFolders(const fs::path& folder) {
    std::map<std::string, fs::file_time_type> times = {{"", fs::last_write_time(folder)}};
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_directory()) times[entry.path().string()] = entry.last_write_time();
    }
    return times;
}

TEST_P(EitherBackup, neverHasAFileOfItsReaderBesideItsOwn) {
    write(kind());
    const auto before = timesOfFolders(backup);
    {
        const auto opened = open(kind());
        opened->fileURL("MediaDomain", "Library/SMS/Attachments/00/a.txt");
    }
    EXPECT_EQ(timesOfFolders(backup), before);
}

TEST_F(PlainIndex, inRollbackModeNeverHasAFileOfItsReaderBesideItsOwn) {
    auto older = description(BackupKind::plain);
    older.manifestJournal = sample::ManifestJournal::rollback;
    BackupWriter writer(older);
    addMessages(writer);
    writer.finish();
    const auto before = timesOfFolders(backup);
    open(BackupKind::plain)->fileURL("MediaDomain", "Library/SMS/Attachments/00/a.txt");
    EXPECT_EQ(timesOfFolders(backup), before);
}

} // namespace
} // namespace quillbook
