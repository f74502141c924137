#include "tools/sample/SampleOptions.h"
#include "tools/writing/SampleError.h"

#include <gmock/gmock.h>

namespace quillbook::sample {
namespace {

std::optional<SampleOptions> parse(const std::vector<std::string>& arguments) {
    return parseSampleOptions(arguments);
}

TEST(SampleOptions, haveADefaultForEverythingButTheHome) {
    const SampleOptions options = parse({"--home", "/somewhere"}).value();
    EXPECT_EQ(options, (SampleOptions{"/somewhere", 1, 1'500, 50, false}));
}

TEST(SampleOptions, takeEveryValueGiven) {
    const auto options =
        parse({"--seed", "7", "--home", "h", "--messages", "500000", "--attachments", "9", "--one-chat"});
    EXPECT_EQ(options.value(), (SampleOptions{"h", 7, 500'000, 9, true}));
}

TEST(SampleOptions, askForNoBackupUnlessOneIsNamed) {
    EXPECT_THAT(parse({"--home", "h"}).value().backups, testing::IsEmpty());
}

TEST(SampleOptions, haveADefaultForEverythingAboutAnEncryptedBackup) {
    const SampleOptions options = parse({"--home", "h", "--backup", "encrypted"}).value();
    EXPECT_THAT(options.backups, testing::ElementsAre(BackupKind::encrypted));
    EXPECT_EQ(options.password, "lake house");
    EXPECT_EQ(options.keyDerivationRounds, 10'000);
    EXPECT_EQ(options.keyDerivation, KeyDerivation::twofold);
}

TEST(SampleOptions, takeBothKindsOfBackupInTheOrderGiven) {
    const auto options = parse({"--home", "h", "--backup", "encrypted", "--backup", "plain", "--password",
                                "pier 9", "--iterations", "1000000", "--key-derivation", "single"});
    EXPECT_THAT(options.value().backups, testing::ElementsAre(BackupKind::encrypted, BackupKind::plain));
    EXPECT_EQ(options.value().password, "pier 9");
    EXPECT_EQ(options.value().keyDerivationRounds, 1'000'000);
    EXPECT_EQ(options.value().keyDerivation, KeyDerivation::single);
}

TEST(SampleOptions, takeTheDoubleDerivationByItsName) {
    EXPECT_EQ(parse({"--home", "h", "--key-derivation", "double"}).value().keyDerivation,
              KeyDerivation::twofold);
}

TEST(SampleOptions, tellThePasswordInTheHelp) {
    EXPECT_THAT(sampleHelp(), testing::HasSubstr("the password of the encrypted backup (lake house)"));
}

TEST(SampleOptions, askForNoCachesUnlessTheyAreNamed) {
    EXPECT_FALSE(parse({"--home", "h"}).value().hasCaches);
}

TEST(SampleOptions, takeCachesWithoutAValue) {
    const SampleOptions options = parse({"--caches", "--home", "h", "--backup", "plain"}).value();
    EXPECT_TRUE(options.hasCaches);
    EXPECT_EQ(options.home, "h");
    EXPECT_THAT(options.backups, testing::ElementsAre(BackupKind::plain));
}

TEST(SampleOptions, tellOfTheCachesInTheHelp) {
    EXPECT_THAT(sampleHelp(), testing::HasSubstr("DIR/Library/Messages/CloudKitMetaData"));
}

TEST(SampleOptions, giveNothingWhenHelpIsAskedFor) {
    EXPECT_FALSE(parse({"--home", "h", "--help"}).has_value());
}

TEST(SampleOptions, tellOfTheFileLimitInTheHelp) {
    EXPECT_THAT(sampleHelp(), testing::HasSubstr("those beyond 2000 have no file on the disk"));
}

struct BadArguments {
    const char* name;
    std::vector<std::string> arguments;
    std::string detail;
};

void PrintTo(const BadArguments& arguments, std::ostream* stream) {
    *stream << arguments.name;
}

class RefusedOptions : public testing::TestWithParam<BadArguments> {};

TEST_P(RefusedOptions, nameTheArgument) {
    try {
        parse(GetParam().arguments);
        FAIL() << "accepted";
    } catch (const SampleError& error) {
        EXPECT_EQ(error.reason, SampleError::Reason::badArgument);
        EXPECT_THAT(error.description(), testing::HasSubstr(GetParam().detail));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, RefusedOptions,
    testing::Values(
        BadArguments{"noHome", {}, "--home"},
        BadArguments{"unknown", {"--home", "h", "--colour", "red"}, "--colour"},
        BadArguments{"valueMissing", {"--home"}, "--home"},
        BadArguments{"cachesWithAValue", {"--home", "h", "--caches", "three"}, "three"},
        BadArguments{"notANumber", {"--home", "h", "--messages", "many"}, "many"},
        BadArguments{"trailingLetters", {"--home", "h", "--seed", "1x"}, "1x"},
        BadArguments{"negative", {"--home", "h", "--messages", "-1"}, "-1"},
        BadArguments{"unknownBackup", {"--home", "h", "--backup", "zipped"}, "zipped"},
        BadArguments{
            "sameBackupTwice", {"--home", "h", "--backup", "plain", "--backup", "plain"}, "--backup plain"},
        BadArguments{"noRounds", {"--home", "h", "--iterations", "0"}, "--iterations 0"},
        BadArguments{
            "tooManyRounds", {"--home", "h", "--iterations", "2147483648"}, "--iterations 2147483648"},
        BadArguments{"unknownDerivation", {"--home", "h", "--key-derivation", "triple"}, "triple"},
        BadArguments{
            "tooLarge", {"--home", "h", "--messages", "9223372036854775808"}, "9223372036854775808"}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

} // namespace
} // namespace quillbook::sample
