#pragma once

#include "core/interfaces/AttachmentSurvey.h"
#include "core/interfaces/ConversationLoading.h"
#include "core/records/ConversationSummary.h"

#include <vector>

namespace quillbook {

/// The reader of one open source. All operations may be slow and throw a DescribedError or CancellationError.
class MessagesStore : public ConversationLoading {
public:
    /// The conversations that match, in the list's order; all of them for a query of blanks.
    virtual std::vector<ConversationSummary> searchConversations(const std::string& query,
                                                                 std::stop_token stop) = 0;
    virtual AttachmentStorageSurvey surveyAttachmentStorage(const SourceID& conversationID,
                                                            std::stop_token stop) = 0;
    virtual std::vector<MissingAttachmentRecord> missingAttachments(const SourceID& conversationID,
                                                                    std::stop_token stop) = 0;
};

} // namespace quillbook
