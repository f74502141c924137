#include "shell/desktop/linux/FileAddress.h"

#include <string>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

struct AddressCase {
    std::string name;
    std::string file;
    std::string address;
};

class FileAddress : public testing::TestWithParam<AddressCase> {};

TEST_P(FileAddress, namesTheFileByteForByte) {
    EXPECT_EQ(fileAddress(GetParam().file).toStdString(), GetParam().address);
}

TEST_P(FileAddress, leadsBackToTheFile) {
    EXPECT_EQ(fileAtAddress(QString::fromStdString(GetParam().address)), GetParam().file);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FileAddress,
    testing::Values(AddressCase{"plain", "/home/ann/index.html", "file:///home/ann/index.html"},
                    AddressCase{"blank", "/Ann and Ben", "file:///Ann%20and%20Ben"},
                    AddressCase{"percent", "/100%25", "file:///100%2525"},
                    AddressCase{"addressMarks", "/a#b?c&d", "file:///a%23b%3Fc%26d"},
                    AddressCase{"letters", "/Zo\xC3\xAB", "file:///Zo%C3%AB"},
                    AddressCase{"noEncodingAtAll", "/a\xFF\xFE", "file:///a%FF%FE"},
                    AddressCase{"lineBreak", "/a\nb", "file:///a%0Ab"},
                    AddressCase{"shellMarks", "/$(x)`y`;'\"\\", "file:///%24%28x%29%60y%60%3B%27%22%5C"}),
    [](const auto& one) { return one.param.name; });

class ForeignAddress : public testing::TestWithParam<AddressCase> {};

TEST_P(ForeignAddress, namesNoFileOfThisMachine) {
    EXPECT_EQ(fileAtAddress(QString::fromStdString(GetParam().address)), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Table, ForeignAddress,
                         testing::Values(AddressCase{"empty", "", ""},
                                         AddressCase{"web", "", "https://example.org/a"},
                                         AddressCase{"networkShare", "", "smb://server/share"},
                                         AddressCase{"anotherMachine", "", "file://server/share"},
                                         AddressCase{"noPath", "", "file://"},
                                         AddressCase{"nul", "", "file:///a%00b"},
                                         AddressCase{"plainPath", "", "/home/ann"}),
                         [](const auto& one) { return one.param.name; });

TEST(FileAddressOfThisMachine, mayNameTheMachine) {
    EXPECT_EQ(fileAtAddress(QStringLiteral("file://localhost/tmp/a")), "/tmp/a");
}

} // namespace
} // namespace quillbook
