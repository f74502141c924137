#include "store/KeyedArchiveText.h"
#include "tests/store/KeyedArchiveFixture.h"

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using test::archivedAttributedString;
using test::BinaryPropertyListBuilder;
using test::classDescription;
using test::keyedArchive;
using List = BinaryPropertyListBuilder;
using Text = std::optional<std::string>;

Text textOf(std::string_view archive) {
    return keyedArchiveText({reinterpret_cast<const std::uint8_t*>(archive.data()), archive.size()});
}

// ---- Attributed strings

TEST(KeyedArchiveText, ReadsAnAttributedStringOfASCII) {
    EXPECT_EQ(textOf(archivedAttributedString([](List& list) { return list.ascii("Tea at four"); })),
              "Tea at four");
}

TEST(KeyedArchiveText, ReadsAnAttributedStringOfUTF16) {
    EXPECT_EQ(textOf(archivedAttributedString([](List& list) { return list.utf16(u"Zoë 🌷\uFFFC"); })),
              "Zoë 🌷\uFFFC");
}

TEST(KeyedArchiveText, TakesControlCharactersAsTheyAre) {
    EXPECT_EQ(textOf(archivedAttributedString([](List& list) { return list.utf16(u"a\u0001b"); })),
              "a\u0001b");
}

TEST(KeyedArchiveText, TakesAnEmptyStringAsItIs) {
    EXPECT_EQ(textOf(archivedAttributedString([](List& list) { return list.ascii(""); })), "");
}

TEST(KeyedArchiveText, RepairsAStringThatIsNoUnicode) {
    EXPECT_EQ(textOf(archivedAttributedString([](List& list) {
                  return list.ascii("a\xFF"
                                    "b");
              })),
              "a\uFFFD"
              "b");
}

struct ClassCase {
    const char* name;
    std::vector<std::string_view> classes;
    Text expected;
};

class AttributedClass : public testing::TestWithParam<ClassCase> {};

/// An attributed string whose characters are a mutable string.
std::string archiveOfClass(const std::vector<std::string_view>& classes) {
    List list;
    const std::size_t attributed = list.dictionary({{"NSString", list.uid(2)}, {"$class", list.uid(3)}});
    const std::size_t characters =
        list.dictionary({{"NS.string", list.ascii("Tea")}, {"$class", list.uid(4)}});
    const std::size_t type = classDescription(list, classes);
    const std::size_t stringType = classDescription(list, {"NSMutableString", "NSString", "NSObject"});
    return keyedArchive(list, {attributed, characters, type, stringType}, list.uid(1));
}

TEST_P(AttributedClass, DecidesWhetherTheTextCounts) {
    EXPECT_EQ(textOf(archiveOfClass(GetParam().classes)), GetParam().expected);
}

const auto nameOf = [](const auto& entry) { return std::string(entry.param.name); };
INSTANTIATE_TEST_SUITE_P(
    Table, AttributedClass,
    testing::Values(ClassCase{"attributed", {"NSAttributedString", "NSObject"}, "Tea"},
                    ClassCase{"mutableAttributed",
                              {"NSMutableAttributedString", "NSAttributedString", "NSObject"},
                              "Tea"},
                    ClassCase{"subclass", {"LetterText", "NSAttributedString", "NSObject"}, "Tea"},
                    ClassCase{"other", {"NSDictionary", "NSObject"}, std::nullopt}),
    nameOf);

// ---- Plain strings

TEST(KeyedArchiveText, ReadsAPlainString) {
    List list;
    EXPECT_EQ(textOf(keyedArchive(list, {list.ascii("Tea")}, list.uid(1))), "Tea");
}

struct FieldCase {
    const char* name;
    std::string_view className;
    std::string_view field;
    std::size_t (*value)(List&);
    Text expected;
};

class StringField : public testing::TestWithParam<FieldCase> {};

