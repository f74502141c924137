#include "shell/adapter/Words.h"

#include <string>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

TEST(ShownText, isTheTextItselfWhereThatIsOfAnyUse) {
    const std::string text = "Ada\nQuill 👩‍👩‍👧 <b>" + std::string(3'000, 'a');
    EXPECT_EQ(shownText(text).toStdString(), text);
}

TEST(ShownText, isShortenedBetweenCharacters) {
    std::string text;
    while (text.size() < 1'000'000)
        text += "👩‍👩‍👧";
    const QString shown = shownText(text);
    EXPECT_LT(shown.size(), 4'100);
    EXPECT_TRUE(shown.endsWith(QStringLiteral("👧…")));
}

TEST(ShownName, isTheNameItselfWhereThatFits) {
    EXPECT_EQ(shownName("Ada’s  iPhone 📱"), QStringLiteral("Ada’s  iPhone 📱"));
}

TEST(ShownName, staysInOneLine) {
    EXPECT_EQ(shownName("Ada\r\nQuill\t\u2028\u2029\u0085x"), QStringLiteral("Ada  Quill    x"));
    EXPECT_EQ(shownName(std::string("a\0b", 3)), QStringLiteral("a b"));
}

TEST(ShownName, isShortened) {
    EXPECT_EQ(shownName(std::string(100'000, 'W')).toStdString(), std::string(120, 'W') + "…");
}

} // namespace
} // namespace quillbook
