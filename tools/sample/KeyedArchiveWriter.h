#pragma once

#include "core/records/ConversationSummary.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quillbook::sample {

/// Writes the property list of a keyed archive: "$objects" in the order of adding, "$top" with its root.
class KeyedArchiveWriter {
public:
    using ObjectNumber = std::uint64_t;

    KeyedArchiveWriter();
    ~KeyedArchiveWriter();
    KeyedArchiveWriter(const KeyedArchiveWriter&) = delete;
    KeyedArchiveWriter& operator=(const KeyedArchiveWriter&) = delete;

    ObjectNumber addDictionary(const std::vector<std::pair<std::string, std::int64_t>>& entries);
    ObjectNumber addAttributedString(const std::string& text, ObjectNumber attributes);
    void setRoot(ObjectNumber object) { root_ = object; }

    /// As a binary property list. Call it once, at the end.
    Data finish();

private:
    struct Objects;

    std::unique_ptr<Objects> objects_;
    ObjectNumber root_ = 0;
};

/// One wording of an edited message.
struct EditedWording {
    Data archive;
    std::int64_t seconds = 0; ///< Since the reference date.
};

/// What Messages keeps beside an edited message, as a binary property list.
Data editSummaryPropertyList(const EditedWording& earlier, const EditedWording& present,
                             std::int64_t earlierLength);

/// The properties of a chat, as a binary property list.
Data chatProperties(const std::string& lastMessageGUID, bool isGroup);

} // namespace quillbook::sample
