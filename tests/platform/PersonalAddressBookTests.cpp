#include "core/records/DescribedError.h"
#include "platform/linux/PersonalAddressBook.h"
#include "tests/support/TemporaryFolder.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillbook {
namespace {

using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;
using Authorization = AddressBook::Authorization;

class BrokenBook final : public DescribedError {
public:
    std::string description() const override { return "The address book broke off."; }
};

/// A desktop's address book that gives `names` and then, where told so, breaks off.
struct Desktop {
    Authorization state = Authorization::authorized;
    bool grants = false;
    bool breaksOff = false;
    std::vector<std::string> names;
    int questions = 0;
    int readings = 0;
};

class DesktopBook final : public AddressBook {
public:
    explicit DesktopBook(Desktop& desktop) : desktop_(desktop) {}
    Authorization authorization() override { return desktop_.state; }
    bool requestAccess() override {
        ++desktop_.questions;
        return desktop_.grants;
    }
    void forEachContact(const std::function<void(const AddressBookContact&)>& visit) override {
        ++desktop_.readings;
        for (const std::string& name : desktop_.names)
            visit({.fullName = name, .organization = {}, .emails = {}, .phones = {}, .thumbnail = {}});
        if (desktop_.breaksOff) throw BrokenBook();
    }

private:
    Desktop& desktop_;
};

class PersonalAddressBookTest : public testing::Test {
protected:
    void bringCards(std::string_view text = "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Ada Quill\r\nEND:VCARD\r\n") {
        folder.write("contacts.vcf", text);
    }
    std::vector<std::string> names() {
        std::vector<std::string> all;
        book.forEachContact([&](const AddressBookContact& contact) { all.push_back(contact.fullName); });
        return all;
    }

    TemporaryFolder folder;
    Desktop desktop;
    PersonalAddressBook book{std::make_unique<DesktopBook>(desktop), folder.path() / "contacts.vcf"};
};

TEST_F(PersonalAddressBookTest, readsTheDesktopsWhereThereAreNoCards) {
    desktop.names = {"Grace Hopper"};
    EXPECT_THAT(names(), ElementsAre("Grace Hopper"));
}

TEST_F(PersonalAddressBookTest, readsTheDesktopsAloneWhereItHoldsSomebody) {
    desktop.names = {"Grace Hopper"};
    bringCards();
    EXPECT_THAT(names(), ElementsAre("Grace Hopper"));
}

TEST_F(PersonalAddressBookTest, readsTheCardsWhereTheDesktopsIsEmpty) {
    bringCards();
    EXPECT_THAT(names(), ElementsAre("Ada Quill"));
}

TEST_F(PersonalAddressBookTest, readsTheCardsWhereTheDesktopsIsClosed) {
    for (const Authorization closed : {Authorization::denied, Authorization::notDetermined}) {
        desktop = {.state = closed, .names = {"Grace Hopper"}};
        bringCards();
        EXPECT_THAT(names(), ElementsAre("Ada Quill"));
        EXPECT_EQ(desktop.readings, 0);
    }
}

TEST_F(PersonalAddressBookTest, readsTheCardsWhereTheDesktopsFails) {
    desktop.breaksOff = true;
    bringCards();
    EXPECT_THAT(names(), ElementsAre("Ada Quill"));
}

TEST_F(PersonalAddressBookTest, failsAsTheDesktopsWithoutCards) {
    desktop.breaksOff = true;
    EXPECT_THROW(names(), BrokenBook);
}

TEST_F(PersonalAddressBookTest, doesNotMixTheCardsWithADesktopsThatBrokeOff) {
    desktop.breaksOff = true;
    desktop.names = {"Grace Hopper"};
    bringCards();
    std::vector<std::string> all;
    EXPECT_THROW(book.forEachContact([&](const auto& contact) { all.push_back(contact.fullName); }),
                 BrokenBook);
    EXPECT_THAT(all, ElementsAre("Grace Hopper"));
}

TEST_F(PersonalAddressBookTest, holdsNobodyWithoutEither) {
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(PersonalAddressBookTest, holdsNobodyWhereTheDesktopsIsClosedAndThereAreNoCards) {
    desktop.state = Authorization::denied;
    EXPECT_THAT(names(), IsEmpty());
}

struct CardsCase {
    const char* name;
    std::string text;
    std::vector<std::string> people;

    friend std::ostream& operator<<(std::ostream& out, const CardsCase& each) { return out << each.name; }
};

class DamagedCards : public PersonalAddressBookTest, public testing::WithParamInterface<CardsCase> {};

TEST_P(DamagedCards, giveWhomTheyStillHold) {
    bringCards(GetParam().text);
    EXPECT_EQ(names(), GetParam().people);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DamagedCards,
    testing::Values(
        CardsCase{"empty", "", {}}, CardsCase{"noCards", "Dear diary,\r\n", {}},
        CardsCase{"zeroBytes", std::string(10'000, '\0'), {}},
        CardsCase{"cutOff",
                  "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Ada Quill\r\nEND:VCARD\r\nBEGIN:VCARD\r\nFN:Gr",
                  {"Ada Quill"}},
        CardsCase{"rubbishBetween",
                  "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Ada Quill\r\nEND:VCARD\r\n\xFF\xFE rubbish\r\n"
                  "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Grace Hopper\r\nEND:VCARD\r\n",
                  {"Ada Quill", "Grace Hopper"}}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(PersonalAddressBookTest, takesAFolderOfTheCardsNameForNoCards) {
    std::filesystem::create_directory(folder.path() / "contacts.vcf");
    EXPECT_THAT(names(), IsEmpty());
    desktop.state = Authorization::denied;
    EXPECT_EQ(book.authorization(), Authorization::denied);
}

TEST_F(PersonalAddressBookTest, isOpenToWhomBringsCards) {
    bringCards();
    for (const Authorization any :
         {Authorization::authorized, Authorization::denied, Authorization::notDetermined}) {
        desktop.state = any;
        EXPECT_EQ(book.authorization(), Authorization::authorized);
    }
    EXPECT_TRUE(book.requestAccess());
    EXPECT_EQ(desktop.questions, 0) << "nobody is asked";
}

TEST_F(PersonalAddressBookTest, isAsOpenAsTheDesktopsWithoutCards) {
    for (const Authorization any :
         {Authorization::authorized, Authorization::denied, Authorization::notDetermined}) {
        desktop.state = any;
        EXPECT_EQ(book.authorization(), any);
    }
    EXPECT_FALSE(book.requestAccess());
    desktop.grants = true;
    EXPECT_TRUE(book.requestAccess());
    EXPECT_EQ(desktop.questions, 2);
}

} // namespace
} // namespace quillbook
