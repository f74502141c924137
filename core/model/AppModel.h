#pragma once

#include "core/model/AppModelProperty.h"
#include "core/model/AppModelServices.h"
#include "core/model/AppModelState.h"
#include "core/model/AppModelTasks.h"
#include "core/model/BackgroundTask.h"
#include "core/model/SourceTeardown.h"
#include "core/text/SecretText.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillbook {

/// The one object that knows where the application stands: its screen, its current source, its tasks. The
/// screens read `state()` and call the operations. All of it belongs to the main thread; slow calls run in
/// the background and come back there. Errors end in `state().errorMessage`. A
/// `Completion` is called on the main thread when its run is over, also where the run was dropped, and even
/// where the model is gone by then.
class AppModel final : public std::enable_shared_from_this<AppModel> {
public:
    using Completion = std::function<void()>;
    using PropertyObserver = std::function<void(AppModelProperty)>;

    /// A model with a `ready` store never lists sources. The ready source is closed like any other.
    static std::shared_ptr<AppModel> make(AppModelServices services, PreparedSource ready = {});
    /// Cancels every task and closes the current source, if `tearDown` did not.
    ~AppModel();
    AppModel(const AppModel&) = delete;
    AppModel& operator=(const AppModel&) = delete;

    const AppModelState& state() const { return state_; }
    /// Tells of every change of a field, after it; a value equal to the old one is no change. Replaces the
    /// observer before it.
    void observe(PropertyObserver observer) { observer_ = std::move(observer); }
    /// The chosen conversation if the list has it, else null. Valid until `conversations` changes.
    const ConversationSummary* selectedConversation() const;
    /// The first source that is not this machine's own library, else null. Valid until `availableSources`
    /// changes.
    const MessageSource* deviceBackupSource() const;
    /// How many messages the selected conversation has beyond those that `priorArchive` saw, never below 0.
    /// Absent without either.
    std::optional<std::int64_t> newMessagesSincePriorArchive() const;
    /// A source is being opened; until its list is there, a request for another is dropped.
    bool isPreparingSource() const { return isPreparingSource_; }
    bool isExporting() const { return tasks_.exporting.isOccupied(); }

    // What a screen may set.
    /// Forgets what was found out about the conversation before.
    void setSelectedConversationID(std::optional<SourceID> id);
    /// Searches 0.22 seconds after the last change.
    void setSearchText(std::string text);
    /// Written to the preferences at once.
    void setOptions(const ExportOptions& options);
    /// `refreshPriorArchive` is to follow.
    void setDestination(std::filesystem::path folder);
    void setShowingSetupGuide(bool showing);
    void setOnboardingPage(int page);
    void dismissError();
    /// The search text that the next source to be opened starts with.
    void setPendingSearchHint(std::optional<std::string> hint) { pendingSearchHint_ = std::move(hint); }

    // Start and onboarding.
    /// Checks the access and goes to the screen that follows from it. A later call takes over from one still
    /// under way.
    void start(Completion done = {});
    void finishOnboarding();
    void replayOnboarding();
    void openPrivacySettings() { services_.accessChecker->openPrivacySettings(); }

    // Sources. While one is being prepared, a request for another is dropped.
    void selectSource(const std::string& id, Completion done = {});
    /// The password is overwritten once the source was tried with it.
    void submitBackupPassword(SecretText password, Completion done = {});
    /// The password sheet was closed. Ends the preparation that a password started.
    void cancelBackupPassword();

    // Conversations and the export.
    void loadConversations(Completion done = {});
    void chooseConversation();
    void continueToExportSetup();
    void startExport();
    void cancelExport();

    // What is found out about the selected conversation.
    /// Looks for an earlier album in `destination`.
    void refreshPriorArchive(Completion done = {});
    /// Counts the attachments anew, then surveys the caches; the run is over with both.
    void refreshAttachmentStorage(Completion done = {});
    /// Looks for copies of what is missing. Only for this machine's own library: its caches say nothing about
    /// a backup.
    void surveyCaches(Completion done = {});
    /// Copies what a survey of this machine's own library found, tells the outcome and refreshes the counts
    /// in the same step; the run is over with that refresh. Once copying began, it goes on to its end,
    /// whatever is selected meanwhile.
    void recoverFromCaches(RecoveryReport report, Completion done = {});
    /// Goes to the list of the first device backup, searched for whom the selected conversation is with.
    void lookInDeviceBackup(Completion done = {});

