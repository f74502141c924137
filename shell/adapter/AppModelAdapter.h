#pragma once

#include "core/model/AppModel.h"
#include "shell/adapter/AccessFacts.h"
#include "shell/adapter/AvatarStore.h"
#include "shell/adapter/CompletionFacts.h"
#include "shell/adapter/ConversationFacts.h"
#include "shell/adapter/ConversationListModel.h"
#include "shell/adapter/RecoveryFacts.h"
#include "shell/adapter/SetupFacts.h"
#include "shell/desktop/FileRevealing.h"
#include "shell/desktop/FolderChoosing.h"
#include "shell/desktop/SoundPlaying.h"

#include <QObject>
#include <QString>
#include <QVariantList>
#include <functional>
#include <memory>
#include <optional>

namespace quillbook {

/// One entry of the source menu.
struct SourceFacts {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString subtitle MEMBER subtitle)
    Q_PROPERTY(QString symbol MEMBER symbol)
    Q_PROPERTY(bool isSelected MEMBER isSelected)
public:
    QString id;
    QString title;
    QString subtitle;
    QString symbol;
    bool isSelected = false;
};

/// What the screens need of the desktop. Nothing but the functions may be null.
struct AdapterServices {
    std::shared_ptr<AvatarStore> avatars;
    std::shared_ptr<FileRevealing> files;
    std::shared_ptr<FolderChoosing> folders;
    std::shared_ptr<SoundPlaying> sound;
    /// Whether the system has a pane of privacy settings to open.
    bool hasPrivacySettings = false;
    /// Where a library and a backup have to lie, on a system that does not put them there itself; else empty.
    std::string placesHint;
    /// Asks for updates; null where there is no update service.
    std::function<void()> checkForUpdates;
    std::function<bool()> canCheckForUpdates;
};

/// The model as QML sees it: its state as properties in the user's words, its operations as calls. Each
/// property is announced when the fields that it is made of change. Main thread only.
class AppModelAdapter final : public QObject {
    Q_OBJECT
    Q_PROPERTY(Screen screen READ screen NOTIFY screenChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(bool hasError READ hasError NOTIFY errorMessageChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(bool showingSetupGuide READ showingSetupGuide NOTIFY showingSetupGuideChanged)
    Q_PROPERTY(int onboardingPage READ onboardingPage NOTIFY onboardingChanged)
    Q_PROPERTY(bool isReplayingOnboarding READ isReplayingOnboarding NOTIFY onboardingChanged)
    Q_PROPERTY(quillbook::AccessFacts access READ access NOTIFY accessChanged)
    Q_PROPERTY(bool hasPrivacySettings READ hasPrivacySettings CONSTANT)
    Q_PROPERTY(QString placesHint READ placesHint CONSTANT)
    Q_PROPERTY(QVariantList sources READ sources NOTIFY sourcesChanged)
    Q_PROPERTY(QVariantList backupSources READ backupSources NOTIFY sourcesChanged)
    Q_PROPERTY(QString sourceTitle READ sourceTitle NOTIFY sourcesChanged)
    Q_PROPERTY(QString sourceSymbol READ sourceSymbol NOTIFY sourcesChanged)
    Q_PROPERTY(bool isLocalSource READ isLocalSource NOTIFY sourcesChanged)
    Q_PROPERTY(bool isAskingForPassword READ isAskingForPassword NOTIFY passwordPromptChanged)
    Q_PROPERTY(QString passwordDevice READ passwordDevice NOTIFY passwordPromptChanged)
    Q_PROPERTY(bool canSubmitPassword READ canSubmitPassword NOTIFY isLoadingChanged)
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged)
    Q_PROPERTY(quillbook::ConversationListModel* conversations READ conversations CONSTANT)
    Q_PROPERTY(quillbook::ConversationFacts conversation READ conversation NOTIFY conversationChanged)
    Q_PROPERTY(QString selectedConversationID READ selectedConversationID NOTIFY conversationChanged)
    Q_PROPERTY(bool includeJSON READ includeJSON WRITE setIncludeJSON NOTIFY optionsChanged)
    Q_PROPERTY(bool includeMarkdown READ includeMarkdown WRITE setIncludeMarkdown NOTIFY optionsChanged)
    Q_PROPERTY(bool includeCSV READ includeCSV WRITE setIncludeCSV NOTIFY optionsChanged)
    Q_PROPERTY(quillbook::FolderFacts destination READ destination NOTIFY destinationChanged)
    Q_PROPERTY(quillbook::StorageFacts storage READ storage NOTIFY storageChanged)
    Q_PROPERTY(quillbook::RecoveryFacts recovery READ recovery NOTIFY recoveryChanged)
    Q_PROPERTY(quillbook::PriorArchiveFacts priorArchive READ priorArchive NOTIFY priorArchiveChanged)
    Q_PROPERTY(quillbook::ProgressFacts progress READ progress NOTIFY progressChanged)
    Q_PROPERTY(quillbook::CompletionFacts completion READ completion NOTIFY completionChanged)
    Q_PROPERTY(bool canChooseConversation READ canChooseConversation NOTIFY commandsChanged)
    Q_PROPERTY(bool canBackUpSelected READ canBackUpSelected NOTIFY commandsChanged)
    Q_PROPERTY(bool canCancelBackup READ canCancelBackup NOTIFY commandsChanged)
    Q_PROPERTY(bool hasUpdates READ hasUpdates CONSTANT)
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY updatesChanged)
public:
    enum class Screen { onboarding, access, chooseConversation, exportSetup, exporting, complete };
    Q_ENUM(Screen)

    AppModelAdapter(std::shared_ptr<AppModel> model, AdapterServices services, QObject* parent = nullptr);
    ~AppModelAdapter() override;

