#pragma once

#include "contacts/ContactIndex.h"
#include "platform/AddressBook.h"

#include <memory>
#include <mutex>
#include <optional>

namespace quillbook {

/// Answers from an index of the whole address book, which the first call builds and which lasts as long as
/// the resolver, also where the user refused access. Runs one call at a time; while it waits for the user's
/// consent, other calls may run.
class ContactResolver final : public ContactResolving {
public:
    explicit ContactResolver(std::shared_ptr<AddressBook> addressBook);

    ContactIdentities resolve(const std::vector<std::string>& addresses) override;

private:
    ContactIndex buildIndex(std::unique_lock<std::mutex>& call);
    bool mayRead(std::unique_lock<std::mutex>& call);
    bool askForAccess(std::unique_lock<std::mutex>& call);
    std::vector<ContactRecord> readRecords();

    const std::shared_ptr<AddressBook> addressBook_;
    std::mutex call_;
    std::optional<ContactIndex> cachedIndex_;
};

} // namespace quillbook