    /// At termination: cancels every task and closes the source, before it returns. No task begins after
    /// that; the end of a running export still arrives if the main thread lives to run it.
    void tearDown();

private:
    /// One run of an operation: the task's token, and whom to tell of its end.
    struct Run {
        std::stop_token stop;
        Completion done;
    };
    enum class PreparationOrigin { choice, passwordPrompt };
    /// What a survey is about. Its answer counts for nothing else: another source may use the same ids.
    struct Subject {
        SourceID conversation;
        std::shared_ptr<MessagesStore> store;
        bool operator==(const Subject&) const = default;
    };
    using Conversations = std::vector<ConversationSummary>;
    using MissingAttachments = std::vector<MissingAttachmentRecord>;

    AppModel(AppModelServices services, PreparedSource ready);

    /// Compares, sets and announces.
    template <typename Value>
    void change(Value& field, std::type_identity_t<Value> value, AppModelProperty property);
    void announce(AppModelProperty property);
    void show(AppScreen screen);
    void showError(std::string message);
    void refreshLoading();
    static void finish(const Completion& done);
    TaskRoad road() const { return {services_.backgroundRunner, services_.mainThread}; }
    /// Calls `then(model, outcome, run)` unless the task was cancelled or the model is gone. Holds the model
    /// weakly.
    template <typename Value, typename Then>
    void inBackground(Run run, std::function<Value(std::stop_token)> work, Then then,
                      BackgroundRunner::Priority priority = BackgroundRunner::Priority::userInitiated);

    void takeAccessStatus(MessagesAccessStatus status, Run run);
    void listSources(Run run);
    void takeSources(std::vector<MessageSource> sources, Run run);
    void activateSource(const MessageSource& source, std::optional<SecretText> password,
                        PreparationOrigin origin, Completion done);
    void installSource(const std::string& id, OpenedSource opened, Run run);
    void failPreparation(const TaskFailure& failure, PreparationOrigin origin, const Run& run);
    void endPreparation();
    void closeCurrentSource();
    void startSearch();
    void takeConversations(TaskOutcome<Conversations> outcome, const std::string& asked,
                           const std::shared_ptr<MessagesStore>& store, const Run& run);
    void runExportTask();
    ProgressCallback progressHop(const std::stop_token& stop);
    void showProgress(const ExportProgress& progress);
    void endExport(TaskOutcome<ExportResult> outcome);
    void completeExport(ExportResult result);
    /// The selected conversation in the current source; absent without either.
    std::optional<Subject> subject() const;
    bool usesOwnLibrary() const;
    /// Drops what was found out about a conversation, and the tasks that still do. Gives what changed, for
    /// the caller to announce.
    std::vector<AppModelProperty> forgetSurveys();
    void takeAttachmentStorage(const TaskOutcome<AttachmentStorageSurvey>& outcome, const Subject& asked,
                               Run run);
    void takeMissingAttachments(TaskOutcome<MissingAttachments> outcome, const Subject& asked, Run run);
    void searchCaches(MissingAttachments missing, const Subject& asked, Run run);
    void takeRecovery(TaskOutcome<RecoveryOutcome> outcome, const Subject& asked, const Run& run);
    bool isOutdatedByRecovery() const;
    void showCacheRecovery(std::optional<CacheRecoveryStatus> status);
    void failCacheRecovery(const TaskFailure& failure);

    const AppModelServices services_;
    const bool hasInjectedStore_;
    AppModelState state_;
    PropertyObserver observer_;
    std::shared_ptr<SourceTeardown> currentTeardown_;
    std::shared_ptr<SourceTeardown> exportedSource_; ///< Kept open until the running export ends.
    std::optional<std::string> pendingSearchHint_;
    bool isPreparingSource_ = false;
    bool isPromptPreparing_ = false; ///< The running `prepare` call came from the password prompt.
    bool isListing_ = false; ///< A list was asked for, and no answer to the current question came yet.
    bool isTornDown_ = false;
    AppModelTasks tasks_;
};

template <typename Value>
void AppModel::change(Value& field, std::type_identity_t<Value> value, AppModelProperty property) {
    if (field == value) return;
    field = std::move(value);
    announce(property);
}

template <typename Value, typename Then>
void AppModel::inBackground(Run run, std::function<Value(std::stop_token)> work, Then then,
                            BackgroundRunner::Priority priority) {
    const std::stop_token stop = run.stop;
    runInBackground<Value>(road(), priority, stop, std::move(work),
                           [weak = weak_from_this(), run = std::move(run), then](TaskOutcome<Value> outcome) {
                               const auto model = weak.lock();
                               if (model && !run.stop.stop_requested())
                                   return then(*model, std::move(outcome), run);
                               outcome = TaskFailure(); // Closes a source that nobody takes any more.
                               finish(run.done);
                           });
}

} // namespace quillbook
