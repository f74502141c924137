#include "core/text/UTF8.h"
#include "core/text/UnicodeCategories.h"
#include "platform/SystemVersion.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

TEST(SystemVersion, saysSomething) {
    EXPECT_FALSE(systemVersion().empty());
}

TEST(SystemVersion, isOneLineOfValidText) {
    const std::string version = systemVersion();
    EXPECT_TRUE(isValidUTF8(version));
    EXPECT_EQ(version.find_first_of("\n\"="), std::string::npos);
    EXPECT_EQ(trimmedWhitespace(version), version);
}

} // namespace
} // namespace quillbook
