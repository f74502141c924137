#pragma once

#include "platform/AddressBook.h"

#include <filesystem>

namespace quillbook {

/// The contacts of one vCard file (versions 2.1, 3.0 and 4.0, any number of cards), read anew each time.
/// Pictures that only a network address tells are absent. Nobody has to be asked for access.
class VCardAddressBook final : public AddressBook {
public:
    explicit VCardAddressBook(std::filesystem::path file);

    Authorization authorization() override { return Authorization::authorized; }
    bool requestAccess() override { return true; }
    /// Throws FileError where the file cannot be read, and where it goes on beyond 256 MiB.
    void forEachContact(const std::function<void(const AddressBookContact&)>& visit) override;

private:
    std::filesystem::path file_;
};

} // namespace quillbook
