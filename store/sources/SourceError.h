#pragma once

#include "core/records/DescribedError.h"
#include "core/text/Localization.h"

#include <string>
#include <utility>

namespace quillbook {

/// A source that cannot be opened for reading.
class SourceError final : public DescribedError {
public:
    explicit SourceError(std::string sourceTitle) : title(std::move(sourceTitle)) {}
    std::string description() const override { return localizedFormat("“{}” can’t be opened.", title); }

    std::string title;
};

} // namespace quillbook
