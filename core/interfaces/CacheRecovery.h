#pragma once

#include "core/interfaces/AttachmentSurvey.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quillbook {

/// A missing attachment paired with a file that a local cache still holds.
struct RecoveryCandidate {
    MissingAttachmentRecord attachment;
    std::filesystem::path sourceURL; ///< The cached file that was chosen.
    std::string relativeDestination; ///< Below the recovery root, "/" between components.
    std::int64_t bytes = 0;          ///< The chosen file's size.
    bool ambiguous = false;          ///< More than one cached file matched.

    bool operator==(const RecoveryCandidate&) const = default;
};

struct RecoveryReport {
    std::vector<RecoveryCandidate> candidates; ///< In the order of the missing records.
    std::int64_t unmatchedCount = 0;           ///< Records without a candidate.

    /// How many attachments can be recovered, and how much that is, as the user reads it.
    std::string summary() const;

    bool operator==(const RecoveryReport&) const = default;
};

struct RecoveryOutcome {
    std::int64_t recoveredCount = 0; ///< Candidates now present at their destination.
    std::int64_t failedCount = 0;
    std::optional<std::filesystem::path> manifestURL; ///< Absent if no candidate succeeded.
    std::int64_t recoveredBytes = 0;

    bool operator==(const RecoveryOutcome&) const = default;
};

/// What the recovery controls show.
struct CacheRecoveryStatus {
    struct Surveying {
        bool operator==(const Surveying&) const = default;
    };
    struct NothingMissing {
        bool operator==(const NothingMissing&) const = default;
    };
    struct NothingRecoverable {
        std::int64_t missing = 0;
        bool operator==(const NothingRecoverable&) const = default;
    };
    struct Recovering {
        bool operator==(const Recovering&) const = default;
    };
    struct Failed {
        std::string message;
        bool operator==(const Failed&) const = default;
    };
    std::variant<Surveying, NothingMissing, NothingRecoverable, RecoveryReport, Recovering, RecoveryOutcome,
                 Failed>
        state;

    bool operator==(const CacheRecoveryStatus&) const = default;
};

} // namespace quillbook
