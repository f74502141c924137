#pragma once

#include "core/model/AppModel.h"
#include "core/records/DescribedError.h"
#include "platform/ThreadRunner.h"
#include "tools/album/AlbumArguments.h"
#include "tools/album/ResultJSON.h"
#include "tools/runloop/RunLoop.h"

#include <atomic>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>

namespace quillbook::tools {

/// What the model shows the user as its error message.
class ModelError final : public DescribedError {
public:
    explicit ModelError(std::string message) : message_(std::move(message)) {}
    std::string description() const override { return message_; }

private:
    std::string message_;
};

/// The application's model with its real services and a plain run loop, driven as a person would drive it at
/// the window. Operations block and throw ModelError with the model's words, or CancellationError after an
/// interrupt.
class ModelDriver {
public:
    explicit ModelDriver(const AlbumArguments& arguments);
    ~ModelDriver();
    ModelDriver(const ModelDriver&) = delete;
    ModelDriver& operator=(const ModelDriver&) = delete;

    AppModel& model() { return *model_; }
    /// Checks the access, lists the sources, opens the Mac's own library and its list.
    void start();
    /// Goes over to another source; the password file is read when the source asks for it.
    void selectSource(const std::string& id);
    void search(const std::string& text);
    ArchiveConversation load(const std::string& conversation);
    /// How many attachments of the conversation are on this machine.
    AttachmentStorageSurvey survey();
    /// What the caches hold of the rest. Only for the Mac's own library.
    RecoveryReport searchCaches();
    /// Copies all of that.
    RecoveryOutcome recover();
    PriorAlbum priorAlbum();
    ExportResult exportConversation(const std::function<void(const ExportProgress&)>& report);
    /// Cancels what is under way. Safe from any thread.
    void interrupt();

private:
    void wait(const std::function<bool()>& condition);
    /// Runs one operation of the model to the call of its completion.
    void run(const std::function<void(AppModel::Completion)>& operation);
    void selectConversation();
    void throwModelError() const;

    const AlbumArguments& arguments_;
    std::shared_ptr<RunLoop> loop_;
    std::shared_ptr<ThreadRunner> runner_;
    std::shared_ptr<AppModel> model_;
    std::atomic<bool> isInterrupted_ = false;
    std::stop_source loading_;
};

} // namespace quillbook::tools
