#include "core/text/Localization.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

TEST(Localized, englishTextStandsInForItself) {
    EXPECT_EQ(localized("Cancelling…"), "Cancelling…");
}

TEST(LocalizedFormat, takesValuesInOrder) {
    EXPECT_EQ(localizedFormat("{} of {}", 3, "twelve"), "3 of twelve");
}

TEST(LocalizedFormat, valuesAreNoFormats) {
    EXPECT_EQ(localizedFormat("“{}”", "{} {{ %s"), "“{} {{ %s”");
}

} // namespace
} // namespace quillbook
