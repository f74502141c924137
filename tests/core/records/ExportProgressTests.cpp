#include "core/records/ExportProgress.h"

#include <limits>
#include <utility>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

using enum ExportStage;
constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();

double fraction(ExportStage stage, std::int64_t completed, std::int64_t total) {
    return ExportProgress{stage, completed, total, ""}.fractionCompleted();
}

struct FractionCase {
    const char* name;
    ExportStage stage;
    std::int64_t completed, total;
    double fraction;
};

class FractionCompleted : public testing::TestWithParam<FractionCase> {};

TEST_P(FractionCompleted, isAsTold) {
    const FractionCase& test = GetParam();
    EXPECT_DOUBLE_EQ(fraction(test.stage, test.completed, test.total), test.fraction);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FractionCompleted,
    testing::Values(FractionCase{"quarterOfTheAttachments", copyingAttachments, 3, 12, 0.25},
                    FractionCase{"startOfWriting", writingArchive, 0, 4, 0.85},
                    FractionCase{"end", finalizing, 1, 1, 1},
                    FractionCase{"nothingToPrepare", preparing, 0, 0, 0},
                    FractionCase{"moreThanAllAttachments", copyingAttachments, 9, 3, 0.85},
                    FractionCase{"prepared", preparing, 1, 1, 0.02},
                    FractionCase{"startOfReading", readingMessages, 0, 1, 0.02},
                    FractionCase{"read", readingMessages, 1, 1, 0.05},
                    FractionCase{"startOfCopying", copyingAttachments, 0, 7, 0.05},
                    FractionCase{"halfWritten", writingArchive, 2, 4, 0.90},
                    FractionCase{"startOfFinalizing", finalizing, 0, 1, 0.95},
                    FractionCase{"lessThanNothing", copyingAttachments, -3, 12, 0.05},
                    FractionCase{"noAttachments", copyingAttachments, 5, 0, 0.05},
                    FractionCase{"fewerThanNoAttachments", copyingAttachments, 5, -5, 0.05},
                    FractionCase{"greatestNumbers", finalizing, greatest, greatest, 1},
                    FractionCase{"greatestOfOne", finalizing, greatest, 1, 1},
                    FractionCase{"leastNumbers", finalizing, least, least, 0.95}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(FractionCompleted, neverLeavesItsStagesSlice) {
    constexpr double slack = 1e-12;
    const std::pair<ExportStage, std::pair<double, double>> slices[] = {{preparing, {0, 0.02}},
                                                                        {readingMessages, {0.02, 0.05}},
                                                                        {copyingAttachments, {0.05, 0.85}},
                                                                        {writingArchive, {0.85, 0.95}},
                                                                        {finalizing, {0.95, 1}}};
    for (const auto& [stage, bounds] : slices) {
        for (const std::int64_t completed :
             {least, std::int64_t{-1}, std::int64_t{0}, std::int64_t{1}, std::int64_t{2}, greatest}) {
            for (const std::int64_t total :
                 {least, std::int64_t{0}, std::int64_t{1}, std::int64_t{3}, greatest}) {
                EXPECT_GE(fraction(stage, completed, total), bounds.first - slack);
                EXPECT_LE(fraction(stage, completed, total), bounds.second + slack);
            }
        }
    }
}

TEST(FractionCompleted, isNeverMoreThanOne) {
    EXPECT_LE(fraction(finalizing, 3, 3), 1.0);
}

TEST(ExportStageTitle, isWhatTheUserCallsIt) {
    EXPECT_EQ(title(preparing), "Preparing");
    EXPECT_EQ(title(readingMessages), "Reading messages");
    EXPECT_EQ(title(copyingAttachments), "Copying attachments");
    EXPECT_EQ(title(writingArchive), "Writing archive");
    EXPECT_EQ(title(finalizing), "Finalizing");
}

} // namespace
} // namespace quillbook
