#include "core/text/SecretText.h"

#include <algorithm>
#include <memory>
#include <optional>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

constexpr std::string_view longSecret = "a password that does not fit into the string itself";

TEST(SecretTextTest, overwritingLeavesNothingInTheMemory) {
    std::string text(longSecret);
    const char* memory = text.data();
    overwrite(text);
    EXPECT_TRUE(text.empty());
    ASSERT_EQ(text.data(), memory) << "nothing moved";
    EXPECT_TRUE(std::all_of(memory, memory + text.capacity(), [](char each) { return each == '\0'; }));
}

TEST(SecretTextTest, whatAShorterTextLeftBehindItIsOverwrittenToo) {
    std::string text(longSecret);
    text.resize(3);
    overwrite(text);
    text.resize(longSecret.size());
    EXPECT_EQ(text, std::string(longSecret.size(), '\0'));
}

TEST(SecretTextTest, copiesShareOneText) {
    const SecretText secret("lake house");
    const std::optional<SecretText> copy = secret;
    EXPECT_EQ(copy->text(), "lake house");
    EXPECT_EQ(&copy->text(), &secret.text());
}

} // namespace
} // namespace quillbook
