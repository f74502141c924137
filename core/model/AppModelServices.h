#pragma once

#include "core/interfaces/BackgroundRunner.h"
#include "core/interfaces/CacheRecovering.h"
#include "core/interfaces/ExportPresenting.h"
#include "core/interfaces/MainThread.h"
#include "core/interfaces/MessageSourceProviding.h"
#include "core/interfaces/MessagesAccessChecking.h"
#include "core/interfaces/Preferences.h"
#include "core/interfaces/PriorArchiveSummary.h"
#include "core/records/SourceID.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace quillbook {

/// All that the model needs of the world outside. Nothing in it may be null. Work in the background shares
/// what it calls, so an object may outlive the model for as long as such work runs.
struct AppModelServices {
    std::shared_ptr<MessagesAccessChecking> accessChecker;
    std::shared_ptr<MessageSourceProviding> sourceProvider;
    std::shared_ptr<Preferences> preferences;
    std::shared_ptr<MainThread> mainThread;
    std::shared_ptr<BackgroundRunner> backgroundRunner;
    std::shared_ptr<ExportPresenting> presence;
    std::shared_ptr<CacheRecovering> cacheRecovery;
    std::filesystem::path recoveryRoot; ///< Takes the recovered attachments of this machine's own library.
    std::function<bool(const std::filesystem::path&)> isWritableFolder;
    /// The newest earlier album of a conversation in a folder. May be slow; called off the main thread.
    std::function<std::optional<PriorArchiveSummary>(const SourceID&, const std::filesystem::path&)>
        priorArchive;
    std::optional<std::filesystem::path> downloads; ///< The first `destination`; `home` where it is unknown.
    std::filesystem::path home;
};

} // namespace quillbook
