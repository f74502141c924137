#include "contacts/ContactResolver.h"
#include "core/records/DescribedError.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

using Authorization = AddressBook::Authorization;

class BookFailure final : public DescribedError {
public:
    std::string description() const override { return "The address book is closed."; }
};

/// An address book of ready contacts that counts what is asked of it.
class ReadyBook : public AddressBook {
public:
    Authorization state = Authorization::authorized;
    bool isGranted = true;
    bool askingFails = false;
    bool readingFails = false; ///< Behind the last contact.
    std::vector<AddressBookContact> contacts;
    int askCount = 0;
    int readCount = 0;

    Authorization authorization() override { return state; }
    bool requestAccess() override {
        ++askCount;
        if (askingFails) throw BookFailure();
        return isGranted;
    }
    void forEachContact(const std::function<void(const AddressBookContact&)>& visit) override {
        ++readCount;
        for (const AddressBookContact& contact : contacts)
            visit(contact);
        if (readingFails) throw BookFailure();
    }
};

AddressBookContact contact(std::string fullName, std::vector<std::string> emails,
                           std::vector<std::string> phones) {
    return {std::move(fullName), "", std::move(emails), std::move(phones), std::nullopt};
}

std::shared_ptr<ReadyBook> bookWithAda() {
    auto book = std::make_shared<ReadyBook>();
    book->contacts = {contact("Ada Quill", {"ada@rivertown.example"}, {"+1 415 555 0123"})};
    return book;
}

ContactIdentity identityOf(const AddressBookContact& only, const std::string& address) {
    auto book = std::make_shared<ReadyBook>();
    book->contacts = {only};
    return ContactResolver(book).resolve({address}).at(address);
}

TEST(ContactResolver, givesAnEntryForEachAddressThatFoundSomebody) {
    ContactResolver resolver(bookWithAda());
    const ContactIdentities found =
        resolver.resolve({"4155550123", "nobody@rivertown.example", "ADA@rivertown.example"});
    EXPECT_EQ(found.size(), 2U);
    EXPECT_EQ(found.at("4155550123").displayName, "Ada Quill");
    EXPECT_EQ(found.at("ADA@rivertown.example").displayName, "Ada Quill");
}

TEST(ContactResolver, takesNoAddresses) {
    EXPECT_TRUE(ContactResolver(bookWithAda()).resolve({}).empty());
}

TEST(ContactResolver, takesTheSameAddressTwice) {
    EXPECT_EQ(ContactResolver(bookWithAda()).resolve({"4155550123", "4155550123"}).size(), 1U);
}

TEST(ContactResolver, prefersTheFullName) {
    AddressBookContact ada = contact("Ada Quill", {"a@b.example"}, {});
    ada.organization = "Rivertown Bank";
    EXPECT_EQ(identityOf(ada, "a@b.example").displayName, "Ada Quill");
}

TEST(ContactResolver, fallsBackToTheOrganization) {
    AddressBookContact bank = contact("", {"a@b.example"}, {});
    bank.organization = "Rivertown Bank";
    EXPECT_EQ(identityOf(bank, "a@b.example").displayName, "Rivertown Bank");
}

TEST(ContactResolver, contactWithoutAnyNameIsAnIdentityWithoutOne) {
    EXPECT_EQ(identityOf(contact("", {"a@b.example"}, {}), "a@b.example"), ContactIdentity());
}

struct PictureCase {
    const char* name;
    std::string front;
    const char* type;
};

class PictureType : public testing::TestWithParam<PictureCase> {};

