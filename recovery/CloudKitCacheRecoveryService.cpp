#include "recovery/CloudKitCacheRecoveryService.h"

#include "core/interfaces/SaturatingSum.h"
#include "core/records/DescribedError.h"
#include "recovery/CacheIndex.h"
#include "recovery/CacheWalk.h"
#include "recovery/RecoveryCopy.h"
#include "recovery/RecoveryFolder.h"
#include "recovery/RecoveryManifest.h"
#include "store/AttachmentPaths.h"

#include <optional>
#include <string_view>
#include <utility>

namespace quillbook {
namespace {

namespace fs = std::filesystem;

std::optional<RecoveryCandidate> candidate(const MissingAttachmentRecord& record, const CacheIndex& index) {
    auto match = index.match(record);
    if (!match) return std::nullopt;
    auto destination = normalizedMessagesPath(record.filename);
    if (!destination) return std::nullopt;
    return RecoveryCandidate{
        .attachment = record,
        .sourceURL = std::move(match->file),
        .relativeDestination = std::move(*destination),
        .bytes = record.totalBytes.value_or(0), // which a match has exactly
        .ambiguous = match->isAmbiguous,
    };
}

/// The digest of the file that now stands at the candidate's place, or nothing.
std::optional<std::string> placed(const RecoveryCandidate& candidate, const fs::path& recoveryRoot) {
    try {
        return placeRecoveredFile(candidate, recoveryRoot);
    } catch (const DescribedError&) {
        return std::nullopt;
    }
}

/// The recovered files are what matters, and they are in place: a record that cannot be written is let go.
void writeManifestIfPossible(const fs::path& file, const std::vector<RecoveryManifestEntry>& entries) {
    try {
        writeRecoveryManifest(file, entries, Date::now());
    } catch (const DescribedError&) {
        return;
    }
}

} // namespace

CloudKitCacheRecoveryService::CloudKitCacheRecoveryService(std::vector<fs::path> cacheRoots)
    : cacheRoots_(std::move(cacheRoots)) {}

std::vector<fs::path> CloudKitCacheRecoveryService::below(const fs::path& home) {
    return {home / "Library/Caches/CloudKit", home / "Library/Application Support/CloudKit",
            home / "Library/Messages/CloudKitMetaData"};
}

RecoveryReport
CloudKitCacheRecoveryService::findRecoverable(const std::vector<MissingAttachmentRecord>& missing) {
    CacheIndex index(missing);
    for (const fs::path& root : cacheRoots_) {
        walkCache(
            root, [&](std::string_view name) { return index.mayWant(name); },
            [&](const CachedFile& file) { index.add(file); });
    }
    RecoveryReport report;
    for (const MissingAttachmentRecord& record : missing) {
        if (auto found = candidate(record, index)) {
            report.candidates.push_back(std::move(*found));
        } else {
            ++report.unmatchedCount;
        }
    }
    return report;
}

RecoveryOutcome CloudKitCacheRecoveryService::recover(const std::vector<RecoveryCandidate>& candidates,
                                                      const fs::path& recoveryRoot) {
    RecoveryOutcome outcome;
    std::vector<RecoveryManifestEntry> entries;
    for (const RecoveryCandidate& candidate : candidates) {
        auto sha256 = placed(candidate, recoveryRoot);
        if (!sha256) {
            ++outcome.failedCount;
            continue;
        }
        ++outcome.recoveredCount;
        outcome.recoveredBytes = saturatingSum(outcome.recoveredBytes, candidate.bytes);
        entries.push_back({candidate, std::move(*sha256)});
    }
    if (entries.empty()) return outcome;
    outcome.manifestURL = recoveryManifest(recoveryRoot);
    writeManifestIfPossible(*outcome.manifestURL, entries);
    return outcome;
}

} // namespace quillbook
