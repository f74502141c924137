#pragma once

#include "core/interfaces/AttachmentLocating.h"
#include "core/interfaces/ContactResolving.h"
#include "core/interfaces/MessagesStore.h"
#include "store/AttributedBodyDecoder.h"
#include "store/sqlite/SQLiteDatabase.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quillbook {

/// The one reader of a Messages database, a library's or a device backup's
/// (docs/formats/messages-database.md). Runs one call at a time and gives its turn up while contacts or
/// attachment files are looked up. Safe to call from any thread.
class MessagesRepository final : public MessagesStore {
public:
    /// `restraint` is for a database that comes from outside. Throws SQLiteError when the database cannot be
    /// opened.
    MessagesRepository(const std::filesystem::path& database,
                       std::shared_ptr<AttachmentLocating> attachmentLocator,
                       std::shared_ptr<ContactResolving> contactResolver,
                       const std::optional<SQLiteRestraint>& restraint = std::nullopt);

    /// The list is read once and kept: newer messages take a new repository. Throws SQLiteError or
    /// RepositoryError.
    std::vector<ConversationSummary> searchConversations(const std::string& query,
                                                         std::stop_token stop) override;
    /// Reads afresh, in one transaction. Throws SQLiteError, RepositoryError or CancellationError.
    ArchiveConversation loadConversation(const SourceID& id, std::stop_token stop) override;
    AttachmentStorageSurvey surveyAttachmentStorage(const SourceID& conversationID,
                                                    std::stop_token stop) override;
    std::vector<MissingAttachmentRecord> missingAttachments(const SourceID& conversationID,
                                                            std::stop_token stop) override;
    std::optional<std::filesystem::path> locateAttachment(const std::string& storedPath) override;
    void releaseAttachment(const std::filesystem::path& file) override;

private:
    using Turn = std::unique_lock<std::mutex>;
    std::vector<ConversationSummary> buildConversationList(Turn& turn);
    const std::set<std::string>& messageColumns();
    bool isOnThisMachine(const std::string& storedPath);

    std::mutex turn_;
    SQLiteDatabase database_;
    std::shared_ptr<AttachmentLocating> attachmentLocator_;
    std::shared_ptr<ContactResolving> contactResolver_;
    AttributedBodyDecoder bodyDecoder_;
    std::optional<std::vector<ConversationSummary>> cachedConversationSummaries_;
    std::optional<std::set<std::string>> messageColumnsCache_;
};

} // namespace quillbook
