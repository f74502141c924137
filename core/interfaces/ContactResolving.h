#pragma once

#include "core/records/ConversationSummary.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quillbook {

/// What an address book knows of one address.
struct ContactIdentity {
    std::optional<std::string> displayName;
    std::optional<Data> avatarData; ///< Thumbnail picture.
    std::optional<std::string> avatarMimeType;

    bool operator==(const ContactIdentity&) const = default;
};

using ContactIdentities = std::map<std::string, ContactIdentity, std::less<>>;

class ContactResolving {
public:
    virtual ~ContactResolving() = default;
    /// An entry for each address that found an identity. May be slow at first; never fails; safe from any
    /// thread.
    virtual ContactIdentities resolve(const std::vector<std::string>& addresses) = 0;
};

} // namespace quillbook
