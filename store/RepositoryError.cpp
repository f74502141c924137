#include "store/RepositoryError.h"

#include "core/text/Localization.h"

#include <utility>

namespace quillbook {

RepositoryError::RepositoryError(Reason why, std::string what) : reason(why), subject(std::move(what)) {}

std::string RepositoryError::description() const {
    switch (reason) {
    case Reason::invalidConversationID:
        return localized("The selected conversation identifier is invalid.");
    case Reason::conversationNotFound:
        return localized("The selected conversation no longer exists.");
    case Reason::missingRequiredColumn:
        return localizedFormat("The Messages database did not return required field {}.", subject);
    }
    return {};
}

} // namespace quillbook
