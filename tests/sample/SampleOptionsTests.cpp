#include "tools/sample/SampleError.h"
#include "tools/sample/SampleOptions.h"

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
    testing::Values(BadArguments{"noHome", {}, "--home"},
                    BadArguments{"unknown", {"--home", "h", "--colour", "red"}, "--colour"},
                    BadArguments{"valueMissing", {"--home"}, "--home"},
                    BadArguments{"notANumber", {"--home", "h", "--messages", "many"}, "many"},
                    BadArguments{"trailingLetters", {"--home", "h", "--seed", "1x"}, "1x"},
                    BadArguments{"negative", {"--home", "h", "--messages", "-1"}, "-1"},
                    BadArguments{"tooLarge",
                                 {"--home", "h", "--messages", "9223372036854775808"},
                                 "9223372036854775808"}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

} // namespace
} // namespace quillbook::sample
