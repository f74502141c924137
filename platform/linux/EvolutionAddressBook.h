#pragma once

#include "core/records/DescribedError.h"
#include "platform/AddressBook.h"

#include <chrono>
#include <string>
#include <utility>

namespace quillbook {

/// The address book's server is not there, does not answer or cannot give what it holds.
class AddressBookError final : public DescribedError {
public:
    explicit AddressBookError(std::string words) : words_(std::move(words)) {}
    std::string description() const override { return words_; }

private:
    std::string words_;
};

/// The desktop's address book: every enabled address book of Evolution Data Server, read anew each time.
/// Keeps no state and needs no main loop; safe from any thread. A server that stays silent costs one
/// `patience` for each step: connecting, opening an address book, and each hundred contacts of it. An address
/// book that stays silent is left out, and a second one ends the reading. Lists of contacts are no people and
/// are left out. Pictures are read out of the contact and out of the server's own folders.
class EvolutionAddressBook final : public AddressBook {
public:
    explicit EvolutionAddressBook(std::chrono::milliseconds patience = std::chrono::seconds(2));

    /// Authorized where the server runs, or the session bus can start it, and answers in time; else denied.
    /// Never starts a session bus.
    Authorization authorization() override;
    bool requestAccess() override { return authorization() == Authorization::authorized; }
    /// Throws AddressBookError, also when something was left out or there is more than 256 MiB.
    void forEachContact(const std::function<void(const AddressBookContact&)>& visit) override;

private:
    std::chrono::milliseconds patience_;
};

} // namespace quillbook
