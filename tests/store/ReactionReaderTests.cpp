#include "store/ReactionReader.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

struct TypeCase {
    std::int64_t type;
    ReactionKind kind;
    bool isRemoval;
};

class ReactionType : public testing::TestWithParam<TypeCase> {};

TEST_P(ReactionType, givesKindAndRemoval) {
    EXPECT_TRUE(isReactionType(GetParam().type));
    EXPECT_EQ(reactionKind(GetParam().type), GetParam().kind);
    EXPECT_EQ(isReactionRemoval(GetParam().type), GetParam().isRemoval);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ReactionType,
    testing::Values(
        TypeCase{2000, ReactionKind::loved, false}, TypeCase{2001, ReactionKind::liked, false},
        TypeCase{2002, ReactionKind::disliked, false}, TypeCase{2003, ReactionKind::laughed, false},
        TypeCase{2004, ReactionKind::emphasized, false}, TypeCase{2005, ReactionKind::questioned, false},
        TypeCase{2006, ReactionKind::unknown, false}, TypeCase{2999, ReactionKind::unknown, false},
        TypeCase{3000, ReactionKind::loved, true}, TypeCase{3005, ReactionKind::questioned, true},
        TypeCase{3006, ReactionKind::unknown, true}, TypeCase{3999, ReactionKind::unknown, true},
        TypeCase{9'000'000'000, ReactionKind::unknown, true}),
    [](const auto& test) { return std::to_string(test.param.type); });

TEST(ReactionTypeBelow2000, isAMessage) {
    for (const std::optional<std::int64_t> type :
         {std::optional<std::int64_t>(), {0}, {2}, {1000}, {1999}, {-2000}}) {
        EXPECT_FALSE(isReactionType(type)) << type.value_or(-1);
    }
}

struct TargetCase {
    std::string_view name;
    std::optional<std::string_view> associated;
    std::optional<std::string_view> target;
};

class ReactionTarget : public testing::TestWithParam<TargetCase> {};

TEST_P(ReactionTarget, isTheGUIDWithoutItsPrefix) {
    EXPECT_EQ(reactionTargetGUID(GetParam().associated), GetParam().target);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ReactionTarget,
    testing::Values(TargetCase{"absent", std::nullopt, std::nullopt}, TargetCase{"empty", "", std::nullopt},
                    TargetCase{"bare", "GUID", "GUID"}, TargetCase{"part", "p:0/GUID", "GUID"},
                    TargetCase{"laterPart", "p:12/GUID", "GUID"}, TargetCase{"balloon", "bp:GUID", "GUID"},
                    TargetCase{"balloonOfAPart", "p:1/bp:GUID", "GUID"},
                    TargetCase{"trailingSlashes", "p:0/GUID//", "GUID"},
                    TargetCase{"onlySlashes", "//", "//"}, TargetCase{"onlyBalloon", "bp:", ""}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace quillbook