TEST_P(StringField, HoldsTheCharacters) {
    List list;
    const std::size_t value = GetParam().value(list);
    const std::size_t object = list.dictionary({{GetParam().field, value}, {"$class", list.uid(2)}});
    const std::size_t type = classDescription(list, {GetParam().className, "NSObject"});
    const std::size_t behind = list.ascii("Tea");
    EXPECT_EQ(textOf(keyedArchive(list, {object, type, behind}, list.uid(1))), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StringField,
    testing::Values(
        FieldCase{"string", "NSString", "NS.string", [](List& list) { return list.ascii("Tea"); }, "Tea"},
        FieldCase{"mutableString", "NSMutableString", "NS.string",
                  [](List& list) { return list.ascii("Tea"); }, "Tea"},
        FieldCase{"stringByReference", "NSString", "NS.string", [](List& list) { return list.uid(3); },
                  "Tea"},
        FieldCase{"bytes", "NSString", "NS.bytes", [](List& list) { return list.data("Zo\xC3\xAB"); }, "Zoë"},
        FieldCase{"bytesThatAreNoUTF8", "NSString", "NS.bytes", [](List& list) { return list.data("a\xFF"); },
                  std::nullopt},
        FieldCase{"otherClass", "NSDate", "NS.string", [](List& list) { return list.ascii("Tea"); },
                  std::nullopt},
        FieldCase{"otherField", "NSString", "NS.time", [](List& list) { return list.ascii("Tea"); },
                  std::nullopt},
        FieldCase{"number", "NSString", "NS.string", [](List& list) { return list.integer(7); },
                  std::nullopt}),
    nameOf);

// ---- Archives that hold nothing

struct RootCase {
    const char* name;
    std::uint8_t root;
};

class Root : public testing::TestWithParam<RootCase> {};

TEST_P(Root, ThatIsNoStringGivesNothing) {
    List list;
    const std::size_t itself = list.dictionary({{"NSString", list.uid(1)}, {"$class", list.uid(2)}});
    const std::size_t type = classDescription(list, {"NSAttributedString"});
    const std::size_t ownClass = list.dictionary({{"NSString", list.uid(1)}, {"$class", list.uid(3)}});
    EXPECT_EQ(
        textOf(keyedArchive(list, {itself, type, ownClass, list.integer(7)}, list.uid(GetParam().root))),
        std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Table, Root,
                         testing::Values(RootCase{"null", 0}, RootCase{"stringIsTheObjectItself", 1},
                                         RootCase{"classDescription", 2},
                                         RootCase{"classIsTheObjectItself", 3}, RootCase{"number", 4},
                                         RootCase{"pastTheObjects", 5}, RootCase{"farPastTheObjects", 200}),
                         nameOf);

TEST(KeyedArchiveText, RefusesAnotherArchiver) {
    List list;
    EXPECT_EQ(textOf(keyedArchive(list, {list.ascii("Tea")}, list.uid(1), "OtherArchiver")), std::nullopt);
}

TEST(KeyedArchiveText, RefusesAnotherVersion) {
    List list;
    EXPECT_EQ(textOf(keyedArchive(list, {list.ascii("Tea")}, list.uid(1), "NSKeyedArchiver", 99999)),
              std::nullopt);
}

TEST(KeyedArchiveText, RefusesAPropertyListThatIsNoArchive) {
    List list;
    const std::size_t text = list.ascii("Tea");
    EXPECT_EQ(textOf(list.bytes(text)), std::nullopt);
    EXPECT_EQ(textOf(list.bytes(list.array({text}))), std::nullopt);
    EXPECT_EQ(textOf(list.bytes(list.dictionary({{"root", text}}))), std::nullopt);
}

TEST(KeyedArchiveText, RefusesEveryCutOfAnArchive) {
    const std::string archive = archivedAttributedString([](List& list) { return list.ascii("Tea"); });
    for (std::size_t length = 0; length < archive.size(); ++length) {
        EXPECT_EQ(textOf(archive.substr(0, length)), std::nullopt) << length;
    }
}

// ---- XML

constexpr std::string_view prolog =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";

std::string archiveInXML(std::string_view text) {
    return "<plist version=\"1.0\">\n<dict>\n<key>$archiver</key><string>NSKeyedArchiver</string>"
           "<key>$version</key><integer>100000</integer>"
           "<key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>"
           "<key>$objects</key><array><string>$null</string>"
           "<dict><key>$class</key><dict><key>CF$UID</key><integer>3</integer></dict>"
           "<key>NSString</key><dict><key>CF$UID</key><integer>2</integer></dict></dict>"
           "<string>" +
           std::string(text) +
           "</string>"
           "<dict><key>$classname</key><string>NSAttributedString</string>"
           "<key>$classes</key><array><string>NSAttributedString</string><string>NSObject</string></array></"
           "dict>"
           "</array></dict>\n</plist>\n";
}

TEST(KeyedArchiveText, ReadsXML) {
    EXPECT_EQ(textOf(std::string(prolog) + archiveInXML("Zoë &amp; &lt;I&gt; 🌷")), "Zoë & <I> 🌷");
}

TEST(KeyedArchiveText, ReadsXMLWithoutAProlog) {
    EXPECT_EQ(textOf(archiveInXML("Tea")), "Tea");
}

TEST(KeyedArchiveText, ReadsXMLBehindWhiteSpaceAndAByteOrderMark) {
    EXPECT_EQ(textOf("\n \t" + archiveInXML("Tea")), "Tea");
    EXPECT_EQ(textOf("\xEF\xBB\xBF" + archiveInXML("Tea")), "Tea");
}

TEST(KeyedArchiveText, RefusesOtherBytes) {
    EXPECT_EQ(textOf(""), std::nullopt);
    EXPECT_EQ(textOf("Tea at four"), std::nullopt);
    EXPECT_EQ(textOf("bplist"), std::nullopt);
    EXPECT_EQ(textOf("<plist version=\"1.0\">"), std::nullopt);
    EXPECT_EQ(textOf("<html></html>"), std::nullopt);
}

} // namespace
} // namespace quillbook
