#include "core/text/Date.h"
#include "core/text/ISO8601.h"
#include "recovery/CloudKitCacheRecoveryService.h"
#include "recovery/RecoveryFolder.h"
#include "tests/recovery/RecoveryRecords.h"
#include "tests/support/FolderSnapshot.h"
#include "tests/support/TemporaryFolder.h"

#include <array>
#include <chrono>
#include <regex>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::candidate;
using test::readFile;
using test::TemporaryFolder;
using testing::HasSubstr;
using testing::Not;

class Recovery : public testing::Test {
protected:
    RecoveryOutcome recover(const std::vector<RecoveryCandidate>& candidates) const {
        return CloudKitCacheRecoveryService({}).recover(candidates, root());
    }
    fs::path root() const { return support_ / "Quillbook/Recovered Attachments"; }
    fs::path manifest() const { return root() / "recovery-manifest.json"; }
    RecoveryCandidate cached(const std::string& name, const std::string& contents,
                             const std::string& destination) const {
        return candidate(cache_.write(name, contents), destination,
                         static_cast<std::int64_t>(contents.size()));
    }

    TemporaryFolder cache_;
    TemporaryFolder support_;
};

TEST_F(Recovery, copiesEachCandidateToItsDestination) {
    const auto outcome = recover({cached("x/a.jpg", "first", "Attachments/aa/a.jpg"),
                                  cached("y/b.jpg", "second", "Attachments/bb/b.jpg")});
    EXPECT_EQ(outcome,
              (RecoveryOutcome{.recoveredCount = 2, .manifestURL = manifest(), .recoveredBytes = 11}));
    EXPECT_EQ(readFile(root() / "Attachments/aa/a.jpg"), "first");
    EXPECT_EQ(readFile(root() / "Attachments/bb/b.jpg"), "second");
}

TEST_F(Recovery, leavesNothingButTheCopiesAndTheManifest) {
    recover({cached("a.jpg", "first", "Attachments/a.jpg")});
    std::vector<std::string> names;
    for (const auto& entry : test::snapshotOf(root()))
        names.push_back(entry.first);
    EXPECT_THAT(names, testing::ElementsAre("Attachments", "Attachments/a.jpg", "recovery-manifest.json"));
}

TEST_F(Recovery, copiesFilesOfSeveralBlocks) {
    std::string contents;
    for (int number = 0; contents.size() < 3'000'000; ++number)
        contents += std::to_string(number);
    recover({cached("a.mov", contents, "a.mov")});
    EXPECT_EQ(readFile(root() / "a.mov"), contents);
}

TEST_F(Recovery, countsAFileThatAnotherRecoveryPlacedMeanwhile) {
    const auto both = cached("a.mov", std::string(30'000'000, 'x'), "Attachments/a.mov");
    std::array<RecoveryOutcome, 3> outcomes;
    {
        std::vector<std::jthread> threads;
        for (RecoveryOutcome& outcome : outcomes)
            threads.emplace_back([&] { outcome = recover({both}); });
    }
    for (const RecoveryOutcome& outcome : outcomes)
        EXPECT_EQ(outcome.recoveredCount, 1);
}

TEST_F(Recovery, keepsOthersOutOfItsFolder) {
    recover({cached("a.jpg", "first", "Attachments/a.jpg")});
    EXPECT_EQ(fs::status(root()).permissions(), fs::perms(0700));
}

TEST_F(Recovery, removesWhatAProcessLeftThatEndedInMidCopy) {
    const fs::path old = root() / "Attachments/.quillbook-copy-1";
    const fs::path recent = root() / "Attachments/.quillbook-copy-2";
    for (const fs::path& copy : {old, recent})
        support_.write(copy.lexically_relative(support_.path()).string(), "half of it");
    fs::last_write_time(old, fs::file_time_type::clock::now() - std::chrono::minutes(61));
    recover({cached("a.jpg", "first", "Attachments/a.jpg")});
    EXPECT_FALSE(fs::exists(old));
    EXPECT_TRUE(fs::exists(recent));
}

