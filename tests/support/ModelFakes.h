#pragma once

#include "core/interfaces/BackgroundRunner.h"
#include "core/interfaces/CacheRecovering.h"
#include "core/interfaces/ExportPresenting.h"
#include "core/interfaces/MessageSourceProviding.h"
#include "core/interfaces/MessagesAccessChecking.h"
#include "core/interfaces/Preferences.h"
#include "core/records/DescribedError.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <variant>
#include <vector>

namespace quillbook::test {

/// An error with the words it was given.
class SpokenError final : public DescribedError {
public:
    explicit SpokenError(std::string words) : words_(std::move(words)) {}
    std::string description() const override { return words_; }

private:
    std::string words_;
};

/// Gives `status`, or what `answer` says.
class FakeAccessChecker final : public MessagesAccessChecking {
public:
    MessagesAccessStatus checkAccess(std::stop_token stop) override;
    void openPrivacySettings() override { ++openedSettings; }

    MessagesAccessStatus status{MessagesAccessStatus::Kind::granted, {}};
    std::function<MessagesAccessStatus(std::stop_token)> answer;
    std::atomic<int> checks = 0;
    int openedSettings = 0;
};

/// A store of conversations whose titles contain what is searched for, with no attachments. The functions,
/// where set, answer instead.
class FakeStore final : public MessagesStore {
public:
    explicit FakeStore(std::vector<ConversationSummary> conversations = {})
        : conversations_(std::move(conversations)) {}

    std::vector<ConversationSummary> searchConversations(const std::string& query,
                                                         std::stop_token stop) override;
    AttachmentStorageSurvey surveyAttachmentStorage(const SourceID& conversationID,
                                                    std::stop_token stop) override;
    std::vector<MissingAttachmentRecord> missingAttachments(const SourceID& conversationID,
                                                            std::stop_token stop) override;
    ArchiveConversation loadConversation(const SourceID& id, std::stop_token stop) override;
    std::optional<std::filesystem::path> locateAttachment(const std::string& storedPath) override;
    void releaseAttachment(const std::filesystem::path& file) override;

    /// What was asked, in order.
    std::vector<std::string> queries() const;
    std::vector<SourceID> surveys() const;
    std::vector<SourceID> missingQuestions() const;

    std::function<std::vector<ConversationSummary>(const std::string&, std::stop_token)> answer;
    std::function<AttachmentStorageSurvey(const SourceID&, std::stop_token)> survey;
    std::function<std::vector<MissingAttachmentRecord>(const SourceID&, std::stop_token)> missing;

private:
    const std::vector<ConversationSummary> conversations_;
    mutable std::mutex mutex_;
    std::vector<std::string> queries_;
    std::vector<SourceID> surveys_;
    std::vector<SourceID> missingQuestions_;
};

/// Finds `report` and copies with `outcome`, or what the functions do; remembers what it was asked.
class FakeCacheRecovery final : public CacheRecovering {
public:
    struct Recovery {
        std::vector<RecoveryCandidate> candidates;
        std::filesystem::path root;
        bool operator==(const Recovery&) const = default;
    };

    RecoveryReport findRecoverable(const std::vector<MissingAttachmentRecord>& missing) override;
    RecoveryOutcome recover(const std::vector<RecoveryCandidate>& candidates,
                            const std::filesystem::path& recoveryRoot) override;
    std::vector<std::vector<MissingAttachmentRecord>> searches() const;
    std::vector<Recovery> recoveries() const;

    RecoveryReport report;
    RecoveryOutcome outcome;
    std::function<RecoveryReport()> onSearch;
    std::function<RecoveryOutcome()> onRecover;

private:
    mutable std::mutex mutex_;
    std::vector<std::vector<MissingAttachmentRecord>> searches_;
    std::vector<Recovery> recoveries_;
};

/// Hands each work on and writes its priority down. One thread only.
class PriorityRecorder final : public BackgroundRunner {
public:
    explicit PriorityRecorder(std::shared_ptr<BackgroundRunner> runner) : runner_(std::move(runner)) {}
    void run(Priority priority, std::function<void()> work) override;

    std::vector<Priority> priorities;

private:
    const std::shared_ptr<BackgroundRunner> runner_;
};

/// Delivers `result`, or what `answer` does; remembers what it was asked for and the progress callback of the
/// last call.
class FakeExporter final : public ExportRunning {
public:
    struct Request {
        SourceID conversationID;
        std::filesystem::path destination;
        ExportOptions options;
        bool operator==(const Request&) const = default;
    };

    ExportResult exportConversation(const SourceID& conversationID, const std::filesystem::path& destination,
                                    const ExportOptions& options, const ProgressCallback& progress,
                                    std::stop_token stop) override;
    std::vector<Request> requests() const;

    ExportResult result;
    std::function<ExportResult(const ProgressCallback&, std::stop_token)> answer;
    ProgressCallback lastProgress;

private:
    mutable std::mutex mutex_;
    std::vector<Request> requests_;
};

/// One source that the fake provider prepared.
struct PreparedFake {
    std::string sourceID;
    std::optional<std::string> password;
    std::shared_ptr<FakeStore> store;
    std::shared_ptr<FakeExporter> exporter;
    std::shared_ptr<std::atomic<int>> teardowns;
};

/// Lists `sources` and prepares them with the conversations set for their id.
class FakeSourceProvider final : public MessageSourceProviding {
public:
    std::vector<MessageSource> availableSources(std::stop_token stop) override;
    PreparedSource prepare(const MessageSource& source, const std::optional<std::string>& password,
                           std::stop_token stop) override;

    /// Every source that was prepared, oldest first.
    std::vector<PreparedFake> prepared() const;
    int preparations() const { return preparations_; }

    std::vector<MessageSource> sources;
    std::map<std::string, std::vector<ConversationSummary>> conversations;
    /// Called first by `prepare`; what it throws fails the preparation.
    std::function<void(const MessageSource&, const std::optional<std::string>&, std::stop_token)>
        beforePrepared;
    /// Called last by `prepare`, with the source about to be handed out.
    std::function<void(PreparedFake&)> onPrepared;
    /// Called by each teardown with the source's id.
    std::function<void(const std::string&)> onTeardown;
    std::function<std::vector<MessageSource>(std::stop_token)> listing;
    std::atomic<int> listings = 0;

private:
    mutable std::mutex mutex_;
    std::vector<PreparedFake> prepared_;
    std::atomic<int> preparations_ = 0;
};

/// Preferences in memory; a text stands for a value that is no truth value.
class FakePreferences final : public Preferences {
public:
    using Value = std::variant<bool, std::string>;
    std::optional<bool> truth(std::string_view key) const override;
    void setTruth(std::string_view key, bool value) override;

    std::map<std::string, Value, std::less<>> values;
    std::vector<std::string> writes; ///< Keys, in order of writing.
};

/// Writes down each call.
class FakePresence final : public ExportPresenting {
public:
    void exportStarted() override { calls.emplace_back("started"); }
    void exportProgressed(double fraction) override;
    void exportFinished(const std::string& title, const std::filesystem::path& album) override;
    void clearBadge() override { calls.emplace_back("clearBadge"); }

    std::vector<std::string> calls;
};

ConversationSummary conversation(std::string id, std::string title);
MissingAttachmentRecord missingAttachment(std::int64_t rowID);
/// With a candidate for each of the rows.
RecoveryReport recoveryReport(const std::vector<std::int64_t>& rowIDs);
MessageSource localMacSource();
MessageSource backupSource(std::string id, bool requiresPassword);

} // namespace quillbook::test
