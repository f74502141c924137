#include "core/records/SourceID.h"

#include <unordered_set>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

TEST(SourceID, isComparedAsItsText) {
    EXPECT_EQ(SourceID{"10"}, SourceID{"10"});
    EXPECT_NE(SourceID{"10"}, SourceID{"9"});
    EXPECT_LT(SourceID{"10"}, SourceID{"9"});
}

TEST(SourceID, isHashedAsItsText) {
    const std::unordered_set<SourceID> ids{SourceID{"1"}, SourceID{"2"}, SourceID{"1"}};
    EXPECT_EQ(ids.size(), 2U);
    EXPECT_TRUE(ids.contains(SourceID{"2"}));
}

} // namespace
} // namespace quillbook
