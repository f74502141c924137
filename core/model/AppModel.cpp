#include "core/model/AppModel.h"

#include "core/model/PreferenceKeys.h"
#include "core/text/Localization.h"

#include <algorithm>
#include <utility>

namespace quillbook {
namespace {

ExportOptions storedOptions(const Preferences& preferences) {
    ExportOptions options;
    options.includeJSON = preferences.truth(preferenceKeys::includeJSON).value_or(options.includeJSON);
    options.includeMarkdown =
        preferences.truth(preferenceKeys::includeMarkdown).value_or(options.includeMarkdown);
    options.includeCSV = preferences.truth(preferenceKeys::includeCSV).value_or(options.includeCSV);
    return options;
}

} // namespace

std::shared_ptr<AppModel> AppModel::make(AppModelServices services, PreparedSource ready) {
    return std::shared_ptr<AppModel>(new AppModel(std::move(services), std::move(ready)));
}

AppModel::AppModel(AppModelServices services, PreparedSource ready)
    : services_(std::move(services)), hasInjectedStore_(ready.store != nullptr) {
    state_.options = storedOptions(*services_.preferences);
    state_.destination = services_.downloads.value_or(services_.home);
    state_.progress = {ExportStage::preparing, 0, 1, localized("Preparing")};
    state_.store = std::move(ready.store);
    state_.exporter = std::move(ready.exporter);
    if (ready.teardown) currentTeardown_ = std::make_shared<SourceTeardown>(std::move(ready.teardown));
}

AppModel::~AppModel() = default;

void AppModel::announce(AppModelProperty property) {
    const PropertyObserver observer = observer_; // It may replace itself while it runs.
    if (observer) observer(property);
}

void AppModel::show(AppScreen screen) {
    change(state_.screen, screen, AppModelProperty::screen);
}

void AppModel::showError(std::string message) {
    change(state_.errorMessage, std::move(message), AppModelProperty::errorMessage);
}

void AppModel::dismissError() {
    change(state_.errorMessage, std::nullopt, AppModelProperty::errorMessage);
}

void AppModel::refreshLoading() {
    change(state_.isLoading, isPreparingSource_ || isListing_, AppModelProperty::isLoading);
}

void AppModel::finish(const Completion& done) {
    if (done) done();
}

const ConversationSummary* AppModel::selectedConversation() const {
    if (!state_.selectedConversationID) return nullptr;
    const auto& all = state_.conversations;
    const auto found = std::find_if(
        all.begin(), all.end(), [&](const auto& each) { return each.id == state_.selectedConversationID; });
    return found == all.end() ? nullptr : &*found;
}

const MessageSource* AppModel::deviceBackupSource() const {
    const auto& all = state_.availableSources;
    const auto found =
        std::find_if(all.begin(), all.end(), [](const auto& each) { return !each.isLocalMac(); });
    return found == all.end() ? nullptr : &*found;
}

void AppModel::setSelectedConversationID(std::optional<SourceID> id) {
    if (state_.selectedConversationID == id) return;
    state_.selectedConversationID = std::move(id);
    const auto forgotten = forgetSurveys(); // Before anybody hears of the selection and looks at them.
    announce(AppModelProperty::selectedConversationID);
    for (const AppModelProperty each : forgotten)
        announce(each);
}

void AppModel::setOptions(const ExportOptions& options) {
    if (state_.options == options) return;
    services_.preferences->setTruth(preferenceKeys::includeJSON, options.includeJSON);
    services_.preferences->setTruth(preferenceKeys::includeMarkdown, options.includeMarkdown);
    services_.preferences->setTruth(preferenceKeys::includeCSV, options.includeCSV);
    change(state_.options, options, AppModelProperty::options);
}

void AppModel::setDestination(std::filesystem::path folder) {
    change(state_.destination, std::move(folder), AppModelProperty::destination);
}

void AppModel::setShowingSetupGuide(bool showing) {
    change(state_.showingSetupGuide, showing, AppModelProperty::showingSetupGuide);
}

void AppModel::setOnboardingPage(int page) {
    change(state_.onboardingPage, page, AppModelProperty::onboardingPage);
}

void AppModel::tearDown() {
    isTornDown_ = true;
    tasks_.cancelAll();
    if (const auto teardown = std::exchange(currentTeardown_, nullptr)) teardown->close();
    if (const auto teardown = std::exchange(exportedSource_, nullptr)) teardown->close();
}

} // namespace quillbook
