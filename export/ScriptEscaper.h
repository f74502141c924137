#pragma once

#include <string>
#include <string_view>

namespace quillbook {

/// Makes a JSON text safe to stand in a script: "&", "<", ">" and the line separators U+2028 and U+2029
/// become JSON escapes. In JSON they stand in strings alone, so the value stays the same. Ill-formed UTF-8
/// becomes U+FFFD. The text comes in pieces, which may be cut anywhere, also within a character.
class ScriptEscaper {
public:
    /// Appends to `script` what can be said of the text so far.
    void append(std::string& script, std::string_view piece);
    /// Appends what was held back. Call it once, behind the last piece.
    void finish(std::string& script);

private:
    std::string heldBack_; ///< A character that the last piece cut off; three bytes at most.
    std::string joined_;
};

/// As ScriptEscaper, for a whole text.
std::string escapeForScript(std::string_view json);

} // namespace quillbook
