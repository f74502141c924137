#include "tests/support/ModelFakes.h"

#include <utility>

#include <fmt/format.h>

namespace quillbook::test {

MessagesAccessStatus FakeAccessChecker::checkAccess(std::stop_token stop) {
    ++checks;
    return answer ? answer(std::move(stop)) : status;
}

std::vector<ConversationSummary> FakeStore::searchConversations(const std::string& query,
                                                                std::stop_token stop) {
    {
        const std::scoped_lock lock(mutex_);
        queries_.push_back(query);
    }
    if (answer) return answer(query, std::move(stop));
    std::vector<ConversationSummary> matches;
    for (const auto& each : conversations_) {
        if (each.title.find(query) != std::string::npos) matches.push_back(each);
    }
    return matches;
}

AttachmentStorageSurvey FakeStore::surveyAttachmentStorage(const SourceID& conversationID,
                                                           std::stop_token stop) {
    {
        const std::scoped_lock lock(mutex_);
        surveys_.push_back(conversationID);
    }
    return survey ? survey(conversationID, std::move(stop)) : AttachmentStorageSurvey();
}

std::vector<MissingAttachmentRecord> FakeStore::missingAttachments(const SourceID& conversationID,
                                                                   std::stop_token stop) {
    {
        const std::scoped_lock lock(mutex_);
        missingQuestions_.push_back(conversationID);
    }
    return missing ? missing(conversationID, std::move(stop)) : std::vector<MissingAttachmentRecord>();
}

ArchiveConversation FakeStore::loadConversation(const SourceID&, std::stop_token) {
    return {};
}

std::optional<std::filesystem::path> FakeStore::locateAttachment(const std::string&) {
    return std::nullopt;
}

void FakeStore::releaseAttachment(const std::filesystem::path&) {}

std::vector<std::string> FakeStore::queries() const {
    const std::scoped_lock lock(mutex_);
    return queries_;
}

std::vector<SourceID> FakeStore::surveys() const {
    const std::scoped_lock lock(mutex_);
    return surveys_;
}

std::vector<SourceID> FakeStore::missingQuestions() const {
    const std::scoped_lock lock(mutex_);
    return missingQuestions_;
}

RecoveryReport FakeCacheRecovery::findRecoverable(const std::vector<MissingAttachmentRecord>& missing) {
    {
        const std::scoped_lock lock(mutex_);
        searches_.push_back(missing);
    }
    return onSearch ? onSearch() : report;
}

RecoveryOutcome FakeCacheRecovery::recover(const std::vector<RecoveryCandidate>& candidates,
                                           const std::filesystem::path& recoveryRoot) {
    {
        const std::scoped_lock lock(mutex_);
        recoveries_.push_back({candidates, recoveryRoot});
    }
    return onRecover ? onRecover() : outcome;
}

std::vector<std::vector<MissingAttachmentRecord>> FakeCacheRecovery::searches() const {
    const std::scoped_lock lock(mutex_);
    return searches_;
}

std::vector<FakeCacheRecovery::Recovery> FakeCacheRecovery::recoveries() const {
    const std::scoped_lock lock(mutex_);
    return recoveries_;
}

void PriorityRecorder::run(Priority priority, std::function<void()> work) {
    priorities.push_back(priority);
    runner_->run(priority, std::move(work));
}

ExportResult FakeExporter::exportConversation(const SourceID& conversationID,
                                              const std::filesystem::path& destination,
                                              const ExportOptions& options, const ProgressCallback& progress,
                                              std::stop_token stop) {
    {
        const std::scoped_lock lock(mutex_);
        requests_.push_back({conversationID, destination, options});
        lastProgress = progress;
    }
    return answer ? answer(progress, std::move(stop)) : result;
}

std::vector<FakeExporter::Request> FakeExporter::requests() const {
    const std::scoped_lock lock(mutex_);
    return requests_;
}

std::vector<MessageSource> FakeSourceProvider::availableSources(std::stop_token stop) {
    ++listings;
    return listing ? listing(std::move(stop)) : sources;
}

PreparedSource FakeSourceProvider::prepare(const MessageSource& source,
                                           const std::optional<std::string>& password, std::stop_token stop) {
    ++preparations_;
    if (beforePrepared) beforePrepared(source, password, std::move(stop));
    const auto found = conversations.find(source.id);
    PreparedFake fake{source.id, password,
                      std::make_shared<FakeStore>(
                          found == conversations.end() ? std::vector<ConversationSummary>() : found->second),
                      std::make_shared<FakeExporter>(), std::make_shared<std::atomic<int>>(0)};
    if (onPrepared) onPrepared(fake);
    const std::scoped_lock lock(mutex_);
    prepared_.push_back(fake);
    return {fake.store, fake.exporter, [teardowns = fake.teardowns, told = onTeardown, id = source.id] {
                ++*teardowns;
                if (told) told(id);
            }};
}

std::vector<PreparedFake> FakeSourceProvider::prepared() const {
    const std::scoped_lock lock(mutex_);
    return prepared_;
}

std::optional<bool> FakePreferences::truth(std::string_view key) const {
    const auto found = values.find(key);
    if (found == values.end()) return std::nullopt;
    const bool* truth = std::get_if<bool>(&found->second);
    return truth != nullptr ? std::optional(*truth) : std::nullopt;
}

void FakePreferences::setTruth(std::string_view key, bool value) {
    values.insert_or_assign(std::string(key), value);
    writes.emplace_back(key);
}

void FakePresence::exportProgressed(double fraction) {
    calls.push_back(fmt::format("progressed {:.3f}", fraction));
}

void FakePresence::exportFinished(const std::string& title, const std::filesystem::path& album) {
    calls.push_back(fmt::format("finished {} {}", title, album.string()));
}

ConversationSummary conversation(std::string id, std::string title) {
    ConversationSummary summary;
    summary.id = {std::move(id)};
    summary.title = std::move(title);
    return summary;
}

MissingAttachmentRecord missingAttachment(std::int64_t rowID) {
    MissingAttachmentRecord record;
    record.rowID = rowID;
    record.guid = fmt::format("attachment-{}", rowID);
    return record;
}

RecoveryReport recoveryReport(const std::vector<std::int64_t>& rowIDs) {
    RecoveryReport report;
    for (const std::int64_t each : rowIDs) {
        RecoveryCandidate candidate;
        candidate.attachment = missingAttachment(each);
        report.candidates.push_back(std::move(candidate));
    }
    return report;
}

MessageSource localMacSource() {
    return {"local-mac", "This Mac", std::nullopt, LocalMac(), false};
}

MessageSource backupSource(std::string id, bool requiresPassword) {
    DeviceBackup backup;
    backup.id = id;
    backup.deviceName = "Ada’s iPhone";
    backup.isEncrypted = requiresPassword;
    return {std::move(id), "Ada’s iPhone", std::nullopt, backup, requiresPassword};
}

} // namespace quillbook::test
