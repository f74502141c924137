#include "backup/BackupError.h"
#include "backup/FileDecryption.h"
#include "core/records/Cancellation.h"
#include "tests/backup/BackupFixture.h"

#include <fstream>
#include <thread>

#include <sys/stat.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using sample::BackupWriter;
using test::BackupFixture;
using test::BackupKind;
using test::EitherBackup;
using test::knownPlaintext;
using test::readFile;
using testing::IsEmpty;

constexpr const char* attachmentPath = "Library/SMS/Attachments/00/a.txt";

class FilesOfAnEncryptedBackup : public BackupFixture {
protected:
    std::shared_ptr<PreparedBackup> open() const { return BackupFixture::open(BackupKind::encrypted); }
};

TEST_F(FilesOfAnEncryptedBackup, givesTheContentsOfAFile) {
    write(BackupKind::encrypted);
    const auto opened = open();
    const auto file = opened->fileURL("MediaDomain", attachmentPath);
    ASSERT_TRUE(file);
    EXPECT_EQ(readFile(*file), std::string("a.txt: ") + knownPlaintext);
    EXPECT_EQ(file->parent_path(), opened->workingDirectory() / "files");
    EXPECT_EQ(file->filename(), stored("a.txt").filename());
}

TEST_F(FilesOfAnEncryptedBackup, decryptsAFileOnceUntilItIsReleased) {
    write(BackupKind::encrypted);
    const auto opened = open();
    const auto file = opened->fileURL("MediaDomain", attachmentPath);
    ASSERT_TRUE(file);
    const auto time = fs::last_write_time(*file);
    EXPECT_EQ(opened->fileURL("MediaDomain", attachmentPath), file);
    EXPECT_EQ(fs::last_write_time(*file), time);
    opened->releaseFile(opened->workingDirectory() / "files/../files" / file->filename());
    EXPECT_FALSE(fs::exists(*file));
    EXPECT_EQ(opened->fileURL("MediaDomain", attachmentPath), file);
    EXPECT_TRUE(fs::exists(*file));
}

TEST_F(FilesOfAnEncryptedBackup, decryptsAgainWhatTheSystemTidiedAway) {
    write(BackupKind::encrypted);
    const auto opened = open();
    const auto file = opened->fileURL("MediaDomain", attachmentPath);
    ASSERT_TRUE(file);
    fs::remove(*file);
    EXPECT_EQ(opened->fileURL("MediaDomain", attachmentPath), file);
    EXPECT_TRUE(fs::exists(*file));
}

TEST_F(FilesOfAnEncryptedBackup, givesTwoThreadsTheSameFile) {
    write(BackupKind::encrypted, [this](BackupWriter& writer) {
        addMessages(writer);
        writer.addBytes("MediaDomain", "big", std::string(5'000'000, 'x'));
    });
    const auto opened = open();
    std::vector<std::optional<fs::path>> files(4);
    {
        std::vector<std::jthread> threads;
        for (auto& file : files)
            threads.emplace_back([&] { file = opened->fileURL("MediaDomain", "big"); });
    }
    ASSERT_TRUE(files[0]);
    EXPECT_THAT(files, testing::Each(files[0]));
    EXPECT_EQ(test::namesIn(opened->workingDirectory() / "files").size(), 1U);
    EXPECT_EQ(fs::file_size(*files[0]), 5'000'000U);
}

TEST_F(FilesOfAnEncryptedBackup, copiesAnEmptyFileThatHasNoKey) {
    write(BackupKind::encrypted, [this](BackupWriter& writer) {
        addMessages(writer);
        writer.addBytes("MediaDomain", "empty", "", {.hasKey = false});
    });
    const auto opened = open();
    const auto file = opened->fileURL("MediaDomain", "empty");
    ASSERT_TRUE(file);
    EXPECT_EQ(fs::file_size(*file), 0U);
}

TEST_F(FilesOfAnEncryptedBackup, copiesWhatIsStoredForAFileOfNoSizeAndNoKey) {
    write(BackupKind::encrypted, [this](BackupWriter& writer) {
        addMessages(writer);
        writer.addBytes("MediaDomain", "odd", "as it is stored", {.hasKey = false, .claimedSize = 0});
    });
    const auto opened = open();
    const auto file = opened->fileURL("MediaDomain", "odd");
    ASSERT_TRUE(file);
    EXPECT_EQ(readFile(*file), "as it is stored");
}

