#pragma once

#include "core/records/ConversationSummary.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quillbook {

/// One contact as an address book holds it.
struct AddressBookContact {
    std::string fullName; ///< Formatted by the address book; may be empty.
    std::string organization;
    std::vector<std::string> emails;
    std::vector<std::string> phones;
    std::optional<Data> thumbnail;

    bool operator==(const AddressBookContact&) const = default;
};

/// The user's address book. Calls may be slow and come from any thread, one at a time; only while
/// `requestAccess` waits for the user, others may come beside it.
class AddressBook {
public:
    enum class Authorization { notDetermined, authorized, denied };

    virtual ~AddressBook() = default;
    virtual Authorization authorization() = 0;
    /// Asks the user and waits for the answer. Throws a DescribedError where the asking fails.
    virtual bool requestAccess() = 0;
    /// Every contact in turn. Throws a DescribedError where the reading breaks off; what was visited until
    /// then stands.
    virtual void forEachContact(const std::function<void(const AddressBookContact&)>& visit) = 0;
};

/// An address book that nobody may read: where a machine has none.
class UnavailableAddressBook final : public AddressBook {
public:
    Authorization authorization() override { return Authorization::denied; }
    bool requestAccess() override { return false; }
    void forEachContact(const std::function<void(const AddressBookContact&)>& /*visit*/) override {}
};

} // namespace quillbook
