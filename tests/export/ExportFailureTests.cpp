#include "export/WebResource.h"
#include "platform/AtomicFile.h"
#include "platform/FileError.h"
#include "tests/export/ExportFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileSizeLimit.h"

#include <map>
#include <stdexcept>

#include <gmock/gmock.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::attachment;
using test::ExportFixture;
using test::message;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* albumName = "Ana — 2024-05-01 12.34.56";
const ExportOptions everything{.includeJSON = true, .includeMarkdown = true, .includeCSV = true};

/// Two attachments and a picture of a participant, with everything exported, and a step at which something
/// can happen.
struct FailingExport : ExportFixture {
    FailingExport()
        : ExportFixture(test::conversationNamed(
              "Ana",
              {message("m1", "x", {attachment("a1", "1.jpg", "p1"), attachment("a2", "2.jpg", "p2")})})) {
        addFile("p1", std::string(30'000, 'a'));
        addFile("p2", std::string(30'000, 'b'));
        loader->conversation.participants[0].avatarData = Data{1, 2, 3};
        options = everything;
    }

    void at(const std::string& wanted, std::function<void()> happens) {
        const auto note = [wanted, happens](const std::string& event) {
            if (event == wanted) happens();
        };
        loader->onCall = note;
        onReport = [note](const ExportProgress& report) { note(report.detail); };
        durableFiles->onFlushTree = [note] { note("flush"); };
    }

    fs::path staging() const {
        for (const auto& name : destinationEntries()) {
            if (name.starts_with(".quillbook-staging-")) return destination / name;
        }
        return {};
    }
};

class OddError final : public DescribedError {
public:
    std::string description() const override { return "The library is asleep."; }
};

TEST(ExportFailure, passesOnThatTheConversationCannotBeLoaded) {
    FailingExport fixture;
    fixture.folder.write("Albums/.quillbook-staging-1/file", "x");
    fixture.loader->failure = std::make_exception_ptr(OddError());
    EXPECT_THROW(fixture.run(), OddError);
    EXPECT_THAT(fixture.destinationEntries(), ElementsAre(".quillbook-staging-1"));
}

TEST(ExportFailure, leavesADestinationThatMayNotBeWrittenUnchanged) {
    FailingExport fixture;
    fs::permissions(fixture.folder.path(), fs::perms(0755));
    fs::permissions(fixture.destination, fs::perms(0555));
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  if (!test::becomeOrdinaryUser()) return "could not change the user";
                  try {
                      fixture.run();
                  } catch (const FileError& error) {
                      return error.code == std::errc::permission_denied ? "" : error.description();
                  }
                  return "no error";
              }),
              "");
    EXPECT_THAT(fixture.destinationEntries(), IsEmpty());
    fs::permissions(fixture.destination, fs::perms(0755));
}

TEST(ExportFailure, endsWhereTheDestinationIsAFile) {
    FailingExport fixture;
    fixture.destination = fixture.folder.write("file", "x");
    EXPECT_THROW(fixture.run(), FileError);
    EXPECT_EQ(test::readFile(fixture.destination), "x");
}

TEST(ExportFailure, endsAtAnUnsafePathAndLeavesNothing) {
    FailingExport fixture;
    fixture.loader->conversation.messages[0].attachments[1] = attachment("../../up", "...", "p2");
    EXPECT_THROW(fixture.run(), ExportFileError);
    EXPECT_THAT(fixture.destinationEntries(), IsEmpty());
}

TEST(ExportFailure, doesNotReleaseTheFileWhoseCopyFailed) {
    FailingExport fixture;
    fixture.loader->conversation.messages[0].attachments[0] = attachment("a/b", "...", "p1");
    EXPECT_THROW(fixture.run(), ExportFileError);
    EXPECT_THAT(fixture.loader->calls, ElementsAre("load chat-7", "locate p1"));
}

TEST(ExportFailure, endsWithoutAResourceOfTheWebsiteAndLeavesNothing) {
    FailingExport fixture;
    fs::remove(fixture.folder / "Resources/Web/app.js");
    EXPECT_THROW(fixture.run(), WebArchiveError);
    EXPECT_THAT(fixture.destinationEntries(), IsEmpty());
}

TEST(ExportFailure, passesOnWhatAReportThrewAndLeavesNothing) {
    FailingExport fixture;
    fixture.at("Writing transcripts", [] { throw std::runtime_error("enough"); });
    EXPECT_THROW(fixture.run(), std::runtime_error);
    EXPECT_THAT(fixture.destinationEntries(), IsEmpty());
}

TEST(ExportFailure, endsWhereTheAlbumCannotBeFlushedAndLeavesNothing) {
    FailingExport fixture;
    fixture.at("flush", [] {
        throw FileError(FileError::Action::write, "disk", std::make_error_code(std::errc::io_error));
    });
    EXPECT_THROW(fixture.run(), FileError);
    EXPECT_THAT(fixture.destinationEntries(), IsEmpty());
}

TEST(ExportFailure, isNoneWhereOnlyTheNewNameCannotBeFlushed) {
    FailingExport fixture;
    fixture.durableFiles->onFlushFolder = [] {
        throw FileError(FileError::Action::write, "disk", std::make_error_code(std::errc::io_error));
    };
    EXPECT_EQ(test::albumDefect(fixture.run().archiveURL), "");
}

struct TakenCase {
    const char* name;
    std::function<void(const fs::path& place)> take;
};

class TakenName : public testing::TestWithParam<TakenCase> {};

TEST_P(TakenName, endsTheExportAndStaysUntouched) {
    FailingExport fixture;
    const fs::path place = fixture.destination / albumName;
    fixture.at("Writing transcripts", [&] { GetParam().take(place); });
    EXPECT_THROW(fixture.run(), FileError);
    EXPECT_THAT(fixture.destinationEntries(), ElementsAre(albumName));
    EXPECT_FALSE(fs::exists(place / "manifest.json"));
}

INSTANTIATE_TEST_SUITE_P(
    Table, TakenName,
    testing::Values(
        TakenCase{"byAnEmptyFolder", [](const fs::path& place) { fs::create_directory(place); }},
        TakenCase{"byAFolder", [](const fs::path& place) { fs::create_directories(place / "sub"); }},
        TakenCase{"byAFile", [](const fs::path& place) { writeFileAtomically(place, "x"); }},
        TakenCase{"byALink", [](const fs::path& place) { fs::create_symlink("nowhere", place); }}),
    [](const auto& tested) { return std::string(tested.param.name); });

// From the first moment at which the staging folder stands to the last before its renaming.
const std::vector<std::string> momentsOfStaging = {"locate p1",
                                                   "release p1",
                                                   "1.jpg",
                                                   "locate p2",
                                                   "release p2",
                                                   "2.jpg",
                                                   "Writing offline website",
                                                   "Writing transcripts",
                                                   "flush",
                                                   "Finalizing archive"};

class RemovedInBetween : public testing::TestWithParam<std::string> {};

TEST_P(RemovedInBetween, theDestinationEndsTheExportAndIsNotBroughtBack) {
    FailingExport fixture;
    fixture.at(GetParam(), [&] { fs::remove_all(fixture.destination); });
    EXPECT_THROW(fixture.run(), DescribedError);
    EXPECT_FALSE(fs::exists(fixture.destination));
}

TEST_P(RemovedInBetween, theStagingFolderEndsTheExportAndLeavesNothing) {
    FailingExport fixture;
    fixture.at(GetParam(), [&] { fs::remove_all(fixture.staging()); });
    EXPECT_THROW(fixture.run(), DescribedError);
    EXPECT_THAT(fixture.destinationEntries(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(AtEachMoment, RemovedInBetween, testing::ValuesIn(momentsOfStaging));

struct LossCase {
    const char* name;
    const char* moment;
    const char* file;
};

class LostFile : public testing::TestWithParam<LossCase> {};

TEST_P(LostFile, endsTheExportBeforeItPromisesTheFile) {
    FailingExport fixture;
    fixture.at(GetParam().moment,
               [&] { EXPECT_GT(fs::remove_all(fixture.staging() / GetParam().file), 0U); });
    EXPECT_THROW(fixture.run(), FileError);
    EXPECT_THAT(fixture.destinationEntries(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Table, LostFile,
                         testing::Values(LossCase{"attachment", "2.jpg", "attachments/1.jpg"},
                                         LossCase{"attachments", "Writing transcripts", "attachments"},
                                         LossCase{"picture", "Writing transcripts", "assets/avatars"},
                                         LossCase{"website", "Writing transcripts", "index.html"},
                                         LossCase{"page", "Writing transcripts", "Open Album.html"},
                                         LossCase{"JSON", "Writing transcripts", "transcript.json"}),
                         [](const auto& tested) { return std::string(tested.param.name); });

class FullDisk : public testing::TestWithParam<std::uint64_t> {};

TEST_P(FullDisk, endsTheExportAndLeavesNothing) {
    FailingExport fixture;
    const test::FileSizeLimit limit(GetParam());
    EXPECT_THROW(fixture.run(), DescribedError);
    EXPECT_THAT(fixture.destinationEntries(), IsEmpty());
}

// The largest of the small files is the manifest, or the website's data, with more than a thousand bytes.
INSTANTIATE_TEST_SUITE_P(Table, FullDisk, testing::Values(0, 1, 29'999));

TEST(FullDisk, namesTheAttachmentThatDidNotFit) {
    FailingExport fixture;
    const test::FileSizeLimit limit(29'999);
    try {
        fixture.run();
        FAIL() << "no error";
    } catch (const ExportFileError& error) {
        EXPECT_EQ(error.description(),
                  "Could not write 1.jpg to the destination. The disk may be full or read-only.");
    }
}

class FullDiskWithoutAttachments : public testing::TestWithParam<std::uint64_t> {};

TEST_P(FullDiskWithoutAttachments, endsTheExportAndLeavesNothing) {
    FailingExport fixture;
    fixture.loader->files.clear();
    const test::FileSizeLimit limit(GetParam());
    EXPECT_THROW(fixture.run(), FileError);
    EXPECT_THAT(fixture.destinationEntries(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(AtEachWriter, FullDiskWithoutAttachments, testing::Values(2, 18, 60, 165, 170, 800));

/// Exports where there is little room: "sound" for an album, "full" for an error that left nothing, or what
/// is wrong.
std::string outcomeOnDisk(test::SmallRoom room) {
    FailingExport fixture;
    return test::runOnSmallDisk(fixture.destination, room, [&]() -> std::string {
        try {
            const std::string defect = test::albumDefect(fixture.run().archiveURL);
            return defect.empty() ? "sound" : defect;
        } catch (const DescribedError&) {
            return fixture.destinationEntries().empty() ? "full" : "something was left";
        }
    });
}

TEST(FullDisk, leavesNothingAtWhateverByteItFills) {
    std::map<std::string, int> outcomes;
    for (std::size_t pages = 1; pages <= 40; ++pages)
        ++outcomes[outcomeOnDisk({.disk = pages * 4'096, .file = pages * 1'000})];
    EXPECT_GT(outcomes["full"], 10);
    EXPECT_GT(outcomes["sound"], 5);
    EXPECT_EQ(outcomes["full"] + outcomes["sound"], 40);
}

TEST(FullDisk, leavesNothingOfAnAttachmentThatFillsFourMegabytes) {
    FailingExport fixture;
    fixture.addFile("p2", std::string(5'000'000, 'x'));
    const test::SmallRoom room = {.disk = 4U << 20U, .file = 4U << 20U};
    EXPECT_EQ(test::runOnSmallDisk(fixture.destination, room,
                                   [&]() -> std::string {
                                       try {
                                           fixture.run();
                                       } catch (const ExportFileError& error) {
                                           if (error.name != "2.jpg") return error.description();
                                           return fixture.destinationEntries().empty() ? ""
                                                                                       : "something was left";
                                       }
                                       return "no error";
                                   }),
              "");
}

} // namespace
} // namespace quillbook
