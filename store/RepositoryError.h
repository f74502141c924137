#pragma once

#include "core/records/DescribedError.h"

#include <string>

namespace quillbook {

/// A conversation that cannot be listed or loaded.
class RepositoryError final : public DescribedError {
public:
    enum class Reason { invalidConversationID, conversationNotFound, missingRequiredColumn };

    /// `subject` is the id, or with `missingRequiredColumn` the column's name.
    RepositoryError(Reason reason, std::string subject);

    std::string description() const override;

    Reason reason;
    std::string subject;
};

} // namespace quillbook
