#include "core/records/DescribedError.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

class InkError final : public DescribedError {
public:
    std::string description() const override { return "The ink is dry."; }
};

TEST(DescribedError, whatIsItsDescription) {
    EXPECT_STREQ(InkError().what(), "The ink is dry.");
}

TEST(DescribedError, keepsItsWordsWhenThrownAndCaughtAsAnyError) {
    try {
        throw InkError();
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "The ink is dry.");
        EXPECT_EQ(describe(error), "The ink is dry.");
    }
}

TEST(Describe, givesTheStandardLibrarysWordsForItsErrors) {
    EXPECT_EQ(describe(std::runtime_error("no such pen")), "no such pen");
}

} // namespace
} // namespace quillbook
