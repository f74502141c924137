#pragma once

#include "core/interfaces/AttachmentLocating.h"
#include "platform/UserFolders.h"

namespace quillbook {

/// Finds the attachments of a library in its own Messages folder, and never leads outside it. Holds no state;
/// safe from any thread.
class LocalLibraryAttachmentLocator final : public AttachmentLocating {
public:
    /// `messagesRoot` is the folder that holds "Attachments"; a leading "~" of a stored path stands for
    /// `home`.
    explicit LocalLibraryAttachmentLocator(std::filesystem::path messagesRoot,
                                           std::filesystem::path home = UserFolders::current().home);

    /// The file may be missing where the stored path names a place inside the library all the same.
    std::optional<std::filesystem::path> locate(const std::string& storedPath) override;
    void release(const std::filesystem::path& /*file*/) override {}

private:
    std::filesystem::path belowRoot(std::string_view relativePath) const;

    const std::filesystem::path messagesRoot_;
    const std::filesystem::path home_;
};

} // namespace quillbook
