#pragma once

#include "core/records/DescribedError.h"

#include <string>

namespace quillbook {

/// Bytes are no property list, or none that can be read safely.
class PropertyListError final : public DescribedError {
public:
    /// `unreadableList` is what people call the list, as a file's name.
    explicit PropertyListError(std::string unreadableList);
    std::string description() const override;

    std::string name;
};

} // namespace quillbook
