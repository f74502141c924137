#include "contacts/ContactResolver.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace quillbook {
namespace {

std::string imageType(const Data& image) {
    const std::string_view front(reinterpret_cast<const char*>(image.data()),
                                 std::min<std::size_t>(image.size(), 4));
    if (front == "\x89PNG") return "image/png";
    if (front == "GIF8") return "image/gif";
    if (front == "RIFF") return "image/webp";
    return "image/jpeg";
}

ContactIdentity identityOf(const AddressBookContact& contact) {
    ContactIdentity identity;
    if (!contact.fullName.empty()) {
        identity.displayName = contact.fullName;
    } else if (!contact.organization.empty()) {
        identity.displayName = contact.organization;
    }
    identity.avatarData = contact.thumbnail;
    if (contact.thumbnail) identity.avatarMimeType = imageType(*contact.thumbnail);
    return identity;
}

ContactRecord recordOf(const AddressBookContact& contact) {
    ContactRecord record{contact.emails, identityOf(contact)};
    record.addresses.insert(record.addresses.end(), contact.phones.begin(), contact.phones.end());
    return record;
}

/// Gives a lock up for its lifetime.
class Unlocked {
public:
    explicit Unlocked(std::unique_lock<std::mutex>& lock) : lock_(lock) { lock_.unlock(); }
    ~Unlocked() { lock_.lock(); }
    Unlocked(const Unlocked&) = delete;
    Unlocked& operator=(const Unlocked&) = delete;

private:
    std::unique_lock<std::mutex>& lock_;
};

} // namespace

ContactResolver::ContactResolver(std::shared_ptr<AddressBook> addressBook)
    : addressBook_(std::move(addressBook)) {}

ContactIdentities ContactResolver::resolve(const std::vector<std::string>& addresses) {
    std::unique_lock call(call_);
    if (!cachedIndex_) cachedIndex_ = buildIndex(call);
    ContactIdentities found;
    for (const std::string& address : addresses) {
        if (const ContactIdentity* identity = cachedIndex_->find(address))
            found.insert_or_assign(address, *identity);
    }
    return found;
}

ContactIndex ContactResolver::buildIndex(std::unique_lock<std::mutex>& call) {
    return mayRead(call) ? ContactIndex(readRecords()) : ContactIndex();
}

bool ContactResolver::mayRead(std::unique_lock<std::mutex>& call) {
    switch (addressBook_->authorization()) {
    case AddressBook::Authorization::authorized:
        return true;
    case AddressBook::Authorization::notDetermined:
        return askForAccess(call);
    case AddressBook::Authorization::denied:
        return false;
    }
    return false;
}

bool ContactResolver::askForAccess(std::unique_lock<std::mutex>& call) {
    const Unlocked whileTheUserDecides(call);
    try {
        return addressBook_->requestAccess();
    } catch (const std::exception&) {
        return false;
    }
}

std::vector<ContactRecord> ContactResolver::readRecords() {
    std::vector<ContactRecord> records;
    try {
        addressBook_->forEachContact([&](const AddressBookContact& contact) {
            ContactRecord record = recordOf(contact);
            if (!record.addresses.empty()) records.push_back(std::move(record));
        });
    } catch (const std::exception&) {
        // Who was read before the failure still has a name.
    }
    return records;
}

} // namespace quillbook
