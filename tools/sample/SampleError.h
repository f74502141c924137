#pragma once

#include "core/records/DescribedError.h"

#include <string>
#include <utility>

namespace quillbook::sample {

/// Why no sample library was written.
class SampleError final : public DescribedError {
public:
    enum class Reason { badArgument, libraryExists, databaseFailed, encoderFailed };

    /// `detail` is the argument, the folder, or what the library at fault said.
    SampleError(Reason reasonCase, std::string detailText)
        : reason(reasonCase), detail(std::move(detailText)) {}
    std::string description() const override;

    Reason reason;
    std::string detail;
};

} // namespace quillbook::sample
