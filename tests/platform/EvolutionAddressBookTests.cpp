#include "contacts/ContactResolver.h"
#include "platform/linux/EvolutionAddressBook.h"
#include "tests/platform/EvolutionFixture.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/ChildProcess.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

namespace quillbook::test {
namespace {

using namespace std::chrono_literals;
using Services = PrivateBus::Services;
using Clock = std::chrono::steady_clock;
using Authorization = AddressBook::Authorization;

// For what is found, however slow the machine; what is not found is looked for with the usual patience.
constexpr auto patient = 60s;
// Above the steps that such a reading may wait for, and far below what the library itself would wait.
constexpr auto longestSilence = 8s;
constexpr const char* inlinedPicture = "PHOTO;ENCODING=b;TYPE=PNG:iVBORw0KGgo=";
const Data picture{0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : ",") + text;
    return all;
}

/// A contact on one line.
std::string lineOf(const AddressBookContact& contact) {
    std::string shown = "none";
    if (contact.thumbnail) shown = *contact.thumbnail == picture ? "picture" : "another";
    return contact.fullName + "|" + contact.organization + "|" + joined(contact.emails) + "|" +
           joined(contact.phones) + "|" + shown + "\n";
}

/// Every contact, in the order of their lines.
std::string everybody(EvolutionAddressBook book = EvolutionAddressBook(patient)) {
    std::vector<std::string> lines;
    book.forEachContact([&](const AddressBookContact& contact) { lines.push_back(lineOf(contact)); });
    std::sort(lines.begin(), lines.end());
    std::string all;
    for (const std::string& line : lines)
        all += line;
    return all;
}

/// Nothing where the body came to its end soon enough.
std::string inTime(const std::function<std::string()>& body) {
    const auto begin = Clock::now();
    const std::string problem = body();
    if (!problem.empty()) return problem;
    return Clock::now() - begin < longestSilence ? "" : "took too long";
}

/// Nothing where the address book says no, and gives nobody to those who ask all the same.
std::string findsNobody() {
    return inTime([]() -> std::string {
        EvolutionAddressBook book;
        if (book.authorization() != Authorization::denied) return "not denied";
        if (book.requestAccess()) return "access given";
        try {
            return "found: " + everybody(book);
        } catch (const AddressBookError& error) {
            return error.description().empty() ? "no words" : "";
        }
    });
}

struct ContactCase {
    const char* name;
    std::string properties;
    const char* line;
};

const std::vector<ContactCase> contactCases = {
    {"wholePerson",
     "FN:Dr. Ada Quill\r\nN:Quill;Ada;;Dr.;\r\nORG:Rivertown Bank;Vault\r\nEMAIL:ada@rivertown.example\r\n"
     "EMAIL;TYPE=HOME:quill@rivertown.example\r\nTEL;TYPE=CELL:+1 (415) 555-0123\r\nTEL;TYPE=HOME:555 0199",
     "Dr. Ada Quill|Rivertown Bank|ada@rivertown.example,quill@rivertown.example|+1 (415) 555-0123,555 0199|"
     "none\n"},
    {"organizationAlone", "ORG:Rivertown Bank\r\nTEL:4155550100", "|Rivertown Bank||4155550100|none\n"},
    {"picture", std::string("FN:Ben Reed\r\nTEL:4155550111\r\n") + inlinedPicture,
     "Ben Reed|||4155550111|picture\n"},
    {"phonesAlone", "TEL:4155550122\r\nTEL:4155550133", "|||4155550122,4155550133|none\n"},
    {"beyondASCII", "FN:Jörg Ærø 山田\r\nTEL:4155550144", "Jörg Ærø 山田|||4155550144|none\n"},
    {"pictureOnTheNetwork",
     "FN:Cleo Marsh\r\nTEL:4155550155\r\nPHOTO;VALUE=uri:http://rivertown.example/cleo.png",
     "Cleo Marsh|||4155550155|none\n"},
    {"endlessAddress", "FN:Dora Finch\r\nEMAIL:" + std::string(100'000, 'x') + "\r\nTEL:4155550166",
     "Dora Finch|||4155550166|none\n"},
    {"quotesInItsID", "UID:a\"b\\\\c)\r\nFN:Emil Vane\r\nTEL:4155550177", "Emil Vane|||4155550177|none\n"},
    {"listOfContacts",
     "FN:Family\r\nX-EVOLUTION-LIST:TRUE\r\nEMAIL;X-EVOLUTION-DEST-NAME=Ada:ada@rivertown.example", ""},
};

TEST(EvolutionAddressBook, givesEachContactAsItIs) {
    const PrivateBus bus(Services::evolution);
    EXPECT_EQ(bus.run([]() -> std::string {
        std::vector<std::string> expected;
        for (const ContactCase& each : contactCases) {
            addContact(personalBook, each.properties);
            expected.emplace_back(each.line);
        }
        std::sort(expected.begin(), expected.end());
        std::string all;
        for (const std::string& line : expected)
            all += line;
        const std::string found = everybody();
        return found == all ? "" : "expected:\n" + all + "found:\n" + found;
    }),
              "");
}

TEST(EvolutionAddressBook, isAuthorizedWhereTheBusCanStartTheServer) {
    const PrivateBus bus(Services::evolution);
    EXPECT_EQ(bus.run([]() -> std::string {
        EvolutionAddressBook book(patient);
        if (book.authorization() != Authorization::authorized) return "denied";
        return book.requestAccess() ? "" : "no access";
    }),
              "");
}

TEST(EvolutionAddressBook, readsEveryEnabledBookAndNoOther) {
    const PrivateBus bus(Services::evolution);
    EXPECT_EQ(bus.run([] {
        makeBook("work");
        makeBook("old");
        addContact(personalBook, "FN:Ada Quill\r\nTEL:4155550100");
        addContact("work", "FN:Ben Reed\r\nTEL:4155550111");
        addContact("old", "FN:Cleo Marsh\r\nTEL:4155550122");
        disableBook("old");
        return everybody();
    }),
              "Ada Quill|||4155550100|none\nBen Reed|||4155550111|none\n");
}

TEST(EvolutionAddressBook, readsMoreContactsThanOneStepHas) {
    const PrivateBus bus(Services::evolution);
    EXPECT_EQ(bus.run([] {
        for (int number = 1'000; number < 1'230; ++number)
            addContact(personalBook, "FN:P\r\nTEL:415555" + std::to_string(number));
        const std::string all = everybody();
        return std::to_string(std::count(all.begin(), all.end(), '\n')) + all.substr(0, 20);
    }),
              "230P|||4155551000|none\n");
}

TEST(EvolutionAddressBook, isEmptyInANewProfile) {
    const PrivateBus bus(Services::evolution);
    EXPECT_EQ(bus.run([] { return everybody(); }), "");
}

TEST(EvolutionAddressBook, picturesOutsideTheServersFoldersAreNotRead) {
    const PrivateBus bus(Services::evolution);
    const auto file = bus.home().write("secret.png", "\x89PNG\r\n\x1A\n");
    EXPECT_EQ(bus.run([&] {
        addContact(personalBook, "FN:Ada Quill\r\nTEL:1\r\nPHOTO;VALUE=uri:file://" + file.string());
        return everybody();
    }),
              "Ada Quill|||1|none\n");
}

TEST(EvolutionAddressBook, mayBeReadFromAnyThread) {
    const PrivateBus bus(Services::evolution);
    EXPECT_EQ(bus.run([] {
        addContact(personalBook, "FN:Ada Quill\r\nTEL:4155550100");
        std::string found;
        for (int each = 0; each < 2; ++each)
            std::thread([&] { found += everybody(); }).join();
        return found;
    }),
              "Ada Quill|||4155550100|none\nAda Quill|||4155550100|none\n");
}

TEST(EvolutionAddressBook, givesTheResolverItsIdentities) {
    const PrivateBus bus(Services::evolution);
    EXPECT_EQ(bus.run([]() -> std::string {
        addContact(personalBook, std::string("FN:Ada Quill\r\nTEL:+1 (415) 555-0123\r\n") + inlinedPicture);
        addContact(personalBook, "ORG:Rivertown Bank\r\nEMAIL:Desk@Rivertown.example");
        ContactResolver resolver(std::make_shared<EvolutionAddressBook>(patient));
        const ContactIdentities found =
            resolver.resolve({"4155550123", "desk@rivertown.example", "12345678"});
        const ContactIdentities expected{{"4155550123", {"Ada Quill", picture, "image/png"}},
                                         {"desk@rivertown.example", {"Rivertown Bank", {}, {}}}};
        return found == expected ? "" : "found " + std::to_string(found.size());
    }),
              "");
}

TEST(EvolutionAddressBook, isDeniedWithoutABus) {
    const TemporaryFolder home;
    EXPECT_EQ(runInChild([&] {
                  enterSession(home.path(), {});
                  return findsNobody();
              }),
              "");
}

TEST(EvolutionAddressBook, isDeniedOnABusThatIsGone) {
    const TemporaryFolder home;
    EXPECT_EQ(runInChild([&] {
                  enterSession(home.path(), "unix:path=" + (home / "gone").string());
                  return findsNobody();
              }),
              "");
}

TEST(EvolutionAddressBook, isDeniedOnABusWithoutTheServer) {
    const PrivateBus bus(Services::none);
    EXPECT_EQ(bus.run(findsNobody), "");
}

TEST(EvolutionAddressBook, isDeniedWhereTheRegistryNeverAnswers) {
    const PrivateBus bus(Services::none);
    const SilentService registry(bus, "org.gnome.evolution.dataserver.Sources5");
    EXPECT_EQ(bus.run(findsNobody), "");
}

TEST(EvolutionAddressBook, waitsForASilentRegistryAsLongAsItsPatienceLasts) {
    const PrivateBus bus(Services::none);
    const SilentService registry(bus, "org.gnome.evolution.dataserver.Sources5");
    EXPECT_EQ(bus.run([]() -> std::string {
        const auto begin = Clock::now();
        EvolutionAddressBook().authorization();
        const auto time = Clock::now() - begin;
        return time >= 2s && time < 4s ? "" : "waited otherwise";
    }),
              "");
}

TEST(EvolutionAddressBook, breaksOffWhereTheBooksNeverAnswer) {
    const PrivateBus bus(Services::evolution);
    EXPECT_EQ(bus.run([] {
        makeBook("work");
        makeBook("club");
        return std::string();
    }),
              "");
    const SilentService factory(bus, "org.gnome.evolution.dataserver.AddressBook10");
    EXPECT_EQ(bus.run([] {
        return inTime([]() -> std::string {
            try {
                return "found: " + everybody(EvolutionAddressBook());
            } catch (const AddressBookError& error) {
                return error.description() == "The address book does not answer." ? "" : error.description();
            }
        });
    }),
              "");
}

TEST(EvolutionAddressBook, endOfTheSessionDoesNotEndTheProcess) {
    EXPECT_EQ(runInChild([]() -> std::string {
                  auto bus = std::make_unique<PrivateBus>(Services::evolution);
                  enterSession(bus->home().path(), bus->address());
                  if (EvolutionAddressBook(patient).authorization() != Authorization::authorized)
                      return "denied";
                  bus.reset();
                  return findsNobody();
              }),
              "");
}

} // namespace
} // namespace quillbook::test
