#pragma once

#include "core/model/AppModel.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/ManualRunner.h"
#include "tests/support/ModelFakes.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook::test {

/// A model on a hand-turned main thread among fakes. The onboarding is completed, the access granted; there
/// are this Mac's library and an open and an encrypted backup.
class ModelHarness : public testing::Test {
protected:
    ModelHarness();
    /// Work that still waits is dropped: a waiting export holds the model, which holds those for whom the
    /// export waits.
    ~ModelHarness() override;
    /// Lets all that can happen without the clock happen.
    void settle();
    /// Makes the model; the fakes are to be set up before.
    void makeModel(PreparedSource ready = {});
    /// A model that started and settled on this Mac's library.
    void startedModel();
    /// As above, on the export setup with the first conversation, about which all was found out.
    void modelAtExportSetup();
    /// As above, with the export waiting in the background.
    void exportingModel();

    const AppModelState& state() const { return model->state(); }
    std::vector<std::string> titles() const;
    PreparedFake lastPrepared() const { return provider->prepared().back(); }
    /// How often the property was announced.
    long announced(AppModelProperty property) const;

    std::shared_ptr<FakeAccessChecker> checker = std::make_shared<FakeAccessChecker>();
    std::shared_ptr<FakeSourceProvider> provider = std::make_shared<FakeSourceProvider>();
    std::shared_ptr<FakePreferences> preferences = std::make_shared<FakePreferences>();
    std::shared_ptr<ManualMainThread> mainThread = std::make_shared<ManualMainThread>();
    std::shared_ptr<ManualRunner> background = std::make_shared<ManualRunner>();
    std::shared_ptr<FakePresence> presence = std::make_shared<FakePresence>();
    std::shared_ptr<PriorityRecorder> runner = std::make_shared<PriorityRecorder>(background);
    std::shared_ptr<FakeCacheRecovery> caches = std::make_shared<FakeCacheRecovery>();
    /// What the look for an earlier album answers, and what it was asked.
    std::function<std::optional<PriorArchiveSummary>(const SourceID&, const std::filesystem::path&)>
        priorArchive = [](const auto&, const auto&) { return std::nullopt; };
    std::vector<std::pair<SourceID, std::filesystem::path>> priorArchiveQuestions;
    std::optional<std::filesystem::path> downloads = "/home/ada/Downloads";
    bool destinationIsWritable = true;
    std::vector<AppModelProperty> announcements;
    std::shared_ptr<AppModel> model;
};

} // namespace quillbook::test