TEST_F(Recovery, writesAManifestThatHoldsTextsOnly) {
    auto first = cached("Assets/ab/a.jpg", "first", "Attachments/a.jpg");
    auto second = cached("b.jpg", "second", "Attachments/b.jpg");
    second.attachment.guid = "at_0_\"quoted\"";
    second.attachment.rowID = -9'000'000'000;
    second.ambiguous = true;
    recover({first, second});
    std::string text = readFile(manifest());
    const std::string moment = R"([0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z)";
    text = std::regex_replace(text, std::regex('"' + moment + '"'), "\"MOMENT\"");
    EXPECT_EQ(text, R"({
  "count" : 2,
  "entries" : [
    {
      "ambiguous" : "false",
      "bytes" : "5",
      "guid" : "GUID-7",
      "rowid" : "7",
      "sha256" : "a7937b64b8caa58f03721bb6bacf5c78cb235febe0e70b1b84cd99541461a08e",
      "source" : "a.jpg"
    },
    {
      "ambiguous" : "true",
      "bytes" : "6",
      "guid" : "at_0_\"quoted\"",
      "rowid" : "-9000000000",
      "sha256" : "16367aacb67a4a017c8da8ab95682ccb390863780f7114dda0a0e0c55644c7c4",
      "source" : "b.jpg"
    }
  ],
  "recoveredAt" : "MOMENT"
})");
}

TEST_F(Recovery, namesTheMomentInTheManifest) {
    const double before = Date::now().unixSeconds();
    recover({cached("a.jpg", "first", "a.jpg")});
    const std::string text = readFile(manifest());
    const auto start = text.find("\"recoveredAt\" : \"") + std::string("\"recoveredAt\" : \"").size();
    const auto moment = parseISO8601Seconds(text.substr(start, 20));
    ASSERT_TRUE(moment);
    EXPECT_GE(moment->unixSeconds(), before - 1);
    EXPECT_LE(moment->unixSeconds(), Date::now().unixSeconds());
}

TEST_F(Recovery, writesAManifestOfValidTextForNamesThatAreNone) {
    auto odd = cached("\xff.jpg", "first", "\xff.jpg");
    odd.attachment.guid = "\xc3";
    recover({odd});
    EXPECT_THAT(readFile(manifest()), HasSubstr("\"source\" : \"\xef\xbf\xbd.jpg\""));
    EXPECT_EQ(readFile(root() / "\xff.jpg"), "first");
}

TEST_F(Recovery, givesNothingForNoCandidates) {
    EXPECT_EQ(recover({}), RecoveryOutcome{});
    EXPECT_FALSE(fs::exists(support_ / "Quillbook"));
}

TEST_F(Recovery, givesTheSameFilesTheSecondTime) {
    const std::vector<RecoveryCandidate> candidates{cached("a.jpg", "first", "Attachments/a.jpg")};
    const auto outcome = recover(candidates);
    auto before = test::snapshotOf(root());
    EXPECT_EQ(recover(candidates), outcome);
    auto after = test::snapshotOf(root());
    before.erase("recovery-manifest.json");
    after.erase("recovery-manifest.json");
    EXPECT_EQ(after, before);
}

TEST_F(Recovery, listsOnlyTheLatestRecoveryInTheManifest) {
    recover({cached("a.jpg", "first", "a.jpg")});
    recover({cached("b.jpg", "second", "b.jpg")});
    EXPECT_THAT(readFile(manifest()), HasSubstr("\"b.jpg\""));
    EXPECT_THAT(readFile(manifest()), Not(HasSubstr("\"a.jpg\"")));
    EXPECT_TRUE(fs::exists(root() / "a.jpg"));
}