TEST_F(FilesOfAnEncryptedBackup, releasesNoFileBesideTheirFolder) {
    write(BackupKind::encrypted);
    const auto opened = open();
    ASSERT_TRUE(opened->fileURL("MediaDomain", attachmentPath));
    const fs::path inside = opened->workingDirectory();
    for (const char* name : {"files-not", "filesystem"}) {
        std::ofstream(inside / name) << "stays";
        opened->releaseFile(inside / name);
        opened->releaseFile(inside / "files/.." / name);
        EXPECT_TRUE(fs::exists(inside / name)) << name;
    }
}

TEST_F(FilesOfAnEncryptedBackup, keepsTheOtherFilesWhenOneIsReleased) {
    write(BackupKind::encrypted);
    const auto opened = open();
    const auto released = opened->fileURL("MediaDomain", attachmentPath);
    const auto kept = opened->fileURL("MediaDomain", "Library/SMS/Attachments/00/b.txt");
    ASSERT_TRUE(released && kept);
    opened->releaseFile(*released);
    EXPECT_EQ(readFile(*kept), std::string("b.txt: ") + knownPlaintext);
}

TEST_F(FilesOfAnEncryptedBackup, reportsAFileThatCannotBeDecryptedAndKeepsNothingOfIt) {
    write(BackupKind::encrypted, [this](BackupWriter& writer) {
        addMessages(writer);
        writer.addBytes("MediaDomain", "keyless", "bytes", {.hasKey = false});
        writer.addBytes("MediaDomain", "long", "bytes", {.claimedSize = 100});
        writer.addBytes("MediaDomain", "oddName", "bytes", {.fileID = "..", .hasStoredFile = false});
        writer.addBytes("MediaDomain", "noRecord", "bytes", {.fileBlob = Data()});
    });
    const auto opened = open();
    EXPECT_THROW(opened->fileURL("MediaDomain", "keyless"), BackupError);
    EXPECT_THROW(opened->fileURL("MediaDomain", "long"), BackupCryptoError);
    EXPECT_THROW(opened->fileURL("MediaDomain", "oddName"), ManifestError);
    EXPECT_THROW(opened->fileURL("MediaDomain", "noRecord"), DescribedError);
    EXPECT_THAT(test::namesIn(opened->workingDirectory() / "files"), IsEmpty());
}

