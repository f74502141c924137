#include "tools/album/ModelDriver.h"

#include "backup/WorkingDirectory.h"
#include "contacts/ContactResolver.h"
#include "core/model/PreferenceKeys.h"
#include "core/records/Cancellation.h"
#include "platform/FileReader.h"
#include "platform/FolderAccess.h"
#include "platform/UserFolders.h"
#include "platform/linux/VCardAddressBook.h"
#include "store/MessagesAccessChecker.h"
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
    // What a crash left of an opened backup: decrypted messages.
    runner_->run(BackgroundRunner::Priority::utility,
                 [] { removeStaleWorkingDirectories(temporaryFolder()); });
    model_ = AppModel::make(AppModelServices{
        .accessChecker = std::make_shared<MessagesAccessChecker>(library),
        .sourceProvider = std::make_shared<MessageSourceProvider>(SourcePlaces::below(folders.home),
                                                                  contactFactory(arguments)),
        .preferences = std::make_shared<RunPreferences>(),
        .mainThread = loop_,
        .backgroundRunner = runner_,
        .presence = std::make_shared<NoPresence>(),
        .isWritableFolder = isWritableFolder,
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
    loop_->post([this] { model_->cancelExport(); });
}

void ModelDriver::wait(const std::function<bool()>& condition) {
    loop_->runUntil([&] { return condition() || (isInterrupted_ && !model_->isExporting()); },
                    std::chrono::hours(24 * 365));
    if (!condition()) throw CancellationError();
}

void ModelDriver::throwModelError() const {
    if (model_->state().errorMessage) throw ModelError(*model_->state().errorMessage);
}

void ModelDriver::start() {
    bool isDone = false;
    model_->start([&] { isDone = true; });
    wait([&] { return isDone; });
    if (!model_->state().accessStatus.isGranted())
        throw ModelError(accessProblem(model_->state().accessStatus));
    throwModelError();
}

void ModelDriver::selectSource(const std::string& id) {
    bool isDone = false;
    model_->selectSource(id, [&] { isDone = true; });
    wait([&] { return isDone; });
    if (model_->state().pendingPasswordSource) {
        if (!arguments_.passwordFile) throw ModelError("This source needs --password-file.");
        isDone = false;
        model_->submitBackupPassword(passwordIn(*arguments_.passwordFile), [&] { isDone = true; });
        wait([&] { return isDone; });
    }
    throwModelError();
    if (model_->state().selectedSourceID != id) throw ModelError("There is no source " + id + ".");
}

void ModelDriver::search(const std::string& text) {
    bool isDone = false;
    model_->setSearchText(text);
    model_->loadConversations([&] { isDone = true; });
    wait([&] { return isDone; });
    throwModelError();
}

ArchiveConversation ModelDriver::load(const std::string& conversation) {
    // The store is the model's own; only the waiting is done here.
    const auto store = model_->state().store;
    std::promise<ArchiveConversation> promise;
    std::future<ArchiveConversation> loaded = promise.get_future();
    runner_->run(BackgroundRunner::Priority::userInitiated, [&] {
        try {
            promise.set_value(store->loadConversation(SourceID{conversation}, {}));
        } catch (...) { // The end of a thread; the error goes to the one that waits.
            promise.set_exception(std::current_exception());
        }
    });
    return loaded.get();
}

ExportResult ModelDriver::exportConversation(const std::function<void(const ExportProgress&)>& report) {
    model_->setSelectedConversationID(SourceID{*arguments_.conversation});
    model_->continueToExportSetup();
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