TEST_F(Recovery, keepsAndHashesAFileThatStandsAtTheDestination) {
    const auto wanted = cached("a.jpg", "first", "a.jpg");
    fs::create_directories(root());
    support_.write("Quillbook/Recovered Attachments/a.jpg", "second");
    const auto outcome = recover({wanted});
    EXPECT_EQ(outcome.recoveredCount, 1);
    EXPECT_EQ(outcome.recoveredBytes, 5); // the candidate's, as the manifest says it
    EXPECT_EQ(readFile(root() / "a.jpg"), "second");
    EXPECT_THAT(readFile(manifest()),
                HasSubstr("16367aacb67a4a017c8da8ab95682ccb390863780f7114dda0a0e0c55644c7c4"));
}

TEST_F(Recovery, needsNoSourceWhereAFileStandsAtTheDestination) {
    support_.write("Quillbook/Recovered Attachments/a.jpg", "second");
    EXPECT_EQ(recover({candidate(cache_ / "gone.jpg", "a.jpg", 5)}).recoveredCount, 1);
}

TEST_F(Recovery, keepsTheFirstOfTwoCandidatesForOnePlace) {
    const auto outcome = recover({cached("a.jpg", "first", "a.jpg"), cached("b.jpg", "second", "a.jpg")});
    EXPECT_EQ(outcome.recoveredCount, 2);
    EXPECT_EQ(readFile(root() / "a.jpg"), "first");
}

TEST_F(Recovery, copiesOneCachedFileToTwoPlaces) {
    const fs::path source = cache_.write("a.jpg", "first");
    recover({candidate(source, "x/a.jpg", 5), candidate(source, "y/a.jpg", 5)});
    EXPECT_EQ(readFile(root() / "x/a.jpg"), "first");
    EXPECT_EQ(readFile(root() / "y/a.jpg"), "first");
}

TEST_F(Recovery, makesTheCopiesForTheOwnerAlone) {
    recover({cached("a.jpg", "first", "a.jpg")});
    EXPECT_EQ(fs::status(root() / "a.jpg").permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Recovery, changesNothingInTheCaches) {
    const auto candidates =
        std::vector{cached("a.jpg", "first", "a.jpg"), cached("x/b.jpg", "second", "x/b.jpg"),
                    candidate(cache_ / "gone.jpg", "gone.jpg", 5)};
    const auto folderTimes = [&] {
        return std::pair(fs::last_write_time(cache_.path()), fs::last_write_time(cache_ / "x"));
    };
    const auto before = test::snapshotOf(cache_.path());
    const auto timesBefore = folderTimes();
    CloudKitCacheRecoveryService service({cache_.path()});
    service.findRecoverable({candidates[0].attachment, candidates[1].attachment});
    service.recover(candidates, root());
    EXPECT_EQ(test::snapshotOf(cache_.path()), before);
    EXPECT_EQ(folderTimes(), timesBefore);
}

TEST_F(Recovery, sharesNoFileWithTheCache) {
    const auto wanted = cached("a.jpg", "first", "a.jpg");
    recover({wanted});
    EXPECT_FALSE(fs::equivalent(wanted.sourceURL, root() / "a.jpg"));
}

TEST_F(Recovery, stopsCountingBytesAtTheLargestNumber) {
    support_.write("Quillbook/Recovered Attachments/a.jpg", "x");
    const auto huge = candidate(cache_ / "a.jpg", "a.jpg", INT64_MAX);
    EXPECT_EQ(recover({huge, huge}).recoveredBytes, INT64_MAX);
}

TEST_F(Recovery, worksWithARootThatIsALink) {
    fs::create_directories(support_ / "elsewhere");
    fs::create_directories(support_ / "Quillbook");
    fs::create_directory_symlink(support_ / "elsewhere", root());
    EXPECT_EQ(recover({cached("a.jpg", "first", "x/a.jpg")}).recoveredCount, 1);
    EXPECT_EQ(readFile(support_ / "elsewhere/x/a.jpg"), "first");
}

TEST(RecoveryRoot, liesBelowApplicationSupport) {
    EXPECT_EQ(recoveryRoot("/home/mira/.local/share"),
              "/home/mira/.local/share/Quillbook/Recovered Attachments");
}

} // namespace
} // namespace quillbook
