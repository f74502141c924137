#include "core/records/Cancellation.h"
#include "tests/export/ExportFixture.h"

#include <chrono>
#include <thread>

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

/// An export of everything with two attachments, which stops when `event` happens: a call of the source, a
/// report, a flush.
class CancelledExport {
public:
    explicit CancelledExport(std::size_t event, ExportOptions options = {true, true, true})
        : fixture(test::conversationNamed(
              "Ana",
              {message("m1", "x", {attachment("a1", "1.jpg", "p1"), attachment("a2", "2.jpg", "p2")})})),
          stopAt_(event) {
        fixture.addFile("p1", "abc");
        fixture.addFile("p2", "xyz");
        fixture.options = options;
        fixture.loader->onCall = [this](const std::string& call) { note(call); };
        fixture.onReport = [this](const ExportProgress& report) { note(report.detail); };
        fixture.durableFiles->onFlushTree = [this] { note("flush"); };
        fixture.durableFiles->onFlushFolder = [this] { note("flush the destination"); };
    }

    /// Whether it ended with a cancellation.
    bool run() {
        try {
            fixture.run(stop_.get_token());
        } catch (const CancellationError&) {
            return true;
        }
        return false;
    }

    ExportFixture fixture;
    std::vector<std::string> events;

private:
    void note(const std::string& event) {
        if (events.size() == stopAt_) stop_.request_stop();
        events.push_back(event);
    }

    std::stop_source stop_;
    std::size_t stopAt_;
};

const std::vector<std::string> allEvents = {"Preparing export",
                                            "load chat-7",
                                            "locate p1",
                                            "release p1",
                                            "1.jpg",
                                            "locate p2",
                                            "release p2",
                                            "2.jpg",
                                            "Writing offline website",
                                            "Writing transcripts",
                                            "flush",
                                            "Finalizing archive",
                                            "flush the destination",
                                            "Export complete"};

TEST(CancelledExport, passesEveryEventWhenItIsNotCancelled) {
    CancelledExport run(allEvents.size());
    EXPECT_FALSE(run.run());
    EXPECT_EQ(run.events, allEvents);
}

struct MomentCase {
    std::size_t event;
    std::string lastEvent; ///< What still happens.
};

class CancelledAt : public testing::TestWithParam<MomentCase> {};

TEST_P(CancelledAt, stopsAtTheNextCheck) {
    CancelledExport run(GetParam().event);
    EXPECT_TRUE(run.run());
    EXPECT_EQ(run.events.back(), GetParam().lastEvent);
}

TEST_P(CancelledAt, leavesNothingInTheDestination) {
    CancelledExport run(GetParam().event);
    run.run();
    EXPECT_THAT(run.fixture.destinationEntries(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Table, CancelledAt,
                         testing::Values(MomentCase{0, "load chat-7"}, MomentCase{1, "load chat-7"},
                                         MomentCase{2, "locate p1"}, MomentCase{3, "1.jpg"},
                                         MomentCase{4, "1.jpg"}, MomentCase{5, "locate p2"},
                                         MomentCase{6, "2.jpg"}, MomentCase{7, "2.jpg"},
                                         MomentCase{8, "Writing offline website"},
                                         MomentCase{9, "Writing transcripts"}, MomentCase{10, "flush"}));

class CancelledTooLate : public testing::TestWithParam<std::size_t> {};

TEST_P(CancelledTooLate, keepsTheAlbum) {
    CancelledExport run(GetParam());
    EXPECT_FALSE(run.run());
    EXPECT_THAT(run.fixture.destinationEntries(), ElementsAre(albumName));
    EXPECT_EQ(test::albumDefect(run.fixture.destination / albumName), "");
}

INSTANTIATE_TEST_SUITE_P(BehindTheLastCheck, CancelledTooLate, testing::Values(11, 12, 13));

struct WriterCase {
    const char* name;
    ExportOptions options;
    std::size_t event;
};

class CancelledBeforeAWriter : public testing::TestWithParam<WriterCase> {};

TEST_P(CancelledBeforeAWriter, leavesNothingInTheDestination) {
    CancelledExport run(GetParam().event, GetParam().options);
    EXPECT_TRUE(run.run());
    EXPECT_THAT(run.fixture.destinationEntries(), IsEmpty());
}

// Without transcripts nothing looks for a stop between the reports before the list of files does.
INSTANTIATE_TEST_SUITE_P(Table, CancelledBeforeAWriter,
                         testing::Values(WriterCase{"website", {false, false, false}, 8},
                                         WriterCase{"listOfFiles", {false, false, false}, 9},
                                         WriterCase{"JSON", {true, false, false}, 8},
                                         WriterCase{"Markdown", {false, true, false}, 9},
                                         WriterCase{"CSV", {false, false, true}, 9}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(CancelledExport, stopsWithinTheCopyOfALargeFile) {
    ExportFixture fixture(
        test::conversationNamed("Ana", {message("m1", "x", {attachment("a1", "1.mov", "p1")})}));
    fixture.addFile("p1", "x");
    fs::resize_file(fixture.loader->files["p1"], std::uintmax_t{4} << 30U); // a hole, which takes no room
    std::stop_source stop;
    std::jthread canceller;
    fixture.loader->onCall = [&](const std::string& call) {
        if (call != "locate p1") return;
        canceller = std::jthread([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            stop.request_stop();
        });
    };
    EXPECT_THROW(fixture.run(stop.get_token()), CancellationError);
    EXPECT_THAT(fixture.destinationEntries(), IsEmpty());
}

TEST(CancelledExport, stopsWithinTheDigestOfALargeFile) {
    ExportFixture fixture(
        test::conversationNamed("Ana", {message("m1", "x", {attachment("a1", "1.mov", "p1")})}));
    fixture.addFile("p1", "x");
    std::stop_source stop;
    std::jthread canceller;
    // The copy stands; it grows to a size that takes minutes before its digest is taken for the manifest.
    fixture.onReport = [&](const ExportProgress& report) {
        if (report.detail != "Writing transcripts") return;
        for (const auto& entry : fs::recursive_directory_iterator(fixture.destination)) {
            if (entry.path().filename() == "1.mov") fs::resize_file(entry.path(), std::uintmax_t{1} << 40U);
        }
        canceller = std::jthread([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            stop.request_stop();
        });
    };
    EXPECT_THROW(fixture.run(stop.get_token()), CancellationError);
    EXPECT_THAT(fixture.destinationEntries(), IsEmpty());
}

TEST(CancelledExport, touchesNothingWhenItIsStoppedWhileTheConversationLoads) {
    CancelledExport run(1);
    run.fixture.folder.write("Albums/.quillbook-staging-1/file", "x");
    EXPECT_TRUE(run.run());
    EXPECT_THAT(run.fixture.destinationEntries(), ElementsAre(".quillbook-staging-1"));
}

TEST(CancelledExport, doesNotReleaseTheFileWhoseCopyWasStopped) {
    CancelledExport run(2);
    run.run();
    EXPECT_THAT(run.fixture.loader->calls, ElementsAre("load chat-7", "locate p1"));
}

} // namespace
} // namespace quillbook
