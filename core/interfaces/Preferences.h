#pragma once

#include <optional>
#include <string_view>

namespace quillbook {

/// The user's persistent choices. Main thread only.
class Preferences {
public:
    virtual ~Preferences() = default;
    /// Nothing where the key is absent or its value is no truth value.
    virtual std::optional<bool> truth(std::string_view key) const = 0;
    virtual void setTruth(std::string_view key, bool value) = 0;
};

} // namespace quillbook
