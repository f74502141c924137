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

TEST(Localized, aTranslationAnswersInsteadOfTheEnglish) {
    useTranslation([](std::string_view english) { return "[" + std::string(english) + "]"; });
    EXPECT_EQ(localizedFormat("{} of {}", 1, 2), "[1 of 2]");
    useTranslation({});
    EXPECT_EQ(localized("Back"), "Back");
}

} // namespace
} // namespace quillbook
