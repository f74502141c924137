#include "platform/linux/PersonalAddressBook.h"

#include "core/records/DescribedError.h"
#include "platform/linux/VCardAddressBook.h"

#include <utility>

namespace quillbook {

PersonalAddressBook::PersonalAddressBook(std::unique_ptr<AddressBook> desktop, std::filesystem::path cards)
    : desktop_(std::move(desktop)), cards_(std::move(cards)) {}

bool PersonalAddressBook::hasCards() const {
    std::error_code failure;
    return std::filesystem::is_regular_file(cards_, failure);
}

AddressBook::Authorization PersonalAddressBook::authorization() {
    return hasCards() ? Authorization::authorized : desktop_->authorization();
}

bool PersonalAddressBook::requestAccess() {
    return hasCards() || desktop_->requestAccess();
}

void PersonalAddressBook::forEachContact(const std::function<void(const AddressBookContact&)>& visit) {
    bool isAnybodyThere = false;
    const auto note = [&](const AddressBookContact& contact) {
        isAnybodyThere = true;
        visit(contact);
    };
    try {
        if (desktop_->authorization() == Authorization::authorized) desktop_->forEachContact(note);
    } catch (const DescribedError&) {
        if (isAnybodyThere || !hasCards()) throw;
    }
    if (!isAnybodyThere && hasCards()) VCardAddressBook(cards_).forEachContact(visit);
}

} // namespace quillbook
