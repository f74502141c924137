#include "core/text/CountText.h"

#include <limits>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

TEST(CountTextTest, digitsStandInGroups) {
    EXPECT_EQ(CountText("en_US.UTF-8").grouped(1'204), "1,204");
    EXPECT_EQ(CountText("en_US.UTF-8").grouped(12'345'678), "12,345,678");
    EXPECT_EQ(CountText("de_DE.UTF-8").grouped(1'204), "1.204");
}

TEST(CountTextTest, smallNumbersAreBare) {
    EXPECT_EQ(CountText("C").grouped(0), "0");
    EXPECT_EQ(CountText("C").grouped(999), "999");
}

TEST(CountTextTest, theLeastAndGreatestNumbersAreWritten) {
    EXPECT_EQ(CountText("C").grouped(std::numeric_limits<std::int64_t>::max()), "9,223,372,036,854,775,807");
    EXPECT_EQ(CountText("C").grouped(std::numeric_limits<std::int64_t>::min()), "-9,223,372,036,854,775,808");
}

} // namespace
} // namespace quillbook
