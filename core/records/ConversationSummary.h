#pragma once

#include "core/records/SourceID.h"
#include "core/text/Date.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillbook {

/// A byte buffer; in JSON it is standard Base64 (RFC 4648, section 4).
using Data = std::vector<std::uint8_t>;

/// One row of the conversation list. It carries no messages.
struct ConversationSummary {
    SourceID id;
    std::string guid;
    std::string title;
    std::vector<std::string> participantAddresses; ///< Phone numbers and e-mail addresses.
    std::optional<std::string> lastMessage;        ///< Preview of the newest message.
    std::optional<Date> lastMessageDate;
    std::optional<Date> firstMessageDate;
    std::int64_t messageCount = 0;
    std::int64_t attachmentCount = 0;
    std::optional<Data> avatarData;
    std::optional<std::string> avatarMimeType;

    bool operator==(const ConversationSummary&) const = default;
};

} // namespace quillbook
