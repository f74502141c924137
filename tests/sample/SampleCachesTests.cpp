#include "tests/sample/LibraryUnderTest.h"
#include "tests/support/FolderSnapshot.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/sample/SampleCaches.h"
#include "tools/sample/SampleLibrary.h"
#include "tools/writing/SampleError.h"

#include <algorithm>
#include <set>

#include <gmock/gmock.h>

namespace quillbook::sample {
namespace {

using quillbook::test::readFile;
using quillbook::test::snapshotOf;
using quillbook::test::TemporaryFolder;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const std::filesystem::path messagesPath = "Library/Messages";

/// The default library with its caches, written once for all tests.
struct HomeWithCaches {
    TemporaryFolder folder;
    SampleReport report = writeSampleLibrary(optionsFor(folder.path()));

    static SampleOptions optionsFor(const std::filesystem::path& home) {
        SampleOptions options;
        options.home = home;
        options.hasCaches = true;
        return options;
    }
};

const HomeWithCaches& homeWithCaches() {
    static const HomeWithCaches home;
    return home;
}

const std::vector<CachedAttachment>& attachments() {
    return homeWithCaches().report.caches.value().attachments;
}

std::vector<CachedAttachment> attachmentsAs(CacheForm form) {
    std::vector<CachedAttachment> some;
    std::copy_if(attachments().begin(), attachments().end(), std::back_inserter(some),
                 [form](const CachedAttachment& attachment) { return attachment.form == form; });
    return some;
}

bool isHidden(const std::filesystem::path& path) {
    return std::any_of(path.begin(), path.end(),
                       [](const auto& component) { return component.string().starts_with('.'); });
}

/// A row of the database whose file is not in the library.
struct MissingRow {
    std::string name;
    std::uintmax_t byteCount = 0;
    std::string relativePath; ///< Below the home folder.
};

std::vector<MissingRow> missingRows() {
    const HomeWithCaches& home = homeWithCaches();
    const std::string rows = " FROM attachment a JOIN message_attachment_join m ON m.attachment_id = a.ROWID "
                             "JOIN chat_message_join c ON c.message_id = m.message_id WHERE c.chat_id = " +
                             std::to_string(home.report.richestChatID) +
                             " AND a.filename IS NOT NULL ORDER BY a.ROWID";
    const auto paths =
        test::queryColumn(home.report.database, "SELECT CAST(substr(a.filename, 3) AS BLOB)" + rows);
    const auto sizes = test::queryColumn(home.report.database, "SELECT CAST(a.total_bytes AS TEXT)" + rows);
    std::vector<MissingRow> missing;
    for (std::size_t index = 0; index < paths.size(); ++index) {
        if (std::filesystem::exists(home.folder.path() / paths[index])) continue;
        missing.push_back({std::filesystem::path(paths[index]).filename().string(), std::stoull(sizes[index]),
                           paths[index]});
    }
    return missing;
}

/// The files of the caches that are neither hidden nor links and have that name and size.
std::vector<std::filesystem::path> copiesOf(const MissingRow& row) {
    std::vector<std::filesystem::path> copies;
    for (const auto& folder : homeWithCaches().report.caches.value().folders) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            const bool isFile = entry.symlink_status().type() == std::filesystem::file_type::regular;
            if (!isFile || isHidden(entry.path().lexically_relative(folder))) continue;
            if (entry.path().filename() == row.name && entry.file_size() == row.byteCount)
                copies.push_back(entry.path());
        }
    }
    return copies;
}

const MissingRow& rowNamed(const std::string& name) {
    static const std::vector<MissingRow> rows = missingRows();
    const auto row =
        std::find_if(rows.begin(), rows.end(), [&](const MissingRow& each) { return each.name == name; });
    if (row == rows.end()) throw std::runtime_error("not missing: " + name);
    return *row;
}

/// As the library without caches has it.
std::string originalOf(const std::string& name) {
    return readFile(test::defaultHome() / rowNamed(name).relativePath);
}

TEST(SampleCaches, lieWhereAMacKeepsThem) {
    const auto library = homeWithCaches().folder.path() / "Library";
    EXPECT_THAT(homeWithCaches().report.caches.value().folders,
                ElementsAre(library / "Caches" / "CloudKit", library / "Application Support" / "CloudKit",
                            library / "Messages" / "CloudKitMetaData"));
    for (const auto& folder : homeWithCaches().report.caches.value().folders)
        EXPECT_THAT(test::filesBelow(folder), Not(IsEmpty())) << folder;
}

TEST(SampleCaches, holdEveryFormOfCopy) {
    EXPECT_THAT(attachmentsAs(CacheForm::plain), SizeIs(3));
    EXPECT_THAT(attachmentsAs(CacheForm::twice), SizeIs(1));
    EXPECT_THAT(attachmentsAs(CacheForm::aByteShort), SizeIs(1));
    EXPECT_THAT(attachmentsAs(CacheForm::hidden), SizeIs(1));
    EXPECT_THAT(attachmentsAs(CacheForm::link), SizeIs(1));
}

