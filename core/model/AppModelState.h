#pragma once

#include "core/interfaces/CacheRecovery.h"
#include "core/interfaces/MessageSourceProviding.h"
#include "core/interfaces/MessagesAccessChecking.h"
#include "core/interfaces/PriorArchiveSummary.h"
#include "core/records/ExportProgress.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillbook {

/// The screen on show.
enum class AppScreen { onboarding, access, chooseConversation, exportSetup, exporting, complete };

/// Where the application stands. Each field is announced under its own name in AppModelProperty.
struct AppModelState {
    AppScreen screen = AppScreen::onboarding;
    MessagesAccessStatus accessStatus;              ///< Result of the last access check.
    std::vector<ConversationSummary> conversations; ///< As filtered by `searchText`.
    std::optional<SourceID> selectedConversationID; ///< May name one that the search filtered away.
    std::string searchText;
    ExportOptions options;
    std::filesystem::path destination; ///< The folder where albums are made.
    ExportProgress progress;
    std::optional<ExportResult> result;
    std::optional<std::string> errorMessage; ///< One line shown on the current screen.
    bool isLoading = false;                  ///< A source is being prepared or a list is loading.
    std::vector<MessageSource> availableSources;
    std::optional<std::string> selectedSourceID;
    std::optional<MessageSource> pendingPasswordSource; ///< Waits for its backup password.
    std::optional<PriorArchiveSummary> priorArchive;
    bool showingSetupGuide = false;
    int onboardingPage = 0;
    bool isReplayingOnboarding = false; ///< Onboarding is shown again from the Help menu.
    std::optional<AttachmentStorageSurvey> attachmentStorage;
    std::optional<CacheRecoveryStatus> cacheRecovery;
    std::shared_ptr<MessagesStore> store;    ///< The current source's reader; null before the first source.
    std::shared_ptr<ExportRunning> exporter; ///< The current source's exporter; null with `store`.
};

} // namespace quillbook
