#include "typedstream/Archivable.h"

#include <limits>
#include <unordered_set>

#include <gmock/gmock.h>

namespace quillbook::typedstream {
namespace {

struct StringCase {
    const char* name;
    std::string className;
    std::vector<Object> values;
    std::optional<std::string> expected;
};

class StringReader : public testing::TestWithParam<StringCase> {};

TEST_P(StringReader, GivesTextThatAPersonCouldHaveWritten) {
    EXPECT_EQ(stringValue(ObjectItem{{GetParam().className, 1}, GetParam().values}), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StringReader,
    testing::Values(
        StringCase{"string", "NSString", {"Tea at four"}, "Tea at four"},
        StringCase{"mutableString", "NSMutableString", {"Tea at four"}, "Tea at four"},
        StringCase{"otherClass", "NSNumber", {"Tea at four"}, std::nullopt},
        StringCase{"noValues", "NSString", {}, std::nullopt},
        StringCase{"firstValueIsNoString", "NSString", {std::int64_t{1}, "Tea"}, std::nullopt},
        StringCase{"keyConstant", "NSString", {"__kIMMessagePartName"}, std::nullopt},
        StringCase{"keyConstantInside", "NSString", {"a __kIMMessagePartName"}, "a __kIMMessagePartName"},
        StringCase{"holdsAttribute", "NSString", {"MyAttributeName"}, std::nullopt},
        StringCase{"holdsLowerCaseAttribute", "NSString", {"my attribute"}, "my attribute"},
        StringCase{"holdsNS", "NSString", {"TENNSEE"}, std::nullopt},
        StringCase{"empty", "NSString", {""}, std::nullopt},
        StringCase{"signsOnly", "NSString", {"?!…"}, std::nullopt},
        StringCase{"digitOnly", "NSString", {"?7!"}, "?7!"},
        StringCase{"letterOfAnotherScript", "NSString", {"শ"}, "শ"},
        StringCase{"romanNumeralIsANumber", "NSString", {"Ⅷ"}, "Ⅷ"},
        StringCase{"variationSelectorIsNoLetter", "NSString", {"❤️"}, std::nullopt},
        StringCase{"emojiIsNoLetter", "NSString", {"😀"}, std::nullopt}),
    [](const auto& entry) { return std::string(entry.param.name); });

TEST(StringReader, GivesNothingForItemsWithoutAClass) {
    EXPECT_EQ(stringValue(DataItem{{"Tea"}}), std::nullopt);
    EXPECT_EQ(stringValue(Class{"NSString", 1}), std::nullopt);
    EXPECT_EQ(stringValue(Placeholder()), std::nullopt);
}

TEST(NumberReaders, GiveTheFirstValueOfTheKindAskedFor) {
    const Archivable negative = ObjectItem{{"NSNumber", 0}, {std::int64_t{-3}}};
    const Archivable positive = ObjectItem{{"NSNumber", 0}, {std::uint64_t{3}}};
    EXPECT_EQ(signedIntegerValue(negative), -3);
    EXPECT_EQ(unsignedIntegerValue(negative), std::nullopt);
    EXPECT_EQ(unsignedIntegerValue(positive), 3U);
    EXPECT_EQ(signedIntegerValue(positive), std::nullopt);
}

TEST(NumberReaders, GiveNothingForOtherClassesAndKinds) {
    EXPECT_EQ(signedIntegerValue(ObjectItem{{"NSString", 1}, {std::int64_t{1}}}), std::nullopt);
    EXPECT_EQ(signedIntegerValue(ObjectItem{{"NSNumber", 0}, {}}), std::nullopt);
    EXPECT_EQ(signedIntegerValue(ObjectItem{{"NSNumber", 0}, {1.0}}), std::nullopt);
    EXPECT_EQ(unsignedIntegerValue(DataItem{{std::uint64_t{1}}}), std::nullopt);
}

std::vector<Archivable> differentItems() {
    const Class type{"NSString", 1};
    return {Placeholder(),
            type,
            Class{"NSString", 2},
            Class{"NSObject", 1},
            ObjectItem{type, {}},
            ObjectItem{type, {"a"}},
            ObjectItem{type, {"a", "b"}},
            DataItem{{}},
            DataItem{{"a"}},
            DataItem{{std::int64_t{7}}},
            DataItem{{std::uint64_t{7}}},
            DataItem{{std::uint8_t{7}}},
            DataItem{{7.0}},
            DataItem{{7.0F}},
            DataItem{{ByteArray{{7}}}},
            DataItem{{type}},
            TypeItem{{}},
            TypeItem{{PlainType::object}},
            TypeItem{{PlainType::signedInt}},
            TypeItem{{ArrayType{7}}},
            TypeItem{{UnknownType{7}}},
            TypeItem{{StringType{"NSString"}}}};
}

TEST(Archivable, ComparesByValue) {
    const auto items = differentItems();
    const auto copies = items;
    for (std::size_t left = 0; left < items.size(); ++left) {
        for (std::size_t right = 0; right < items.size(); ++right) {
            EXPECT_EQ(items[left] == copies[right], left == right) << left << " " << right;
        }
    }
}

TEST(Archivable, HashesByValue) {
    const auto items = differentItems();
    const std::unordered_set<Archivable> set(items.begin(), items.end());
    EXPECT_EQ(set.size(), items.size());
    for (const Archivable& item : differentItems())
        EXPECT_EQ(set.count(item), 1U);
}

TEST(Archivable, HashesTypesAndValuesToo) {
    EXPECT_EQ(std::hash<Type>()(ArrayType{4}), std::hash<Type>()(ArrayType{4}));
    EXPECT_NE(std::hash<Type>()(ArrayType{4}), std::hash<Type>()(ArrayType{5}));
    EXPECT_EQ(std::hash<Object>()(ByteArray{{1, 2}}), std::hash<Object>()(ByteArray{{1, 2}}));
    EXPECT_NE(std::hash<Object>()(ByteArray{{1, 2}}), std::hash<Object>()(ByteArray{{2, 1}}));
}

} // namespace
} // namespace quillbook::typedstream
