#include "tests/support/ModelHarness.h"

#include <algorithm>

namespace quillbook::test {

ModelHarness::ModelHarness() {
    preferences->values["onboarding.completed"] = true;
    provider->sources = {localMacSource(), backupSource("open-backup", false),
                         backupSource("locked-backup", true)};
    provider->conversations["local-mac"] = {conversation("1", "Grace"), conversation("2", "Katherine")};
    provider->conversations["open-backup"] = {conversation("b1", "Grace"), conversation("b2", "Rosalind")};
    provider->conversations["locked-backup"] = {conversation("c1", "Emmy")};
}

ModelHarness::~ModelHarness() {
    background->discard();
    if (mainThread) mainThread->discard();
}

void ModelHarness::makeModel(PreparedSource ready) {
    AppModelServices services;
    services.accessChecker = checker;
    services.sourceProvider = provider;
    services.preferences = preferences;
    services.mainThread = mainThread;
    services.backgroundRunner = runner;
    services.presence = presence;
    services.cacheRecovery = caches;
    services.recoveryRoot = "/home/ada/recovered";
    services.isWritableFolder = [this](const std::filesystem::path&) { return destinationIsWritable; };
    services.priorArchive = [this](const SourceID& id, const std::filesystem::path& folder) {
        priorArchiveQuestions.emplace_back(id, folder);
        return priorArchive(id, folder);
    };
    services.downloads = downloads;
    services.home = "/home/ada";
    model = AppModel::make(std::move(services), std::move(ready));
    model->observe([this](AppModelProperty property) { announcements.push_back(property); });
}

void ModelHarness::settle() {
    while (mainThread->posted() > 0 || background->waiting() > 0) {
        background->performAll();
        mainThread->turn();
    }
}

void ModelHarness::startedModel() {
    makeModel();
    model->start();
    settle();
    announcements.clear();
}

void ModelHarness::modelAtExportSetup() {
    startedModel();
    model->setSelectedConversationID(SourceID{"1"});
    model->continueToExportSetup();
    settle();
    announcements.clear();
}

void ModelHarness::exportingModel() {
    modelAtExportSetup();
    model->startExport();
    announcements.clear();
}

std::vector<std::string> ModelHarness::titles() const {
    std::vector<std::string> all;
    for (const auto& each : state().conversations)
        all.push_back(each.title);
    return all;
}

long ModelHarness::announced(AppModelProperty property) const {
    return std::count(announcements.begin(), announcements.end(), property);
}

} // namespace quillbook::test
