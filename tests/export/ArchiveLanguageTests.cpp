#include "export/ArchiveLanguage.h"

#include <vector>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

struct LanguageCase {
    const char* name;
    std::vector<std::string> preferred;
    std::string_view expected;
};

class PickArchiveLanguage : public testing::TestWithParam<LanguageCase> {};

TEST_P(PickArchiveLanguage, takesTheFirstThatTheWebsiteSpeaks) {
    EXPECT_EQ(pickArchiveLanguage(GetParam().preferred), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, PickArchiveLanguage,
    testing::Values(
        LanguageCase{"none", {}, "en"}, LanguageCase{"exact", {"pt-PT"}, "pt-PT"},
        LanguageCase{"exactInOtherCase", {"PT-pt"}, "pt-PT"},
        LanguageCase{"exactBeforePrimary", {"es-ES"}, "es-ES"},
        LanguageCase{"otherSpanish", {"es-AR"}, "es-MX"}, LanguageCase{"spanishAlone", {"es"}, "es-MX"},
        LanguageCase{"portugueseAlone", {"pt"}, "pt-BR"},
        LanguageCase{"traditionalChinese", {"zh-Hant"}, "zh-Hans"},
        LanguageCase{"chineseAlone", {"zh"}, "zh-Hans"},
        LanguageCase{"chineseInLowerCase", {"zh-hans"}, "zh-Hans"},
        LanguageCase{"austrianGerman", {"de-AT"}, "de"}, LanguageCase{"germanInUpperCase", {"DE-AT"}, "de"},
        LanguageCase{"britishEnglish", {"en-GB", "de"}, "en"}, LanguageCase{"norwegian", {"nb-NO"}, "en"},
        LanguageCase{"swedishThenGerman", {"sv", "de"}, "de"},
        LanguageCase{"firstOfSeveral", {"uk", "hi"}, "uk"}, LanguageCase{"emptyTag", {"", "fr"}, "fr"},
        LanguageCase{"hyphensAlone", {"--", "fr"}, "fr"}, LanguageCase{"hyphenFirst", {"-it-CH"}, "it"},
        LanguageCase{"hyphenLast", {"ko-"}, "ko"}, LanguageCase{"longerWord", {"idx", "ja"}, "ja"},
        LanguageCase{"shorterWord", {"z", "ru"}, "ru"}, LanguageCase{"notATag", {"<script>"}, "en"}),
    [](const auto& each) { return std::string(each.param.name); });

class TableLanguage : public testing::TestWithParam<std::string> {};

TEST_P(TableLanguage, isTakenAsItStands) {
    EXPECT_EQ(pickArchiveLanguage(std::vector{GetParam()}), GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, TableLanguage,
                         testing::Values("en", "es-MX", "es-ES", "pt-BR", "pt-PT", "ja", "de", "zh-Hans",
                                         "fr", "ko", "it", "ru", "id", "hi", "uk"));

} // namespace
} // namespace quillbook
