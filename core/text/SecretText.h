#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace quillbook {

/// Overwrites the memory of a text, all that it has reserved, and empties it.
void overwrite(std::string& text);

/// A text that may not be left behind in memory: copies share it, and the last one to go overwrites it.
class SecretText {
public:
    explicit SecretText(std::string_view text);

    const std::string& text() const { return *text_; }

private:
    std::shared_ptr<const std::string> text_;
};

} // namespace quillbook