TEST_F(FilesOfAnEncryptedBackup, tornDownInMidDecryptionKeepsNothing) {
    write(BackupKind::encrypted, [this](BackupWriter& writer) {
        addMessages(writer);
        writer.addBytes("MediaDomain", "big", std::string(60'000'000, 'x'));
    });
    for (const int delay : {0, 2, 5, 10, 20}) {
        const auto opened = open();
        std::jthread reader([&] {
            try {
                opened->fileURL("MediaDomain", "big");
            } catch (const CancellationError&) {
                return;
            }
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(delay));
        opened->teardown();
        EXPECT_THAT(leftovers(), IsEmpty());
        reader.join();
        EXPECT_THAT(leftovers(), IsEmpty());
    }
}

TEST_F(FilesOfAnEncryptedBackup, areGoneAfterATeardownBesideTheirRelease) {
    write(BackupKind::encrypted, [this](BackupWriter& writer) {
        addMessages(writer);
        for (int number = 0; number < 40; ++number)
            writer.addBytes("MediaDomain", std::to_string(number), "bytes");
    });
    for (int round = 0; round < 40; ++round) {
        const auto opened = open();
        std::vector<fs::path> files;
        for (int number = 0; number < 40; ++number)
            files.push_back(opened->fileURL("MediaDomain", std::to_string(number)).value());
        std::jthread releasing([&] {
            for (const fs::path& file : files)
                opened->releaseFile(file);
        });
        opened->teardown();
        EXPECT_THAT(leftovers(), IsEmpty()) << round;
    }
}

TEST_F(FilesOfAnEncryptedBackup, areProbedWithoutADecryption) {
    write(BackupKind::encrypted, [this](BackupWriter& writer) {
        addMessages(writer);
        writer.addBytes("MediaDomain", "empty", "", {.hasKey = false});
        writer.addBytes("MediaDomain", "emptyWithKey", "");
        writer.addBytes("MediaDomain", "absent", "bytes", {.hasStoredFile = false});
    });
    const auto opened = open();
    EXPECT_EQ(opened->storedFile("MediaDomain", attachmentPath), stored("a.txt"));
    for (const char* name : {"empty", "emptyWithKey", "absent", "unknown"})
        EXPECT_EQ(opened->storedFile("MediaDomain", name), std::nullopt) << name;
    EXPECT_FALSE(fs::exists(opened->workingDirectory() / "files"));
    opened->teardown();
    EXPECT_EQ(opened->storedFile("MediaDomain", attachmentPath), std::nullopt);
}

class FilesOfAPlainBackup : public BackupFixture {};

TEST_F(FilesOfAPlainBackup, givesTheStoredFileItself) {
    write(BackupKind::plain);
    const auto opened = open(BackupKind::plain);
    EXPECT_EQ(opened->fileURL("MediaDomain", attachmentPath), stored("a.txt"));
    EXPECT_FALSE(fs::exists(opened->workingDirectory() / "files"));
}

TEST_F(FilesOfAPlainBackup, keepsItsFilesWhenTheyAreReleased) {
    write(BackupKind::plain);
    const auto before = test::snapshotOf(backup);
    const auto opened = open(BackupKind::plain);
    opened->releaseFile(*opened->fileURL("MediaDomain", attachmentPath));
    EXPECT_EQ(test::snapshotOf(backup), before);
}

TEST_P(EitherBackup, releasesNothingButItsDecryptedFiles) {
    write(kind());
    const auto opened = open(kind());
    const fs::path inside = opened->workingDirectory();
    for (const fs::path& file : {opened->messageDatabaseURL(), stored("a.txt"), inside / "files/../sms.db",
                                 inside / "files", inside / "files-not", folder / "messages"})
        opened->releaseFile(file);
    EXPECT_TRUE(fs::exists(opened->messageDatabaseURL()));
    EXPECT_TRUE(fs::exists(stored("a.txt")));
}

struct AbsenceCase {
    const char* name;
    std::function<void(const fs::path& storedFile)> apply;
};

class AbsentFile : public BackupFixture,
                   public testing::WithParamInterface<std::tuple<BackupKind, AbsenceCase>> {};

TEST_P(AbsentFile, isNoErrorAndGivesNothing) {
    const auto& [kind, absence] = GetParam();
    write(kind);
    absence.apply(stored("a.txt"));
    EXPECT_EQ(open(kind)->fileURL("MediaDomain", attachmentPath), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Table, AbsentFile,
    testing::Combine(testing::Values(BackupKind::plain, BackupKind::encrypted),
                     testing::Values(AbsenceCase{"missing", [](const fs::path& file) { fs::remove(file); }},
                                     AbsenceCase{"folder",
                                                 [](const fs::path& file) {
                                                     fs::remove(file);
                                                     fs::create_directory(file);
                                                 }},
                                     AbsenceCase{"link",
                                                 [](const fs::path& file) {
                                                     fs::rename(file, file.native() + "-real");
                                                     fs::create_symlink(file.native() + "-real", file);
                                                 }},
                                     AbsenceCase{"behindALink",
                                                 [](const fs::path& file) {
                                                     const fs::path place = file.parent_path();
                                                     fs::rename(place, place.native() + "-real");
                                                     fs::create_directory_symlink(place.native() + "-real",
                                                                                  place);
                                                 }},
                                     AbsenceCase{"pipe",
                                                 [](const fs::path& file) {
                                                     fs::remove(file);
                                                     ::mkfifo(file.c_str(), 0600);
                                                 }})),
    test::nameOfCase<AbsentFile>);

TEST_P(EitherBackup, knowsNoFileThatItDoesNotList) {
    write(kind());
    const auto opened = open(kind());
    EXPECT_EQ(opened->fileURL("MediaDomain", "Library/SMS/Attachments/00/A.TXT"), std::nullopt);
    EXPECT_EQ(opened->fileURL("HomeDomain", attachmentPath), std::nullopt);
}
} // namespace
} // namespace quillbook
