#include "tests/export/ExportFixture.h"
#include "tests/support/ChildProcess.h"

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include <gmock/gmock.h>

namespace quillbook {
namespace {

namespace fs = std::filesystem;
using test::ExportFixture;
using Clock = std::chrono::steady_clock;

/// A conversation whose export takes a while in each of its stages.
struct LongExport : ExportFixture {
    LongExport() : ExportFixture(test::conversationNamed("Ana")) {
        std::mt19937 random(3);
        for (int index = 0; index < 3'000; ++index) {
            auto& messages = loader->conversation.messages;
            messages.push_back(test::message("m" + std::to_string(index), std::string(random() % 300, 'x')));
            if (index % 20 != 0) continue;
            const std::string path = "p" + std::to_string(index);
            addFile(path, std::string(1 + random() % 200'000, 'q'));
            messages.back().attachments = {test::attachment("a" + std::to_string(index), "photo.jpg", path)};
        }
        options = {.includeJSON = true, .includeMarkdown = true, .includeCSV = true};
    }

    /// Albums that are visible but not sound.
    std::vector<std::string> defects() const {
        std::vector<std::string> defects;
        for (const auto& name : destinationEntries()) {
            if (name.starts_with('.')) continue;
            const std::string defect = test::albumDefect(destination / name);
            if (!defect.empty()) defects.push_back(defect);
        }
        return defects;
    }

    bool hasStagingFolder() const {
        const auto entries = destinationEntries();
        return !entries.empty() && entries.front().starts_with(".quillbook-staging-");
    }
};

TEST(KilledExport, leavesNoAlbumThatIsNotWholeAndIsSweptByTheNext) {
    LongExport fixture;
    const auto start = Clock::now();
    ASSERT_TRUE(test::awaitChild(test::startChild([&] { fixture.run(); })));
    const auto wholeTime = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
    std::mt19937 random(20'240'501);
    int leftovers = 0;
    for (int round = 0; round < 40; ++round) {
        fs::remove_all(fixture.destination / "Ana — 2024-05-01 12.34.56");
        const pid_t child = test::startChild([&] { fixture.run(); });
        std::this_thread::sleep_for(wholeTime * static_cast<int>(random() % 1'100) / 1'000);
        ::kill(child, SIGKILL);
        test::awaitChild(child);
        ASSERT_THAT(fixture.defects(), testing::IsEmpty()) << "round " << round;
        leftovers += fixture.hasStagingFolder() ? 1 : 0;
    }
    EXPECT_GT(leftovers, 5) << "hardly any export was killed in the middle";
    fixture.run();
    EXPECT_FALSE(fixture.hasStagingFolder());
    EXPECT_THAT(fixture.defects(), testing::IsEmpty());
}

} // namespace
} // namespace quillbook
