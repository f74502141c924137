#pragma once

#include "core/records/ArchiveWarning.h"
#include "core/records/ConversationSummary.h"
#include "core/records/SourceID.h"
#include "core/text/Date.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillbook {

enum class ReactionKind { loved, liked, disliked, laughed, emphasized, questioned, custom, unknown };

/// How far a message's body could be read.
enum class MessagePayloadState { decoded, partiallyDecoded, unsupported };

enum class AttachmentAvailability { available, missing, unreadable };

struct ArchiveReaction {
    std::string id;
    std::optional<std::string> senderID; ///< The `id` of an ArchiveParticipant, or "me".
    ReactionKind kind = ReactionKind::unknown;
    bool isRemoved = false; ///< A removal is a record of its own; readers settle the net effect.
    std::optional<Date> date;

    bool operator==(const ArchiveReaction&) const = default;
};

struct ArchiveAttachment {
    SourceID id;
    std::optional<std::string> guid;
    std::optional<std::string>
        originalFilename; ///< The path as the source stores it; locating starts from it.
    std::string displayName;
    std::optional<std::string> mimeType;
    std::optional<std::string> uniformType;
    std::optional<std::int64_t> byteSize;   ///< As the source declares it.
    std::optional<std::string> archivePath; ///< Relative to the album, "/" between components; absent unless
                                            ///< the file is in the album.
    std::optional<std::string> sha256; ///< Lower-case hexadecimal; absent unless the file is in the album.
    AttachmentAvailability availability = AttachmentAvailability::available;

    bool operator==(const ArchiveAttachment&) const = default;
};

struct ArchiveParticipant {
    std::string id;
    std::string address; ///< Phone number or e-mail address.
    std::optional<std::string> displayName;
    bool isMe = false;
    std::optional<Data> avatarData; ///< Picture as loaded; emptied once the picture stands as a file.
    std::optional<std::string> avatarMimeType;
    std::optional<std::string> avatarPath; ///< Relative to the album.

    bool operator==(const ArchiveParticipant&) const = default;
};

struct ArchiveMessage {
    SourceID id;
    std::string guid;
    Date date;
    std::optional<std::string> senderID; ///< The `id` of an ArchiveParticipant, or "me".
    bool isFromMe = false;
    std::optional<std::string> service;
    std::optional<std::string> text;
    std::optional<std::string> subject;
    std::optional<std::string> replyToGUID; ///< `guid` of the message replied to.
    std::optional<Date> editedAt;
    std::optional<Date> retractedAt;
    std::vector<ArchiveReaction> reactions;
    std::vector<ArchiveAttachment> attachments;
    MessagePayloadState payloadState = MessagePayloadState::decoded;

    bool operator==(const ArchiveMessage&) const = default;
};

/// The whole conversation as it is archived; written out, it is an album's transcript.json
/// (docs/formats/album.md).
struct ArchiveConversation {
    std::int64_t schemaVersion = 1;
    SourceID id;
    std::string guid;
    std::string title;
    std::optional<std::string> service;
    std::vector<ArchiveParticipant> participants;
    std::int64_t sourceMessageCount = 0; ///< Rows the source holds for this conversation, reactions included.
    std::vector<ArchiveMessage> messages; ///< By date, then by the source's row id.
    std::vector<ArchiveWarning> warnings;
    Date generatedAt; ///< When the conversation was loaded.
    std::string sourceSystemVersion;

    bool operator==(const ArchiveConversation&) const = default;
};

} // namespace quillbook