TEST(SampleCaches, haveAFilmAndPicturesOfTheRichestChat) {
    std::set<std::string> endings;
    for (const CachedAttachment& attachment : attachments())
        endings.insert(std::filesystem::path(attachment.name).extension().string());
    EXPECT_EQ(endings, (std::set<std::string>{".jpeg", ".mp4"}));
}

TEST(SampleCaches, nameTheSizeOfTheRow) {
    for (const CachedAttachment& attachment : attachments())
        EXPECT_EQ(static_cast<std::uintmax_t>(attachment.byteCount), rowNamed(attachment.name).byteCount);
}

TEST(SampleCaches, holdPlainCopiesOnceWithAllTheirBytes) {
    for (const CachedAttachment& attachment : attachmentsAs(CacheForm::plain)) {
        const auto copies = copiesOf(rowNamed(attachment.name));
        ASSERT_EQ(copies, attachment.files);
        ASSERT_THAT(copies, SizeIs(1));
        EXPECT_TRUE(readFile(copies.front()) == originalOf(attachment.name)) << attachment.name;
    }
}

TEST(SampleCaches, holdOneCopyInTwoOfThem) {
    const CachedAttachment attachment = attachmentsAs(CacheForm::twice).at(0);
    EXPECT_EQ(copiesOf(rowNamed(attachment.name)), attachment.files);
    ASSERT_THAT(attachment.files, SizeIs(2));
    const auto caches = homeWithCaches().folder.path() / "Library";
    EXPECT_TRUE(attachment.files[0].string().starts_with((caches / "Caches/CloudKit/").string()));
    EXPECT_TRUE(attachment.files[1].string().starts_with((caches / "Messages/CloudKitMetaData/").string()));
    for (const auto& file : attachment.files)
        EXPECT_TRUE(readFile(file) == originalOf(attachment.name));
}

TEST(SampleCaches, holdOneCopyThatLacksItsLastByte) {
    const CachedAttachment attachment = attachmentsAs(CacheForm::aByteShort).at(0);
    EXPECT_THAT(copiesOf(rowNamed(attachment.name)), IsEmpty());
    ASSERT_THAT(attachment.files, SizeIs(1));
    EXPECT_EQ(attachment.files[0].filename(), attachment.name);
    const std::string original = originalOf(attachment.name);
    EXPECT_TRUE(readFile(attachment.files[0]) == original.substr(0, original.size() - 1));
}

TEST(SampleCaches, holdOneCopyThatIsHiddenOnly) {
    const CachedAttachment attachment = attachmentsAs(CacheForm::hidden).at(0);
    EXPECT_THAT(copiesOf(rowNamed(attachment.name)), IsEmpty());
    ASSERT_THAT(attachment.files, SizeIs(2));
    EXPECT_EQ(attachment.files[0].filename(), attachment.name);
    EXPECT_EQ(attachment.files[1].filename(), "." + attachment.name);
    for (const auto& file : attachment.files) {
        EXPECT_TRUE(isHidden(file.lexically_relative(homeWithCaches().folder.path()))) << file;
        EXPECT_TRUE(readFile(file) == originalOf(attachment.name)) << file;
    }
}

TEST(SampleCaches, holdOneCopyThatIsALinkOnly) {
    const CachedAttachment attachment = attachmentsAs(CacheForm::link).at(0);
    EXPECT_THAT(copiesOf(rowNamed(attachment.name)), IsEmpty());
    ASSERT_THAT(attachment.files, SizeIs(1));
    const std::filesystem::path& link = attachment.files[0];
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(link.filename(), attachment.name);
    EXPECT_TRUE(std::filesystem::read_symlink(link).is_relative());
    EXPECT_TRUE(readFile(link) == originalOf(attachment.name));
}

TEST(SampleCaches, haveNothingForTheAttachmentsThatAreMissingAnyway) {
    std::vector<std::string> others;
    for (const MissingRow& row : missingRows()) {
        const bool isCached = std::any_of(attachments().begin(), attachments().end(),
                                          [&](const auto& each) { return each.name == row.name; });
        if (isCached) continue;
        others.push_back(row.name);
        EXPECT_THAT(copiesOf(row), IsEmpty()) << row.name;
    }
    EXPECT_THAT(others, ElementsAre("IMG_2276.jpeg", "IMG_2304.MOV"));
}

TEST(SampleCaches, holdSomethingOfAnotherApplication) {
    const auto files = test::filesBelow(homeWithCaches().report.caches.value().folders.at(0));
    EXPECT_TRUE(std::any_of(files.begin(), files.end(),
                            [](const auto& file) { return file.first.starts_with("com.apple.Notes/"); }));
}

TEST(SampleCaches, leaveTheDatabaseAndTheOtherAttachmentsAsTheyAre) {
    auto expected = test::filesBelow(test::defaultHome() / messagesPath);
    for (const CachedAttachment& attachment : attachments()) {
        const auto path = std::filesystem::path(rowNamed(attachment.name).relativePath);
        EXPECT_EQ(expected.erase(path.lexically_relative(messagesPath).string()), 1U);
    }
    auto found = test::filesBelow(homeWithCaches().folder.path() / messagesPath);
    std::erase_if(found, [](const auto& file) { return file.first.starts_with("CloudKitMetaData/"); });
    EXPECT_TRUE(found == expected);
}

