#pragma once

#include "core/records/DescribedError.h"

#include <string>
#include <utility>

namespace quillbook::sample {

/// Why no sample library or backup was written.
class SampleError final : public DescribedError {
public:
    enum class Reason {
        badArgument,
        libraryExists,
        backupExists,
        cachesExist,
        databaseFailed,
        encoderFailed,
        encryptionFailed,
    };

    /// `detail` is the argument, the folder, or what the library at fault said.
    SampleError(Reason reasonCase, std::string detailText)
        : reason(reasonCase), detail(std::move(detailText)) {}
    std::string description() const override;

    Reason reason;
    std::string detail;
};

} // namespace quillbook::sample
