#pragma once

#include "platform/AddressBook.h"

#include <filesystem>
#include <memory>

namespace quillbook {

/// The desktop's address book; where that is closed or holds nobody, the cards of one vCard file, which
/// people bring along with a copied library. Both at once would make two entries of one person, whose name
/// would then count as doubtful. Threads as AddressBook says.
class PersonalAddressBook final : public AddressBook {
public:
    PersonalAddressBook(std::unique_ptr<AddressBook> desktop, std::filesystem::path cards);

    Authorization authorization() override;
    bool requestAccess() override;
    /// Throws what the one that is read throws; what the desktop's own fails with, only where it gave
    /// somebody or there are no cards.
    void forEachContact(const std::function<void(const AddressBookContact&)>& visit) override;

private:
    bool hasCards() const;

    const std::unique_ptr<AddressBook> desktop_;
    const std::filesystem::path cards_;
};

} // namespace quillbook