TEST(SampleCaches, countAsMissingInTheReport) {
    const SampleReport& report = homeWithCaches().report;
    EXPECT_EQ(report.attachmentsMissing, test::defaultLibrary().attachmentsMissing + 7);
    EXPECT_EQ(static_cast<std::size_t>(report.attachmentsOnDisk),
              test::filesBelow(report.attachments).size());
}

TEST(SampleCaches, areTheSameByteForByteEachTime) {
    const TemporaryFolder other;
    writeSampleLibrary(HomeWithCaches::optionsFor(other.path()));
    EXPECT_TRUE(test::filesBelow(other.path()) == test::filesBelow(homeWithCaches().folder.path()));
}

TEST(SampleCaches, areNamedInTheReport) {
    const std::string words = describe(homeWithCaches().report);
    for (const auto& folder : homeWithCaches().report.caches.value().folders)
        EXPECT_THAT(words, HasSubstr("Cache: " + folder.string() + "\n"));
    for (const CachedAttachment& attachment : attachments()) {
        EXPECT_THAT(words, HasSubstr("In the caches: " + attachment.name + " ("));
        for (const auto& file : attachment.files)
            EXPECT_THAT(words, HasSubstr("  " + file.string() + "\n"));
    }
    EXPECT_THAT(describe(test::defaultLibrary()), Not(HasSubstr("ache")));
}

SampleOptions smallOptions(const std::filesystem::path& home) {
    SampleOptions options = HomeWithCaches::optionsFor(home);
    options.messageCount = 100;
    options.attachmentCount = 4;
    options.backups = {BackupKind::plain};
    return options;
}

TEST(SampleCaches, leaveTheBackupAsItIsWithoutThem) {
    const TemporaryFolder one;
    const TemporaryFolder other;
    SampleOptions options = smallOptions(one.path());
    const SampleReport report = writeSampleLibrary(options);
    options.home = other.path();
    options.hasCaches = false;
    writeSampleLibrary(options);
    const std::filesystem::path backups = "Library/Application Support/MobileSync";
    EXPECT_TRUE(test::filesBelow(one.path() / backups) == test::filesBelow(other.path() / backups));
    EXPECT_THAT(report.caches.value().attachments, Not(IsEmpty()));
}

TEST(SampleCaches, haveTheMostTellingFormsWhereTheChatHasFewFiles) {
    const TemporaryFolder home;
    SampleOptions options = smallOptions(home.path());
    options.backups.clear();
    const auto few = writeSampleLibrary(options).caches.value().attachments;
    ASSERT_THAT(few, SizeIs(testing::AllOf(testing::Ge(1U), testing::Lt(7U))));
    const std::vector<CacheForm> first = {CacheForm::plain,  CacheForm::twice, CacheForm::aByteShort,
                                          CacheForm::hidden, CacheForm::link,  CacheForm::plain};
    for (std::size_t index = 0; index < few.size(); ++index)
        EXPECT_EQ(few[index].form, first[index]);
}

TEST(SampleCaches, areEmptyFoldersWhereTheLibraryHasNoMessages) {
    const TemporaryFolder home;
    SampleOptions options = HomeWithCaches::optionsFor(home.path());
    options.messageCount = 0;
    options.attachmentCount = 0;
    const SampleReport report = writeSampleLibrary(options);
    EXPECT_THAT(report.caches.value().attachments, IsEmpty());
    for (const auto& folder : report.caches.value().folders)
        EXPECT_TRUE(std::filesystem::is_directory(folder));
}

TEST(SampleCaches, areMadeOfAMeasuringLibraryToo) {
    const TemporaryFolder home;
    SampleOptions options = HomeWithCaches::optionsFor(home.path());
    options.isOneChat = true;
    options.messageCount = 400;
    options.attachmentCount = 40;
    const SampleReport report = writeSampleLibrary(options);
    EXPECT_THAT(report.caches.value().attachments, SizeIs(7));
    EXPECT_EQ(report.attachmentsMissing, 7);
}

class TakenPlace : public testing::TestWithParam<const char*> {};

TEST_P(TakenPlace, leavesEverythingAsItIs) {
    const TemporaryFolder home;
    home.write(GetParam(), "someone's own");
    const auto before = snapshotOf(home.path());
    try {
        writeSampleLibrary(smallOptions(home.path()));
        FAIL() << "written over";
    } catch (const SampleError& error) {
        EXPECT_EQ(error.reason, SampleError::Reason::cachesExist);
        EXPECT_THAT(error.description(), HasSubstr("no caches are written there"));
    }
    EXPECT_EQ(snapshotOf(home.path()), before);
}

INSTANTIATE_TEST_SUITE_P(Table, TakenPlace,
                         testing::Values("Library/Caches/CloudKit/own",
                                         "Library/Application Support/CloudKit/own",
                                         "Library/Messages/CloudKitMetaData",
                                         "Library/Caches/com.apple.MobileSMS/own"));

} // namespace
} // namespace quillbook::sample
