#pragma once

#include "core/records/ConversationSummary.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillbook::sample {

enum class StoredUnit { seconds, nanoseconds };

/// Counts from 2001-01-01 00:00:00 UTC, as the columns of the database do.
struct StoredDate {
    std::int64_t seconds = 0;
    StoredUnit unit = StoredUnit::nanoseconds;

    std::int64_t raw() const { return unit == StoredUnit::seconds ? seconds : seconds * 1'000'000'000; }
};

struct HandleRow {
    std::string address;
    std::string country;
    std::string service = "iMessage";
};

struct ChatRow {
    std::string guid;
    std::string identifier;
    std::string service = "iMessage";
    std::string displayName;
    std::string groupID;
    std::string lastMessageGUID;
    bool isGroup = false;
    std::vector<std::int64_t> handles; ///< Row ids; a person who left is not among them.
};

struct AttachmentRow {
    std::string guid;
    std::optional<std::string> storedPath; ///< As it stands in the column filename, with a leading "~".
    std::string transferName;
    std::string mimeType;
    std::string uniformType;
    std::int64_t byteCount = 0;
};

/// How a message keeps its words.
enum class BodyForm {
    textAndArchive,
    textOnly,
    archiveOnly,
    mutableArchiveOnly,
    keyedArchiveOnly,
    unreadable, ///< A blob of random bytes, and no text.
    emptyText,  ///< An empty text and no blob.
    nothing,    ///< Neither.
};

struct MessageRow {
    std::int64_t rowID = 0;
    std::string guid;
    std::string text; ///< Without the U+FFFC of its attachments.
    BodyForm form = BodyForm::textAndArchive;
    std::int64_t handle = 0; ///< Row id; 0 where the user writes to a group.
    StoredDate date;
    bool isFromMe = false;
    bool isAudio = false;
    std::string service = "iMessage";
    std::string roomName; ///< The group's chat identifier.
    std::optional<std::string> subject;
    std::int64_t associatedType = 0;
    std::optional<std::string> associatedGUID;
    std::optional<std::string> associatedEmoji;
    std::optional<std::string> threadOriginatorGUID;
    std::optional<std::string> earlierText; ///< Of an edited message.
    std::int64_t editedSeconds = 0;
    std::int64_t retractedSeconds = 0;
    std::int64_t itemType = 0; ///< 2 for a new name of the group, 3 for someone who left.
    std::optional<std::string> groupTitle;
    std::optional<std::string> sendStyle;
    std::vector<AttachmentRow> attachments;
};

} // namespace quillbook::sample
