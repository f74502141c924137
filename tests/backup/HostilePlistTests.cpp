#include "tests/backup/PlistFixture.h"
#include "tests/backup/RawPlist.h"
#include "tests/support/BinaryPropertyListBuilder.h"

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using namespace std::string_literals;
using namespace test;
using Reason = BinaryPlistError::Reason;
using Builder = BinaryPropertyListBuilder;

struct ManyCase {
    const char* name;
    std::string object;
};

/// Dictionaries each of whose keys is the next one, given twice; the last has the key that is given.
std::string keyChain(std::size_t length, std::uint16_t lastKey) {
    RawPlist list = {.offsetSize = 4, .referenceSize = 2};
    for (std::size_t index = 0; index < length; ++index) {
        const std::string key = RawPlist::big(index + 1 < length ? index + 1 : lastKey, 2);
        list.objects.push_back("\xD2" + key + key + key + key);
    }
    list.objects.emplace_back("\x51z");
    return list.bytes();
}

TEST(HostilePlist, FortyDictionariesThatAreKeysOfEachOtherCostFortySteps) {
    EXPECT_EQ(parsed(keyChain(40, 40)).objects.front(), dictionary({{"1"s, uid(1)}}));
}

TEST(HostilePlist, AChainOfKeysEndsAtItsLimit) {
    EXPECT_EQ(reasonOf(keyChain(128, 128)), std::nullopt);
    EXPECT_EQ(reasonOf(keyChain(129, 129)), Reason::truncated);
    EXPECT_EQ(reasonOf(keyChain(65'000, 65'000)), Reason::truncated);
}

TEST(HostilePlist, ALoopOfKeysIsTruncated) {
    EXPECT_EQ(reasonOf(keyChain(1, 0)), Reason::truncated);
    EXPECT_EQ(reasonOf(keyChain(2, 0)), Reason::truncated);
    EXPECT_EQ(reasonOf(keyChain(40, 20)), Reason::truncated);
}

TEST(HostilePlist, ADictionaryThatIsItsOwnKeyUnderAnotherNumberIsTruncated) {
    const RawPlist list = {.objects = {"\xD1\1\1"}, .offsets = std::vector<std::uint64_t>{8, 8}};
    EXPECT_EQ(reasonOf(list.bytes()), Reason::truncated);
}

class ManyNumbersOfOneObject : public testing::TestWithParam<ManyCase> {};

TEST_P(ManyNumbersOfOneObject, ShareItsPayload) {
    constexpr std::size_t numbers = 100'000;
    const std::string object = GetParam().object;
    const RawPlist list = {
        .objects = {object}, .offsetSize = 2, .offsets = std::vector<std::uint64_t>(numbers, 8)};
    const auto objects = parsed(list.bytes()).objects;
    ASSERT_EQ(objects.size(), numbers);
    const auto payload = [](const PlistValue& value) -> const void* {
        if (const auto* text = value.as<PlistString>()) return &**text;
        if (const auto* bytes = value.as<PlistData>()) return &**bytes;
        if (const auto* elements = value.as<PlistArray>()) return &**elements;
        const auto* pairs = value.as<PlistDictionary>();
        return pairs == nullptr ? nullptr : &**pairs;
    };
    EXPECT_NE(payload(objects.front()), nullptr);
    for (const PlistValue& value : objects)
        ASSERT_EQ(payload(value), payload(objects.front()));
}

INSTANTIATE_TEST_SUITE_P(
    Table, ManyNumbersOfOneObject,
    testing::Values(ManyCase{"string", Builder::head(0x50, 100'000) + std::string(100'000, 'z')},
                    ManyCase{"utf16", Builder::head(0x60, 50'000) + std::string(100'000, 'z')},
                    ManyCase{"data", Builder::head(0x40, 100'000) + std::string(100'000, 'z')},
                    ManyCase{"array", Builder::head(0xA0, 100'000) + std::string(100'000, '\0')},
                    ManyCase{"dictionary", "\xD0"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(HostilePlist, DictionariesShareTheTextOfALongKey) {
    // Object 0 is the one key of all sixty dictionaries.
    RawPlist list = {.objects = {Builder::head(0x50, 10'000) + std::string(10'000, 'z')}, .offsetSize = 4};
    for (int index = 0; index < 60; ++index)
        list.objects.emplace_back("\xD1\0\0"s);
    const auto objects = parsed(list.bytes()).objects;
    const std::string* key = &**objects.front().as<PlistString>();
    for (std::size_t index = 1; index < objects.size(); ++index)
        EXPECT_EQ(&*(*objects[index].as<PlistDictionary>())->begin()->key, key);
}

/// Objects of one head each that lie in one another: every one has all bytes behind it for its body.
std::string overlapping(std::uint8_t kind, std::size_t count) {
    RawPlist list = {.offsetSize = 4};
    std::string heads;
    std::vector<std::uint64_t> offsets;
    for (std::size_t index = 0; index < count; ++index) {
        offsets.push_back(8 + 6 * index);
        heads += Builder::head(kind, 6 * (count - index) + 20);
    }
    list.objects = {heads + std::string(6 * count, '\0')};
    list.offsets = offsets;
    return list.bytes();
}

class OverlappingObjects : public testing::TestWithParam<int> {};

TEST_P(OverlappingObjects, AreTruncatedBeforeTheyAddUp) {
    EXPECT_EQ(reasonOf(overlapping(static_cast<std::uint8_t>(GetParam()), 20'000)), Reason::truncated);
}

TEST_P(OverlappingObjects, AreReadWhenTheyAreFew) {
    EXPECT_EQ(reasonOf(overlapping(static_cast<std::uint8_t>(GetParam()), 20)), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Kinds, OverlappingObjects, testing::Values(0x40, 0x50, 0x60, 0xA0));

TEST(HostilePlist, ComparingLongKeysOverAndOverIsTruncated) {
    // Two texts of 200,000 letters that differ in the last alone, and 60,000 dictionaries that have both.
    const std::string text(199'999, 'z');
    RawPlist list = {
        .objects = {Builder::head(0x50, 200'000) + text + "a", Builder::head(0x50, 200'000) + text + "b"},
        .offsetSize = 4};
    list.objects.resize(60'002, "\xD2\0\1\0\1"s);
    EXPECT_EQ(reasonOf(list.bytes()), Reason::truncated);
}

TEST(HostilePlist, AMillionIntegersOf32768BytesAreReadAtOnce) {
    RawPlist list = {.objects = std::vector<std::string>(1'000'000, "\x1F"), .offsetSize = 4};
    const auto objects = parsed(list.bytes()).objects;
    EXPECT_EQ(objects.size(), 1'000'000U);
}

TEST(LargePlist, IsReadWithLongKeysInEveryDictionary) {
    // 20,000 dictionaries of twelve keys of 100 letters, with references of a byte: as short as pairs get.
    RawPlist list = {.offsetSize = 4};
    for (char letter = 'a'; letter < 'm'; ++letter)
        list.objects.push_back(Builder::head(0x50, 100) + std::string(100, letter));
    list.objects.resize(20'012, "\xDC\0\1\2\3\4\5\6\7\x08\x09\x0A\x0B\0\1\2\3\4\5\6\7\x08\x09\x0A\x0B"s);
    const auto objects = parsed(list.bytes()).objects;
    EXPECT_EQ((*objects.back().as<PlistDictionary>())->size(), 12U);
}

} // namespace
} // namespace quillbook
