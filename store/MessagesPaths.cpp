#include "store/MessagesPaths.h"

namespace quillbook {

MessagesPaths MessagesPaths::below(const std::filesystem::path& home) {
    return {home / "Library/Messages"};
}

std::filesystem::path MessagesPaths::database() const {
    return messagesRoot / "chat.db";
}

} // namespace quillbook
