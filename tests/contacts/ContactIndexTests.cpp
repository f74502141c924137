#include "contacts/ContactIndex.h"

#include <gtest/gtest.h>

namespace quillbook {
namespace {

ContactIdentity named(std::string name) {
    return ContactIdentity{.displayName = std::move(name), .avatarData = {}, .avatarMimeType = {}};
}

ContactRecord record(std::string name, std::vector<std::string> addresses) {
    return ContactRecord{std::move(addresses), named(std::move(name))};
}

std::string nameFor(const ContactIndex& index, std::string_view address) {
    const ContactIdentity* identity = index.find(address);
    return identity == nullptr ? "nobody" : identity->displayName.value_or("no name");
}

std::string nameFor(const std::vector<ContactRecord>& records, std::string_view address) {
    return nameFor(ContactIndex(records), address);
}

struct KeysCase {
    const char* name;
    std::string address;
    std::optional<AddressKeys> keys;
};

class AddressKeysOf : public testing::TestWithParam<KeysCase> {};

TEST_P(AddressKeysOf, areAsTold) {
    EXPECT_EQ(addressKeys(GetParam().address), GetParam().keys);
}

INSTANTIATE_TEST_SUITE_P(
    Table, AddressKeysOf,
    testing::Values(KeysCase{"emptyText", "", std::nullopt}, //
                    KeysCase{"blanksAndLineBreaks", " \t\r\n\u00A0", std::nullopt},
                    KeysCase{"wordsWithoutDigits", "Bank of Rivertown", std::nullopt},
                    KeysCase{"shortCode", "22000", std::nullopt}, //
                    KeysCase{"sixDigits", "555012", std::nullopt},
                    KeysCase{"sevenDigits", "555-0123", AddressKeys{"phone:5550123", {}, 7}},
                    KeysCase{"nineDigits", "555 012 345", AddressKeys{"phone:555012345", {}, 9}},
                    KeysCase{"tenDigits", "(415) 555-0123",
                             AddressKeys{"phone:4155550123", "phone-suffix:4155550123", 10}},
                    KeysCase{"elevenDigitsPunctuated", "+1 (415) 555-0123",
                             AddressKeys{"phone:14155550123", "phone-suffix:4155550123", 11}},
                    KeysCase{"elevenDigitsPlain", "14155550123",
                             AddressKeys{"phone:14155550123", "phone-suffix:4155550123", 11}},
                    KeysCase{"surroundedByLineBreaks", "\n14155550123\r\n",
                             AddressKeys{"phone:14155550123", "phone-suffix:4155550123", 11}},
                    KeysCase{"email", "ada@rivertown.example",
                             AddressKeys{"email:ada@rivertown.example", {}, 0}},
                    KeysCase{"emailInMixedCase", " Ada@RiverTown.Example\n",
                             AddressKeys{"email:ada@rivertown.example", {}, 0}},
                    KeysCase{"emailBeyondASCII", "JÖRG@Rivertown.example",
                             AddressKeys{"email:jörg@rivertown.example", {}, 0}},
                    KeysCase{"emailOfManyDigits", "14155550123@sms.example",
                             AddressKeys{"email:14155550123@sms.example", {}, 0}},
                    KeysCase{"singleAtSign", "@", AddressKeys{"email:@", {}, 0}},
                    KeysCase{"arabicDigitsStayAsTheyAre", "٠١٢٣٤٥٦٧٨٩٠",
                             AddressKeys{"phone:٠١٢٣٤٥٦٧٨٩٠", "phone-suffix:١٢٣٤٥٦٧٨٩٠", 11}},
                    KeysCase{"otherNumbersCountToo", "½Ⅷ五²①555", AddressKeys{"phone:½Ⅷ²①555", {}, 7}}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(ContactIndex, findsNobodyWhenEmpty) {
    EXPECT_EQ(nameFor(ContactIndex(), "+14155550123"), "nobody");
}

struct LookupCase {
    const char* name;
    std::string stored;
    std::string address;
    bool isFound;
};

class Lookup : public testing::TestWithParam<LookupCase> {};

TEST_P(Lookup, findsWhomItShould) {
    const std::string found = nameFor({record("Ada Quill", {GetParam().stored})}, GetParam().address);
    EXPECT_EQ(found, GetParam().isFound ? "Ada Quill" : "nobody");
}

INSTANTIATE_TEST_SUITE_P(
    Table, Lookup,
    testing::Values(LookupCase{"sameNumberOtherPunctuation", "+1 (415) 555-0123", "1 415 555 0123", true},
                    LookupCase{"addressWithoutCountryCode", "+1 (415) 555-0123", "4155550123", true},
                    LookupCase{"contactWithoutCountryCode", "(415) 555-0123", "+14155550123", true},
                    LookupCase{"bothOfTenDigits", "415 555 0123", "4155550123", true},
                    LookupCase{"countryCodeOfThreeDigits", "4155550123", "+3584155550123", true},
                    LookupCase{"countryCodeOfFourDigits", "4155550123", "+35814155550123", false},
                    LookupCase{"elevenAgainstFourteenDigits", "14155550123", "35814155550123", true},
                    LookupCase{"elevenAgainstFifteenDigits", "14155550123", "435814155550123", false},
                    LookupCase{"fifteenAgainstElevenDigits", "435814155550123", "14155550123", false},
                    LookupCase{"otherLastDigit", "+14155550123", "+14155550124", false},
                    LookupCase{"sixDigits", "555012", "555012", false},
                    LookupCase{"sevenDigitsExactly", "555-0123", "5550123", true},
                    LookupCase{"nineDigitsExactly", "555012345", "555-012-345", true},
                    LookupCase{"sevenDigitsAreNoSuffix", "+14155550123", "5550123", false},
                    LookupCase{"nineDigitsAreNoSuffix", "+14155550123", "155550123", false},
                    LookupCase{"emailInOtherCase", "Ada@Rivertown.Example", "ada@RIVERTOWN.example", true},
                    LookupCase{"otherEmail", "ada@rivertown.example", "adam@rivertown.example", false},
                    LookupCase{"numberIsNoEmail", "14155550123@sms.example", "14155550123", false},
                    LookupCase{"blankAddress", "+14155550123", "  ", false}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(ContactIndex, sharedLandlineBelongsToNobody) {
    const ContactIndex index(std::vector{record("Ada Quill", {"+14155550123", "ada@rivertown.example"}),
                                         record("Ben Quill", {"+14155550123", "ben@rivertown.example"})});
    EXPECT_EQ(nameFor(index, "+14155550123"), "nobody");
    EXPECT_EQ(nameFor(index, "4155550123"), "nobody");
}

TEST(ContactIndex, sharedLandlineLeavesTheOtherAddressesAlone) {
    const ContactIndex index(std::vector{record("Ada Quill", {"+14155550123", "ada@rivertown.example"}),
                                         record("Ben Quill", {"+14155550123", "ben@rivertown.example"})});
    EXPECT_EQ(nameFor(index, "ada@rivertown.example"), "Ada Quill");
    EXPECT_EQ(nameFor(index, "ben@rivertown.example"), "Ben Quill");
}

TEST(ContactIndex, ambiguousKeyStaysAmbiguousForAThirdContact) {
    const std::vector records{record("Ada Quill", {"+14155550123"}), record("Ben Quill", {"+14155550123"}),
                              record("Ada Quill", {"+14155550123"})};
    EXPECT_EQ(nameFor(records, "+14155550123"), "nobody");
}

TEST(ContactIndex, samePersonListedTwiceIsNoClash) {
    const std::vector records{record("Ada Quill", {"+14155550123"}), record("Ada Quill", {"4155550123"})};
    EXPECT_EQ(nameFor(records, "+14155550123"), "Ada Quill");
    EXPECT_EQ(nameFor(records, "4155550123"), "Ada Quill");
}

TEST(ContactIndex, sameNameWithAnotherPictureIsAClash) {
    ContactRecord pictured = record("Ada Quill", {"+14155550123"});
    pictured.identity.avatarData = Data{0xFF, 0xD8};
    pictured.identity.avatarMimeType = "image/jpeg";
    EXPECT_EQ(nameFor({record("Ada Quill", {"+14155550123"}), pictured}, "+14155550123"), "nobody");
}

TEST(ContactIndex, sameNameWithAnEqualPictureIsNoClash) {
    ContactRecord pictured = record("Ada Quill", {"+14155550123"});
    pictured.identity.avatarData = Data{0xFF, 0xD8};
    EXPECT_EQ(nameFor({pictured, pictured}, "+14155550123"), "Ada Quill");
}

TEST(ContactIndex, contactOfTenDigitsWithAnAmbiguousSuffixIsNotFoundByItsUniqueExactKey) {
    const std::vector records{record("Ada Quill", {"4155550123"}), record("Ben Quill", {"+494155550123"})};
    EXPECT_EQ(nameFor(records, "4155550123"), "nobody");
}

TEST(ContactIndex, exactKeysTellTwoCountriesApart) {
    const std::vector records{record("Ada Quill", {"+14155550123"}), record("Ben Quill", {"+494155550123"})};
    EXPECT_EQ(nameFor(records, "+14155550123"), "Ada Quill");
    EXPECT_EQ(nameFor(records, "+494155550123"), "Ben Quill");
    EXPECT_EQ(nameFor(records, "+3584155550123"), "nobody");
}

TEST(ContactIndex, lastDigitCountSeenCountsForASuffix) {
    // 14 digits were seen last, so that the address of 10 digits is 4 away and the one of 17 is 3 away.
    const std::vector records{record("Ada Quill", {"4155550123", "12344155550123"})};
    EXPECT_EQ(nameFor(records, "4155550123"), "nobody");
    EXPECT_EQ(nameFor(records, "98712344155550123"), "Ada Quill");
}

TEST(ContactIndex, addressesWithoutKeysArePassedOver) {
    const std::vector records{record("Ada Quill", {"", "  ", "22000", "+14155550123"})};
    EXPECT_EQ(nameFor(records, "+14155550123"), "Ada Quill");
}

TEST(ContactIndex, invalidUTF8IsHarmless) {
    const std::vector records{record("Ada Quill", {"\xFF\xC0+1415\xED\xA0\x80"
                                                   "5550123"})};
    EXPECT_EQ(nameFor(records, "14155550123"), "Ada Quill");
}

TEST(ContactIndex, aMegabyteOfDigitsIsHarmless) {
    const std::string endless(1'000'000, '7');
    EXPECT_EQ(nameFor({record("Ada Quill", {endless})}, "7777777777"), "nobody");
}

TEST(ContactIndex, hundredThousandContactsKeepTheirOwnNumbers) {
    std::vector<ContactRecord> records;
    for (int number = 0; number < 100'000; ++number) {
        records.push_back(
            record("Person " + std::to_string(number), {"+1" + std::to_string(2'000'000'000 + number)}));
    }
    const ContactIndex index(records);
    for (int number = 0; number < 100'000; number += 997) {
        EXPECT_EQ(nameFor(index, std::to_string(2'000'000'000 + number)), "Person " + std::to_string(number));
    }
}

} // namespace
} // namespace quillbook
