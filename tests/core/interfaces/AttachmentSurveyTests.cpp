#include "core/interfaces/AttachmentSurvey.h"
#include "core/interfaces/SaturatingSum.h"

#include <limits>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();

struct SummaryCase {
    const char* name;
    std::int64_t local;
    std::int64_t missing;
    const char* text;
};

class StorageSummary : public testing::TestWithParam<SummaryCase> {};

TEST_P(StorageSummary, tellsWhatIsOnThisMac) {
    EXPECT_EQ(storageSummary(GetParam().local, GetParam().missing), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StorageSummary,
    testing::Values(
        SummaryCase{"noAttachments", 0, 0, "This conversation has no attachments."},
        SummaryCase{"allOfThem", 31, 0, "All 31 attachments are on this Mac and will be included."},
        SummaryCase{"oneHasThePluralToo", 1, 0, "All 1 attachments are on this Mac and will be included."},
        SummaryCase{"thousandsHaveNoSeparator", 12'345, 0,
                    "All 12345 attachments are on this Mac and will be included."},
        SummaryCase{"some", 28, 3,
                    "28 of 31 attachments are on this Mac. 3 are not, because Messages in iCloud keeps them "
                    "in iCloud rather than here. Opening the conversation in Messages and scrolling back "
                    "through it prompts macOS to download them. An iPhone backup on this Mac is often the "
                    "fuller source; see How to Get Your Messages in the Back Up menu."},
        SummaryCase{"none", 0, 1,
                    "0 of 1 attachments are on this Mac. 1 are not, because Messages in iCloud keeps them "
                    "in iCloud rather than here. Opening the conversation in Messages and scrolling back "
                    "through it prompts macOS to download them. An iPhone backup on this Mac is often the "
                    "fuller source; see How to Get Your Messages in the Back Up menu."},
        SummaryCase{"moreThanCanBeCounted", greatest, 1,
                    "9223372036854775807 of 9223372036854775807 attachments are on this Mac. 1 are not, "
                    "because Messages in iCloud keeps them in iCloud rather than here. Opening the "
                    "conversation in Messages and scrolling back through it prompts macOS to download them. "
                    "An iPhone backup on this Mac is often the fuller source; see How to Get Your Messages "
                    "in the Back Up menu."}),
    [](const auto& test) { return std::string(test.param.name); });

struct SumCase {
    const char* name;
    std::int64_t one;
    std::int64_t other;
    std::int64_t sum;
};

class SaturatingSum : public testing::TestWithParam<SumCase> {};

TEST_P(SaturatingSum, staysWithinTheRange) {
    EXPECT_EQ(saturatingSum(GetParam().one, GetParam().other), GetParam().sum);
    EXPECT_EQ(saturatingSum(GetParam().other, GetParam().one), GetParam().sum);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SaturatingSum,
    testing::Values(SumCase{"usual", 28, 3, 31}, SumCase{"ofBothSigns", least, greatest, -1},
                    SumCase{"justWithin", greatest - 1, 1, greatest}, SumCase{"above", greatest, 1, greatest},
                    SumCase{"farAbove", greatest, greatest, greatest},
                    SumCase{"justWithinBelow", least + 1, -1, least}, SumCase{"below", least, -1, least},
                    SumCase{"farBelow", least, least, least}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace quillbook
