#include "core/interfaces/CacheRecovery.h"
#include "core/text/ByteCountText.h"

#include <limits>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

RecoveryReport reportOf(const std::vector<std::int64_t>& sizes) {
    RecoveryReport report;
    for (const std::int64_t size : sizes) {
        RecoveryCandidate candidate;
        candidate.bytes = size;
        report.candidates.push_back(candidate);
    }
    return report;
}

std::string size(std::int64_t bytes) {
    return ByteCountText::user().fileSize(bytes);
}

TEST(RecoverySummary, saysWhereNothingWasFound) {
    RecoveryReport report;
    report.unmatchedCount = 4;
    EXPECT_EQ(report.summary(), "No recoverable copies were found in this Mac's Messages caches.");
}

TEST(RecoverySummary, tellsTheNumberAndTheSumOfTheSizes) {
    EXPECT_EQ(reportOf({83'247, 3'482'110, 1}).summary(),
              "3 attachments (" + size(3'565'358) + ") can be recovered from this Mac's Messages caches.");
}

TEST(RecoverySummary, hasThePluralForOneToo) {
    EXPECT_EQ(reportOf({512}).summary(),
              "1 attachments (" + size(512) + ") can be recovered from this Mac's Messages caches.");
}

TEST(RecoverySummary, writesItsNumberWithoutSeparators) {
    EXPECT_EQ(reportOf(std::vector<std::int64_t>(1'234, 1'000)).summary(),
              "1234 attachments (" + size(1'234'000) + ") can be recovered from this Mac's Messages caches.");
}

TEST(RecoverySummary, staysAtTheGreatestSumWhereItCannotBeCounted) {
    constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(reportOf({greatest, greatest, 1}).summary(),
              "3 attachments (" + size(greatest) + ") can be recovered from this Mac's Messages caches.");
}

} // namespace
} // namespace quillbook
