#include "shell/adapter/AppModelAdapter.h"

#include "core/text/Localization.h"
#include "core/text/SecretText.h"
#include "shell/adapter/Words.h"

#include <QPointer>
#include <QStringEncoder>
#include <QVariant>
#include <algorithm>
#include <utility>

namespace quillbook {
namespace {

QString localSymbol() {
    return QStringLiteral("desktopcomputer");
}

QString symbolOf(const MessageSource& source) {
    return source.isLocalMac() ? localSymbol() : QStringLiteral("iphone");
}

SourceFacts sourceFacts(const MessageSource& source, const std::optional<std::string>& selected) {
    SourceFacts facts;
    facts.id = qtText(source.id);
    facts.title = shownName(source.title);
    facts.subtitle = shownName(source.subtitle.value_or(""));
    facts.symbol = symbolOf(source);
    facts.isSelected = source.id == selected;
    return facts;
}

/// The text's own memory, which the field shares, is overwritten.
void empty(QObject& field, const QString& text) {
    std::fill_n(const_cast<QChar*>(text.constData()), text.size(), QChar(u'\0'));
    field.setProperty("text", QString());
}

std::string takenPassword(QObject& field) {
    const QString text = field.property("text").toString();
    // Straight into its place: QString's own conversions leave a copy behind.
    QStringEncoder toUTF8(QStringConverter::Utf8);
    std::string password(static_cast<std::size_t>(toUTF8.requiredSpace(text.size())), '\0');
    const char* end = toUTF8.appendToBuffer(password.data(), text);
    password.resize(static_cast<std::size_t>(end - password.data()));
    empty(field, text);
    return password;
}

} // namespace

AppModelAdapter::AppModelAdapter(std::shared_ptr<AppModel> model, AdapterServices services, QObject* parent)
    : QObject(parent), model_(std::move(model)), services_(std::move(services)),
      conversations_(model_->state().conversations, services_.avatars) {
    model_->observe([this](AppModelProperty property) { announce(property); });
}

AppModelAdapter::~AppModelAdapter() {
    model_->observe({});
}

void AppModelAdapter::announce(AppModelProperty property) {
    using Property = AppModelProperty;
    switch (property) {
    case Property::screen:
        rememberConversation();
        Q_EMIT commandsChanged();
        return Q_EMIT screenChanged();
    case Property::accessStatus:
        Q_EMIT commandsChanged();
        return Q_EMIT accessChanged();
    case Property::conversations:
        conversations_.reset();
        return announceConversation();
    case Property::selectedConversationID:
        return announceConversation();
    case Property::searchText:
        return Q_EMIT searchTextChanged();
    case Property::options:
        return Q_EMIT optionsChanged();
    case Property::destination:
        return Q_EMIT destinationChanged();
    case Property::progress:
        return Q_EMIT progressChanged();
    case Property::result:
        return Q_EMIT completionChanged();
    case Property::errorMessage:
        return Q_EMIT errorMessageChanged();
    case Property::isLoading:
        return Q_EMIT isLoadingChanged();
    case Property::availableSources:
    case Property::selectedSourceID:
        Q_EMIT sourcesChanged();
        return Q_EMIT completionChanged();
    case Property::pendingPasswordSource:
        return Q_EMIT passwordPromptChanged();
    case Property::priorArchive:
        return Q_EMIT priorArchiveChanged();
    case Property::showingSetupGuide:
        return Q_EMIT showingSetupGuideChanged();
    case Property::onboardingPage:
    case Property::isReplayingOnboarding:
        return Q_EMIT onboardingChanged();
    case Property::attachmentStorage:
        return Q_EMIT storageChanged();
    case Property::cacheRecovery:
        return Q_EMIT recoveryChanged();
    case Property::store:
    case Property::exporter:
        return;
    }
}

void AppModelAdapter::announceConversation() {
    Q_EMIT commandsChanged();
    Q_EMIT conversationChanged();
    Q_EMIT progressChanged();     // It names the conversation.
    Q_EMIT priorArchiveChanged(); // It tells how many messages are new.
}

AppModelAdapter::Screen AppModelAdapter::screen() const {
    switch (state().screen) {
    case AppScreen::onboarding:
        break;
    case AppScreen::access:
        return Screen::access;
    case AppScreen::chooseConversation:
        return Screen::chooseConversation;
    case AppScreen::exportSetup:
        return Screen::exportSetup;
    case AppScreen::exporting:
        return Screen::exporting;
    case AppScreen::complete:
        return Screen::complete;
    }
    return Screen::onboarding;
}

QString AppModelAdapter::errorMessage() const {
    return shownText(state().errorMessage.value_or(localized("An unexpected error occurred.")));
}

QString AppModelAdapter::placesHint() const {
    return qtText(services_.placesHint);
}

QVariantList AppModelAdapter::sources() const {
    QVariantList list;
    for (const MessageSource& source : state().availableSources)
        list += QVariant::fromValue(sourceFacts(source, state().selectedSourceID));
    return list;
}

QVariantList AppModelAdapter::backupSources() const {
    QVariantList list;
    for (const MessageSource& source : state().availableSources)
        if (std::holds_alternative<DeviceBackup>(source.kind))
            list += QVariant::fromValue(sourceFacts(source, state().selectedSourceID));
    return list;
}

const MessageSource* AppModelAdapter::sourceInUse() const {
    const auto& sources = state().availableSources;
    const auto found = std::find_if(sources.begin(), sources.end(), [this](const MessageSource& source) {
        return source.id == state().selectedSourceID;
    });
    return found == sources.end() ? nullptr : &*found;
}

QString AppModelAdapter::sourceTitle() const {
    const MessageSource* source = sourceInUse();
    return source != nullptr ? shownName(source->title) : qtText(localized("This Mac"));
}

QString AppModelAdapter::sourceSymbol() const {
    const MessageSource* source = sourceInUse();
    return source != nullptr ? symbolOf(*source) : localSymbol();
}

QString AppModelAdapter::passwordDevice() const {
    return state().pendingPasswordSource ? shownName(state().pendingPasswordSource->title) : QString();
}

QString AppModelAdapter::searchText() const {
    return qtText(state().searchText);
}

void AppModelAdapter::rememberConversation() {
    if (state().screen == AppScreen::chooseConversation) openedConversation_.reset();
    if (state().screen != AppScreen::exportSetup) return;
    if (const ConversationSummary* selected = model_->selectedConversation()) openedConversation_ = *selected;
}

const ConversationSummary* AppModelAdapter::shownConversation() const {
    if (const ConversationSummary* selected = model_->selectedConversation()) return selected;
    const bool isOpen = openedConversation_ && openedConversation_->id == state().selectedConversationID;
    return isOpen ? &*openedConversation_ : nullptr;
}

ConversationFacts AppModelAdapter::conversation() const {
    return conversationFacts(shownConversation(), *services_.avatars);
}

QString AppModelAdapter::selectedConversationID() const {
    const auto& id = state().selectedConversationID;
    return id ? qtText(id->rawValue) : QString();
}

PriorArchiveFacts AppModelAdapter::priorArchive() const {
    return priorArchiveFacts(state().priorArchive, model_->newMessagesSincePriorArchive());
}

ProgressFacts AppModelAdapter::progress() const {
    const ConversationSummary* conversation = model_->selectedConversation();
    return progressFacts(state().progress,
                         conversation != nullptr ? std::optional(conversation->title) : std::nullopt);
}

bool AppModelAdapter::canChooseConversation() const {
    return state().accessStatus.isGranted() && state().screen != AppScreen::exporting;
}

bool AppModelAdapter::canBackUpSelected() const {
    return state().screen == AppScreen::chooseConversation && model_->selectedConversation() != nullptr;
}

bool AppModelAdapter::canCheckForUpdates() const {
    return services_.canCheckForUpdates && services_.canCheckForUpdates();
}

void AppModelAdapter::setSearchText(const QString& text) {
    model_->setSearchText(text.toStdString());
}

void AppModelAdapter::setIncludeJSON(bool included) {
    changeOptions(&ExportOptions::includeJSON, included);
}

void AppModelAdapter::setIncludeMarkdown(bool included) {
    changeOptions(&ExportOptions::includeMarkdown, included);
}

void AppModelAdapter::setIncludeCSV(bool included) {
    changeOptions(&ExportOptions::includeCSV, included);
}

void AppModelAdapter::changeOptions(bool ExportOptions::*field, bool value) {
    ExportOptions options = state().options;
    options.*field = value;
    model_->setOptions(options);
}

void AppModelAdapter::showNextOnboardingPage() {
    model_->setOnboardingPage(state().onboardingPage + 1);
}

void AppModelAdapter::submitBackupPassword(QObject* field) {
    if (field == nullptr || !canSubmitPassword()) return;
    std::string password = takenPassword(*field);
    model_->submitBackupPassword(SecretText(password));
    overwrite(password);
}

void AppModelAdapter::forgetPassword(QObject* field) {
    if (field != nullptr) empty(*field, field->property("text").toString());
}

void AppModelAdapter::selectConversation(const QString& id) {
    if (id == selectedConversationID()) return;
    model_->setSelectedConversationID(id.isEmpty() ? std::nullopt
                                                   : std::optional(SourceID{id.toStdString()}));
    // The numbers come in while the user still looks at the conversation.
    model_->refreshAttachmentStorage();
}

void AppModelAdapter::chooseDestination() {
    const FolderQuestion question{
        .title = localized("Choose Export Folder"),
        .prompt = localized("Choose"),
        .folder = state().destination,
    };
    services_.folders->chooseFolder(
        question, [adapter = QPointer(this)](const std::optional<std::filesystem::path>& folder) {
            AppModelAdapter* const asker = adapter;
            if (asker == nullptr || !folder) return;
            asker->model_->setDestination(*folder);
            asker->model_->refreshPriorArchive();
        });
}

void AppModelAdapter::recoverFromCaches() {
    const auto& status = state().cacheRecovery;
    const auto* report = status ? std::get_if<RecoveryReport>(&status->state) : nullptr;
    if (report != nullptr) model_->recoverFromCaches(*report);
}

void AppModelAdapter::showInFileManager() {
    if (state().result) services_.files->reveal(state().result->archiveURL);
}

void AppModelAdapter::openArchive() {
    if (state().result) services_.files->open(state().result->archiveURL / "index.html");
}

void AppModelAdapter::checkForUpdates() {
    if (services_.checkForUpdates) services_.checkForUpdates();
}

} // namespace quillbook
