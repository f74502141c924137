#pragma once

namespace quillbook {

/// Names a field of AppModelState to whoever observes the model.
enum class AppModelProperty {
    screen,
    accessStatus,
    conversations,
    selectedConversationID,
    searchText,
    options,
    destination,
    progress,
    result,
    errorMessage,
    isLoading,
    availableSources,
    selectedSourceID,
    pendingPasswordSource,
    priorArchive,
    showingSetupGuide,
    onboardingPage,
    isReplayingOnboarding,
    attachmentStorage,
    cacheRecovery,
    store,
    exporter,
};

} // namespace quillbook
