#include "core/text/Date.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

TEST(Date, countsFromTheReferenceDate) {
    EXPECT_EQ(Date::fromUnixSeconds(978'307'200).secondsSinceReferenceDate, 0);
    EXPECT_EQ(Date{0}.unixSeconds(), 978'307'200);
}

TEST(Date, comesBackFromUnixSeconds) {
    EXPECT_EQ(Date::fromUnixSeconds(Date{736'259'696.5}.unixSeconds()), Date{736'259'696.5});
}

TEST(Date, isOrdered) {
    EXPECT_LT(Date{-1}, Date{0});
    EXPECT_LT(Date{0}, Date{0.001});
}

TEST(Date, nowIsTheSystemsClock) {
    using std::chrono::duration;
    const auto systemSeconds = [] {
        return duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    };
    const double before = systemSeconds();
    const double now = Date::now().unixSeconds();
    EXPECT_GE(now, before - 0.001);
    EXPECT_LE(now, systemSeconds() + 0.001);
}

} // namespace
} // namespace quillbook