    Screen screen() const;
    QString errorMessage() const;
    bool hasError() const { return state().errorMessage.has_value(); }
    bool isLoading() const { return state().isLoading; }
    bool showingSetupGuide() const { return state().showingSetupGuide; }
    int onboardingPage() const { return state().onboardingPage; }
    bool isReplayingOnboarding() const { return state().isReplayingOnboarding; }
    AccessFacts access() const { return accessFacts(state().accessStatus); }
    bool hasPrivacySettings() const { return services_.hasPrivacySettings; }
    QString placesHint() const;
    QVariantList sources() const;
    /// The device backups among the sources.
    QVariantList backupSources() const;
    QString sourceTitle() const;
    /// Of the source in use; this Mac's where none is.
    QString sourceSymbol() const;
    bool isLocalSource() const { return state().selectedSourceID == "local-mac"; }
    bool isAskingForPassword() const { return state().pendingPasswordSource.has_value(); }
    QString passwordDevice() const;
    /// While a source is being prepared, the model takes no password.
    bool canSubmitPassword() const { return !model_->isPreparingSource(); }
    QString searchText() const;
    ConversationListModel* conversations() { return &conversations_; }
    ConversationFacts conversation() const;
    QString selectedConversationID() const;
    bool includeJSON() const { return state().options.includeJSON; }
    bool includeMarkdown() const { return state().options.includeMarkdown; }
    bool includeCSV() const { return state().options.includeCSV; }
    FolderFacts destination() const { return folderFacts(state().destination); }
    StorageFacts storage() const { return storageFacts(state().attachmentStorage); }
    RecoveryFacts recovery() const { return recoveryFacts(state().cacheRecovery); }
    PriorArchiveFacts priorArchive() const;
    ProgressFacts progress() const;
    CompletionFacts completion() const { return completionFacts(state()); }
    bool canChooseConversation() const;
    bool canBackUpSelected() const;
    bool canCancelBackup() const { return state().screen == AppScreen::exporting; }
    bool hasUpdates() const { return services_.checkForUpdates != nullptr; }
    bool canCheckForUpdates() const;

    void setSearchText(const QString& text);
    void setIncludeJSON(bool included);
    void setIncludeMarkdown(bool included);
    void setIncludeCSV(bool included);

    Q_INVOKABLE void start() { model_->start(); }
    Q_INVOKABLE void showNextOnboardingPage();
    Q_INVOKABLE void finishOnboarding() { model_->finishOnboarding(); }
    Q_INVOKABLE void replayOnboarding() { model_->replayOnboarding(); }
    Q_INVOKABLE void openPrivacySettings() { model_->openPrivacySettings(); }
    Q_INVOKABLE void openSetupGuide() { model_->setShowingSetupGuide(true); }
    Q_INVOKABLE void closeSetupGuide() { model_->setShowingSetupGuide(false); }
    Q_INVOKABLE void dismissError() { model_->dismissError(); }
    Q_INVOKABLE void selectSource(const QString& id) { model_->selectSource(id.toStdString()); }
    /// Takes the password out of a text field, as `forgetPassword`. Leaves it there where the model takes
    /// none.
    Q_INVOKABLE void submitBackupPassword(QObject* field);
    /// Overwrites the property "text" of a text field and empties it.
    Q_INVOKABLE void forgetPassword(QObject* field);
    Q_INVOKABLE void cancelBackupPassword() { model_->cancelBackupPassword(); }
    Q_INVOKABLE void selectConversation(const QString& id);
    Q_INVOKABLE void chooseConversation() { model_->chooseConversation(); }
    Q_INVOKABLE void continueToExportSetup() { model_->continueToExportSetup(); }
    /// Asks the user for a folder; an answer moves the destination and looks for an earlier album there.
    Q_INVOKABLE void chooseDestination();
    Q_INVOKABLE void startExport() { model_->startExport(); }
    Q_INVOKABLE void cancelExport() { model_->cancelExport(); }
    Q_INVOKABLE void surveyCaches() { model_->surveyCaches(); }
    /// Recovers what the report on show offers.
    Q_INVOKABLE void recoverFromCaches();
    Q_INVOKABLE void lookInDeviceBackup() { model_->lookInDeviceBackup(); }
    /// The completion screen has appeared.
    Q_INVOKABLE void soundCompletion() { services_.sound->playCompletion(); }
    Q_INVOKABLE void showInFileManager();
    Q_INVOKABLE void openArchive();
    Q_INVOKABLE void checkForUpdates();

Q_SIGNALS:
    void screenChanged();
    void errorMessageChanged();
    void isLoadingChanged();
    void showingSetupGuideChanged();
    void onboardingChanged();
    void accessChanged();
    void sourcesChanged();
    void passwordPromptChanged();
    void searchTextChanged();
    void conversationChanged();
    void optionsChanged();
    void destinationChanged();
    void storageChanged();
    void recoveryChanged();
    void priorArchiveChanged();
    void progressChanged();
    void completionChanged();
    void commandsChanged();
    void updatesChanged();

private:
    const AppModelState& state() const { return model_->state(); }
    const MessageSource* sourceInUse() const;
    void announce(AppModelProperty property);
    void announceConversation();
    void changeOptions(bool ExportOptions::*field, bool value);
    void rememberConversation();
    /// The selected one, also where a late search filtered it away behind the setup. Null without one.
    const ConversationSummary* shownConversation() const;

    const std::shared_ptr<AppModel> model_;
    const AdapterServices services_;
    ConversationListModel conversations_;
    std::optional<ConversationSummary> openedConversation_; ///< Whom the setup was opened for.
};

} // namespace quillbook
