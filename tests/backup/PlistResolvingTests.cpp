#include "tests/backup/PlistFixture.h"

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using namespace std::string_literals;
using namespace test;

struct ResolveCase {
    const char* name;
    PlistValue value;
    std::optional<PlistValue> expected;
};

class Resolve : public testing::TestWithParam<ResolveCase> {};

/// Objects 0 to 5, and the archive's objects 0 to 4.
TEST_P(Resolve, FollowsAReferenceToItsObject) {
    const std::vector<PlistValue> objects = {string("object 0"), uid(1), uid(2), uid(3), uid(99), uid(4)};
    const std::vector<PlistValue> archive = {uid(0), uid(0), string("archived 2"), uid(1), uid(77)};
    EXPECT_EQ(resolve(GetParam().value, objects, archive), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Resolve,
    testing::Values(
        ResolveCase{"aValueIsItself", string("z"), string("z")}, ResolveCase{"nullIsItself", null(), null()},
        ResolveCase{"anObjectOfTheList", uid(0), string("object 0")},
        ResolveCase{"anArchivedObjectThroughTheList", uid(1), string("object 0")},
        ResolveCase{"anArchivedValueThatIsNoReference", uid(2), string("archived 2")},
        ResolveCase{"noThirdStep", uid(3), uid(1)}, ResolveCase{"outsideOfTheArchive", uid(4), std::nullopt},
        ResolveCase{"anArchivedReferenceOutOfTheList", uid(5), uid(77)},
        ResolveCase{"outsideOfBoth", uid(6), std::nullopt}, ResolveCase{"belowZero", uid(-1), std::nullopt}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(ResolveOutsideOfTheList, TakesTheNumberForOneOfTheArchive) {
    const std::vector<PlistValue> objects = {string("object 0")};
    const std::vector<PlistValue> archive = {null(), null(), uid(0), string("archived 3"), uid(-5)};
    EXPECT_EQ(resolve(uid(2), objects, archive), string("object 0"));
    EXPECT_EQ(resolve(uid(3), objects, archive), string("archived 3"));
    EXPECT_EQ(resolve(uid(4), objects, archive), uid(-5));
}

TEST(ResolveWithoutObjects, GivesNothing) {
    EXPECT_EQ(resolve(uid(0), {}, {}), std::nullopt);
}

TEST(ResolveOfALoop, EndsAfterTwoSteps) {
    const std::vector<PlistValue> objects = {uid(0)};
    const std::vector<PlistValue> archive = {uid(0)};
    EXPECT_EQ(resolve(uid(0), objects, archive), uid(0));
}

} // namespace
} // namespace quillbook
