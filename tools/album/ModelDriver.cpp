#include "tools/album/ModelDriver.h"

#include "backup/WorkingDirectory.h"
#include "contacts/ContactResolver.h"
#include "core/model/PreferenceKeys.h"
#include "core/records/Cancellation.h"
#include "export/ArchiveDirectory.h"
#include "platform/FileReader.h"
#include "platform/FolderAccess.h"
#include "platform/UserFolders.h"
#include "platform/linux/VCardAddressBook.h"
#include "recovery/CloudKitCacheRecoveryService.h"
#include "recovery/RecoveryFolder.h"
#include "store/MessagesAccessChecker.h"
#include "store/sources/BackupOnlyAccess.h"
#include "store/sources/MessageSourceProvider.h"

#include <future>
#include <map>

namespace quillbook::tools {
namespace {

/// The choices of one run. A developer's run leaves those of the user alone, and has no onboarding to go
/// through.
class RunPreferences final : public Preferences {
public:
    std::optional<bool> truth(std::string_view key) const override {
        const auto found = values_.find(key);
        return found == values_.end() ? std::nullopt : std::optional(found->second);
    }
    void setTruth(std::string_view key, bool value) override { values_[std::string(key)] = value; }

private:
    std::map<std::string, bool, std::less<>> values_{{"onboarding.completed", true}};
};

/// There is no window beside which an export could be shown.
class NoPresence final : public ExportPresenting {
public:
    void exportStarted() override {}
    void exportProgressed(double /*fraction*/) override {}
    void exportFinished(const std::string& /*title*/, const std::filesystem::path& /*album*/) override {}
    void clearBadge() override {}
};

MessageSourceProvider::ContactResolverFactory contactFactory(const AlbumArguments& arguments) {
    return [contacts = arguments.contacts]() -> std::shared_ptr<ContactResolving> {
        std::shared_ptr<AddressBook> book;
        if (contacts) {
            book = std::make_shared<VCardAddressBook>(*contacts);
        } else {
            book = std::make_shared<UnavailableAddressBook>();
        }
        return std::make_shared<ContactResolver>(book);
    };
}

std::string accessProblem(const MessagesAccessStatus& status) {
    using Kind = MessagesAccessStatus::Kind;
    switch (status.kind) {
    case Kind::checking:
    case Kind::granted:
        break;
    case Kind::denied:
        return "The Messages library can’t be read.";
    case Kind::databaseMissing:
        return "There is no Messages library in the home folder.";
    case Kind::failed:
        return status.message;
    }
    return "The Messages library did not open.";
}

std::string passwordIn(const std::filesystem::path& file) {
    std::string password = readWholeFile(file, 65'536);
    while (!password.empty() && (password.back() == '\n' || password.back() == '\r'))
        password.pop_back();
    return password;
}

} // namespace

ModelDriver::ModelDriver(const AlbumArguments& arguments)
    : arguments_(arguments), loop_(std::make_shared<RunLoop>()), runner_(std::make_shared<ThreadRunner>()) {
    const UserFolders folders = arguments.home ? UserFolders::below(*arguments.home) : UserFolders::current();
    const MessagesPaths library = MessagesPaths::below(folders.home);
    const auto checker = std::make_shared<MessagesAccessChecker>(library);
    const auto sources =
        std::make_shared<MessageSourceProvider>(SourcePlaces::of(folders), contactFactory(arguments));
    model_ = AppModel::make(AppModelServices{
        .accessChecker = std::make_shared<BackupOnlyAccessChecker>(checker, sources, library),
        .sourceProvider = std::make_shared<BackupOnlySourceProvider>(sources, checker, library),
        .preferences = std::make_shared<RunPreferences>(),
        .mainThread = loop_,
        .backgroundRunner = runner_,
        .presence = std::make_shared<NoPresence>(),
        .cacheRecovery =
            std::make_shared<CloudKitCacheRecoveryService>(CloudKitCacheRecoveryService::below(folders.home)),
        .recoveryRoot = recoveryRoot(folders.applicationSupport),
        .isWritableFolder = isWritableFolder,
        .priorArchive = priorArchive,
        .downloads = folders.downloads,
        .home = folders.home,
    });
}

ModelDriver::~ModelDriver() {
    model_->tearDown();
    // The end of a cancelled export still has to reach the model, and its staging folder has to go.
    loop_->runUntil([this] { return !model_->isExporting(); }, std::chrono::minutes(1));
}

void ModelDriver::interrupt() {
    isInterrupted_ = true;
    loading_.request_stop();
    loop_->post([this] { model_->cancelExport(); });
}

void ModelDriver::wait(const std::function<bool()>& condition) {
    loop_->runUntil([&] { return condition() || (isInterrupted_ && !model_->isExporting()); },
                    std::chrono::hours(24 * 365));
    if (!condition()) throw CancellationError();
}

void ModelDriver::run(const std::function<void(AppModel::Completion)>& operation) {
    // Shared: after an interrupt the operation may end when nobody waits for it any more.
    const auto isDone = std::make_shared<bool>(false);
    operation([isDone] { *isDone = true; });
    wait([&] { return *isDone; });
}

void ModelDriver::throwModelError() const {
    if (model_->state().errorMessage) throw ModelError(*model_->state().errorMessage);
}

void ModelDriver::start() {
    // What a crash left of an opened backup: decrypted messages.
    runner_->run(BackgroundRunner::Priority::utility,
                 [] { removeStaleWorkingDirectories(temporaryFolder()); });
    run([this](auto done) { model_->start(done); });
    if (!model_->state().accessStatus.isGranted())
        throw ModelError(accessProblem(model_->state().accessStatus));
    throwModelError();
}

void ModelDriver::selectSource(const std::string& id) {
    run([&](auto done) { model_->selectSource(id, done); });
    if (model_->state().pendingPasswordSource) {
        if (!arguments_.passwordFile) throw ModelError("This source needs --password-file.");
        run([this](auto done) {
            model_->submitBackupPassword(SecretText(passwordIn(*arguments_.passwordFile)), done);
        });
    }
    throwModelError();
    if (model_->state().selectedSourceID != id) throw ModelError("There is no source " + id + ".");
}

void ModelDriver::search(const std::string& text) {
    model_->setSearchText(text);
    run([this](auto done) { model_->loadConversations(done); });
    throwModelError();
}

ArchiveConversation ModelDriver::load(const std::string& conversation) {
    // The store is the model's own; only the waiting is done here.
    const auto store = model_->state().store;
    std::promise<ArchiveConversation> promise;
    std::future<ArchiveConversation> loaded = promise.get_future();
    runner_->run(BackgroundRunner::Priority::userInitiated, [&] {
        try {
            promise.set_value(store->loadConversation(SourceID{conversation}, loading_.get_token()));
        } catch (...) { // The end of a thread; the error goes to the one that waits.
            promise.set_exception(std::current_exception());
        }
    });
    return loaded.get();
}

void ModelDriver::selectConversation() {
    model_->setSelectedConversationID(SourceID{*arguments_.conversation});
    if (model_->selectedConversation() == nullptr)
        throw ModelError("The selected conversation no longer exists.");
}

AttachmentStorageSurvey ModelDriver::survey() {
    selectConversation();
    run([this](auto done) { model_->refreshAttachmentStorage(done); });
    if (!model_->state().attachmentStorage) throw ModelError("The attachments could not be counted.");
    return *model_->state().attachmentStorage;
}

RecoveryReport ModelDriver::searchCaches() {
    survey();
    const auto& status = model_->state().cacheRecovery;
    if (!status) throw ModelError("The caches serve this Mac's own library alone.");
    if (const auto* failed = std::get_if<CacheRecoveryStatus::Failed>(&status->state))
        throw ModelError("Recovery failed: " + failed->message);
    if (const auto* none = std::get_if<CacheRecoveryStatus::NothingRecoverable>(&status->state))
        return {.candidates = {}, .unmatchedCount = none->missing};
    const auto* report = std::get_if<RecoveryReport>(&status->state);
    return report == nullptr ? RecoveryReport() : *report;
}

RecoveryOutcome ModelDriver::recover() {
    const RecoveryReport report = searchCaches();
    if (report.candidates.empty()) return {};
    std::optional<RecoveryOutcome> outcome;
    // It stands for a moment only, before the counts are made anew.
    model_->observe([&](AppModelProperty property) {
        const auto& status = model_->state().cacheRecovery;
        if (property != AppModelProperty::cacheRecovery || !status) return;
        if (const auto* stands = std::get_if<RecoveryOutcome>(&status->state)) outcome = *stands;
    });
    try {
        run([&](auto done) { model_->recoverFromCaches(report, done); });
    } catch (const std::exception&) {
        model_->observe({}); // It would outlive what it notes the outcome in.
        throw;
    }
    model_->observe({});
    if (!outcome) throw ModelError("The recovery did not end.");
    return *outcome;
}

PriorAlbum ModelDriver::priorAlbum() {
    selectConversation();
    model_->setDestination(*arguments_.destination);
    run([this](auto done) { model_->refreshPriorArchive(done); });
    return {model_->state().priorArchive, model_->newMessagesSincePriorArchive()};
}

ExportResult ModelDriver::exportConversation(const std::function<void(const ExportProgress&)>& report) {
    // Without the setup screen, whose surveys nobody would see here.
    selectConversation();
    model_->setDestination(*arguments_.destination);
    model_->setOptions(arguments_.options);
    model_->observe([&](AppModelProperty property) {
        if (property == AppModelProperty::progress) report(model_->state().progress);
    });
    model_->startExport();
    wait([&] { return !model_->isExporting(); });
    model_->observe({});
    throwModelError();
    if (!model_->state().result) throw CancellationError();
    return *model_->state().result;
}

} // namespace quillbook::tools