TEST_P(PictureType, followsFromTheFirstBytes) {
    AddressBookContact ada = contact("Ada Quill", {"a@b.example"}, {});
    ada.thumbnail = Data(GetParam().front.begin(), GetParam().front.end());
    const ContactIdentity identity = identityOf(ada, "a@b.example");
    EXPECT_EQ(identity.avatarData, ada.thumbnail);
    EXPECT_EQ(identity.avatarMimeType, GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(Table, PictureType,
                         testing::Values(PictureCase{"png", "\x89PNG\r\n\x1A\n", "image/png"},
                                         PictureCase{"gif87", "GIF87a", "image/gif"},
                                         PictureCase{"gif89", "GIF89a", "image/gif"},
                                         PictureCase{"webp", "RIFF....WEBP", "image/webp"},
                                         PictureCase{"jpeg", "\xFF\xD8\xFF\xE0", "image/jpeg"},
                                         PictureCase{"anythingElse", "hello", "image/jpeg"},
                                         PictureCase{"cutShort", "\x89PN", "image/jpeg"},
                                         PictureCase{"empty", "", "image/jpeg"}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(ContactResolver, withoutAPictureThereIsNoType) {
    EXPECT_EQ(identityOf(contact("Ada Quill", {"a@b.example"}, {}), "a@b.example").avatarMimeType,
              std::nullopt);
}

TEST(ContactResolver, readsTheBookOnce) {
    const auto book = bookWithAda();
    ContactResolver resolver(book);
    resolver.resolve({"4155550123"});
    resolver.resolve({"4155550123"});
    EXPECT_EQ(book->readCount, 1);
}

TEST(ContactResolver, failedReadingKeepsWhoWasReadBefore) {
    const auto book = bookWithAda();
    book->readingFails = true;
    EXPECT_EQ(ContactResolver(book).resolve({"4155550123"}).size(), 1U);
}

TEST(ContactResolver, authorizedBookIsReadWithoutAsking) {
    const auto book = bookWithAda();
    ContactResolver(book).resolve({"4155550123"});
    EXPECT_EQ(book->askCount, 0);
}

TEST(ContactResolver, undeterminedAndGrantedReadsTheBook) {
    const auto book = bookWithAda();
    book->state = Authorization::notDetermined;
    EXPECT_EQ(ContactResolver(book).resolve({"4155550123"}).size(), 1U);
    EXPECT_EQ(book->askCount, 1);
}

TEST(ContactResolver, undeterminedAndRefusedFindsNobody) {
    const auto book = bookWithAda();
    book->state = Authorization::notDetermined;
    book->isGranted = false;
    EXPECT_TRUE(ContactResolver(book).resolve({"4155550123"}).empty());
    EXPECT_EQ(book->readCount, 0);
}

TEST(ContactResolver, failedAskingFindsNobody) {
    const auto book = bookWithAda();
    book->state = Authorization::notDetermined;
    book->askingFails = true;
    EXPECT_TRUE(ContactResolver(book).resolve({"4155550123"}).empty());
    EXPECT_EQ(book->readCount, 0);
}

TEST(ContactResolver, deniedBookIsNeitherAskedNorRead) {
    const auto book = bookWithAda();
    book->state = Authorization::denied;
    EXPECT_TRUE(ContactResolver(book).resolve({"4155550123"}).empty());
    EXPECT_EQ(book->askCount + book->readCount, 0);
}

TEST(ContactResolver, emptyIndexLastsThoughAccessIsGrantedLater) {
    const auto book = bookWithAda();
    book->state = Authorization::denied;
    ContactResolver resolver(book);
    resolver.resolve({"4155550123"});
    book->state = Authorization::authorized;
    EXPECT_TRUE(resolver.resolve({"4155550123"}).empty());
    EXPECT_EQ(ContactResolver(book).resolve({"4155550123"}).size(), 1U);
}

TEST(ContactResolver, worksWithoutAnAddressBook) {
    EXPECT_TRUE(ContactResolver(std::make_shared<UnavailableAddressBook>()).resolve({"4155550123"}).empty());
}

/// The user answers only once a second call has come as far as asking, too: that call must not be kept
/// waiting by the first.
class HesitantBook final : public AddressBook {
public:
    Authorization authorization() override { return Authorization::notDetermined; }
    bool requestAccess() override {
        std::unique_lock guard(lock_);
        ++waiting_;
        changed_.notify_all();
        return changed_.wait_for(guard, std::chrono::seconds(30), [&] { return waiting_ >= 2; });
    }
    void forEachContact(const std::function<void(const AddressBookContact&)>& visit) override {
        const std::lock_guard guard(lock_);
        visit(contact("Ada Quill", {}, {"+14155550123"}));
    }

private:
    std::mutex lock_;
    std::condition_variable changed_;
    int waiting_ = 0;
};

TEST(ContactResolver, secondCallRunsWhileTheFirstWaitsForTheUser) {
    ContactResolver resolver(std::make_shared<HesitantBook>());
    ContactIdentities first;
    std::thread other([&] { first = resolver.resolve({"4155550123"}); });
    const ContactIdentities second = resolver.resolve({"4155550123"});
    other.join();
    EXPECT_EQ(first.size(), 1U);
    EXPECT_EQ(first, second);
}

TEST(ContactResolver, callsOfManyThreadsFindTheSame) {
    ContactResolver resolver(bookWithAda());
    std::vector<std::thread> threads;
    std::atomic<int> found = 0;
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([&] {
            for (int call = 0; call < 100; ++call)
                found += static_cast<int>(resolver.resolve({"4155550123"}).size());
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(found, 800);
}

/// An address book whose own library fails in a way that has no words of ours.
class BrokenBook final : public AddressBook {
public:
    explicit BrokenBook(Authorization state) : state_(state) {}
    Authorization authorization() override { return state_; }
    bool requestAccess() override { throw std::runtime_error("broken"); }
    void forEachContact(const std::function<void(const AddressBookContact&)>& /*visit*/) override {
        throw std::runtime_error("broken");
    }

private:
    Authorization state_;
};

TEST(ContactResolverWithABrokenBook, namesNobodyAndFailsNothing) {
    for (const auto state :
         {AddressBook::Authorization::authorized, AddressBook::Authorization::notDetermined}) {
        ContactResolver resolver(std::make_shared<BrokenBook>(state));
        EXPECT_TRUE(resolver.resolve({"ada@rivertown.example"}).empty());
    }
}

} // namespace
} // namespace quillbook
