#include "store/sources/BackupOnlyAccess.h"

#include "export/ExportCoordinator.h"
#include "store/RepositoryError.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace quillbook {
namespace {

/// Whether nothing stands at the path. False where that cannot be told, and behind a link that leads nowhere:
/// what it means may lie on a disk that is not plugged in.
bool isAbsent(std::filesystem::path path) {
    using std::filesystem::file_type;
    std::error_code unknown;
    if (std::filesystem::symlink_status(path, unknown).type() != file_type::not_found) return false;
    while (std::filesystem::symlink_status(path, unknown).type() == file_type::not_found &&
           path.has_relative_path())
        path = path.parent_path();
    return std::filesystem::is_directory(path, unknown);
}

bool isMissing(const MessagesAccessStatus& status, const MessagesPaths& library) {
    using Kind = MessagesAccessStatus::Kind;
    return status.kind == Kind::databaseMissing ||
           (status.kind == Kind::denied && isAbsent(library.messagesRoot));
}

bool hasDeviceBackup(MessageSourceProviding& sources, const std::stop_token& stop) {
    const auto all = sources.availableSources(stop);
    return std::any_of(all.begin(), all.end(), [](const MessageSource& source) {
        return std::holds_alternative<DeviceBackup>(source.kind);
    });
}

[[noreturn]] void throwNotFound(const SourceID& id) {
    throw RepositoryError(RepositoryError::Reason::conversationNotFound, id.rawValue);
}

/// A library without a single conversation.
class EmptyMessagesStore final : public MessagesStore {
public:
    std::vector<ConversationSummary> searchConversations(const std::string& /*query*/,
                                                         std::stop_token /*stop*/) override {
        return {};
    }
    ArchiveConversation loadConversation(const SourceID& id, std::stop_token /*stop*/) override {
        throwNotFound(id);
    }
    AttachmentStorageSurvey surveyAttachmentStorage(const SourceID& /*conversationID*/,
                                                    std::stop_token /*stop*/) override {
        return {};
    }
    std::vector<MissingAttachmentRecord> missingAttachments(const SourceID& /*conversationID*/,
                                                            std::stop_token /*stop*/) override {
        return {};
    }
    std::optional<std::filesystem::path> locateAttachment(const std::string& /*storedPath*/) override {
        return std::nullopt;
    }
    void releaseAttachment(const std::filesystem::path& /*file*/) override {}
};

PreparedSource emptySource() {
    auto store = std::make_shared<EmptyMessagesStore>();
    auto exporter = std::make_shared<ExportCoordinator>(store);
    return {.store = std::move(store), .exporter = std::move(exporter), .teardown = [] {}};
}

} // namespace

BackupOnlyAccessChecker::BackupOnlyAccessChecker(std::shared_ptr<MessagesAccessChecking> inner,
                                                 std::shared_ptr<MessageSourceProviding> sources,
                                                 MessagesPaths library)
    : inner_(std::move(inner)), sources_(std::move(sources)), library_(std::move(library)) {}

MessagesAccessStatus BackupOnlyAccessChecker::checkAccess(std::stop_token stop) {
    MessagesAccessStatus status = inner_->checkAccess(stop);
    if (!isMissing(status, library_)) return status;
    using Kind = MessagesAccessStatus::Kind;
    return {hasDeviceBackup(*sources_, stop) ? Kind::granted : Kind::databaseMissing, {}};
}

BackupOnlySourceProvider::BackupOnlySourceProvider(std::shared_ptr<MessageSourceProviding> inner,
                                                   std::shared_ptr<MessagesAccessChecking> checker,
                                                   MessagesPaths library)
    : inner_(std::move(inner)), checker_(std::move(checker)), library_(std::move(library)) {}

std::vector<MessageSource> BackupOnlySourceProvider::availableSources(std::stop_token stop) {
    return inner_->availableSources(std::move(stop));
}

PreparedSource BackupOnlySourceProvider::prepare(const MessageSource& source,
                                                 const std::optional<std::string>& password,
                                                 std::stop_token stop) {
    if (source.isLocalMac() && isMissing(checker_->checkAccess(stop), library_) &&
        hasDeviceBackup(*inner_, stop))
        return emptySource();
    return inner_->prepare(source, password, std::move(stop));
}

} // namespace quillbook
