#include "store/MessageDate.h"

#include <limits>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

struct DateCase {
    std::string_view name;
    std::int64_t raw;
    double seconds;
};

class MessageDateTest : public testing::TestWithParam<DateCase> {};

TEST_P(MessageDateTest, readsTheUnitFromTheMagnitude) {
    EXPECT_DOUBLE_EQ(messageDate(GetParam().raw).secondsSinceReferenceDate, GetParam().seconds);
}

INSTANTIATE_TEST_SUITE_P(Table, MessageDateTest,
                         testing::Values(DateCase{"zeroIsTheReferenceDate", 0, 0},
                                         DateCase{"largestSeconds", 999'999'999'999, 999'999'999'999.0},
                                         DateCase{"smallestNanoseconds", 1'000'000'000'000, 1'000.0},
                                         DateCase{"negativeSeconds", -999'999'999'999, -999'999'999'999.0},
                                         DateCase{"negativeNanoseconds", -1'000'000'000'000, -1'000.0},
                                         DateCase{"presentDay", 725'000'000'123'000'000, 725'000'000.123},
                                         DateCase{"leastInteger", std::numeric_limits<std::int64_t>::min(),
                                                  -9'223'372'036.854'775'8}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(MessageDateOfColumn, realsAreTruncatedFirst) {
    SQLiteRowPacker packer({"date"});
    packer.addReal(7.9);
    EXPECT_EQ(messageDate(packer.finishRow(), "date"), Date{7});
}

TEST(MessageDateOfColumn, noNumberGivesNothing) {
    SQLiteRowPacker packer({"text", "null", "huge"});
    packer.addText("7");
    packer.addNull();
    packer.addReal(1e300);
    const SQLiteRow row = packer.finishRow();
    for (const char* column : {"text", "null", "huge", "absent"})
        EXPECT_FALSE(messageDate(row, column)) << column;
}

} // namespace
} // namespace quillbook
