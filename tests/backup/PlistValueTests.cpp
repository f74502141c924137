#include "tests/backup/PlistFixture.h"

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using namespace std::string_literals;
using namespace test;

struct ValueCase {
    const char* name;
    PlistValue value;
    std::size_t index;
};

std::vector<ValueCase> oneOfEachCase() {
    return {{"boolean", boolean(false), 0},
            {"integer", integer(0), 1},
            {"real", real(0), 2},
            {"string", string(""), 3},
            {"data", blob(""), 4},
            {"uid", uid(0), 5},
            {"array", array({}), 6},
            {"dictionary", dictionary({}), 7},
            {"null", null(), 8}};
}

class PlistValueCase : public testing::TestWithParam<ValueCase> {};

TEST_P(PlistValueCase, StandsAtItsPlaceAndEqualsItselfAlone) {
    EXPECT_EQ(GetParam().value.content.index(), GetParam().index);
    for (const ValueCase& other : oneOfEachCase())
        EXPECT_EQ(GetParam().value == other.value, GetParam().index == other.index) << other.name;
}

INSTANTIATE_TEST_SUITE_P(Table, PlistValueCase, testing::ValuesIn(oneOfEachCase()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(PlistValue, IsComparedByWhatItHolds) {
    EXPECT_EQ(string("tea"), string("tea"));
    EXPECT_NE(string("tea"), string("Tea"));
    EXPECT_NE(blob("a"), blob("b"));
    EXPECT_NE(uid(1), uid(2));
    EXPECT_EQ(array({uid(1), string("a")}), array({uid(1), string("a")}));
    EXPECT_NE(array({uid(1)}), array({uid(1), uid(1)}));
    EXPECT_EQ(dictionary({{"a"s, uid(1)}, {"b"s, uid(2)}}), dictionary({{"b"s, uid(2)}, {"a"s, uid(1)}}));
    EXPECT_NE(dictionary({{"a"s, uid(1)}}), dictionary({{"a"s, uid(2)}}));
}

TEST(PlistEntries, FindsAKeyByItsWholeText) {
    const auto value = dictionary({{"Size"s, integer(3)}, {""s, integer(4)}, {"Siz"s, integer(5)}});
    const PlistDictionary& entries = *value.as<PlistDictionary>();
    EXPECT_EQ(*entries->find("Size"), integer(3));
    EXPECT_EQ(*entries->find(""), integer(4));
    EXPECT_EQ(entries->find("Sizes"), nullptr);
    EXPECT_EQ(entries->find("size"), nullptr);
}

} // namespace
} // namespace quillbook
