#include "tools/writing/DeterministicRandom.h"

#include <set>

#include <gmock/gmock.h>

namespace quillbook::sample {
namespace {

using testing::MatchesRegex;

// The first output of std::mt19937_64 is fixed by the C++ standard, and the mixing of seed and subject by us:
// these values must be the same on every machine.
TEST(DeterministicRandom, givesTheSameValuesEverywhere) {
    DeterministicRandom random(1, "a subject");
    EXPECT_EQ(random.next(), 13443831769445547865ULL);
    EXPECT_EQ(random.uuid(), "B8C8B02F-4A41-42BD-A467-A2587F982FDA");
}

TEST(DeterministicRandom, hasAStreamForEachSeed) {
    EXPECT_NE(DeterministicRandom(1, "subject").next(), DeterministicRandom(2, "subject").next());
}

TEST(DeterministicRandom, hasAStreamForEachSubject) {
    EXPECT_NE(DeterministicRandom(1, "one").next(), DeterministicRandom(1, "two").next());
}

TEST(DeterministicRandom, reachesBothEndsOfARangeAndNothingElse) {
    DeterministicRandom random(3, "range");
    std::set<std::int64_t> seen;
    for (int draw = 0; draw < 300; ++draw)
        seen.insert(random.between(-2, 2));
    EXPECT_EQ(seen, (std::set<std::int64_t>{-2, -1, 0, 1, 2}));
}

TEST(DeterministicRandom, staysBelowOneWithFractions) {
    DeterministicRandom random(3, "fractions");
    for (int draw = 0; draw < 1'000; ++draw) {
        const double fraction = random.fraction();
        EXPECT_GE(fraction, 0);
        EXPECT_LT(fraction, 1);
    }
}

TEST(DeterministicRandom, makesUUIDsOfVersionFour) {
    DeterministicRandom random(5, "uuids");
    const std::string hex = "[0-9A-F]";
    for (int draw = 0; draw < 100; ++draw) {
        EXPECT_THAT(random.uuid(), MatchesRegex(hex + "{8}-" + hex + "{4}-4" + hex + "{3}-[89AB]" + hex +
                                                "{3}-" + hex + "{12}"));
    }
}

} // namespace
} // namespace quillbook::sample
