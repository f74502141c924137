#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillbook::sample {

/// One thing noted behind a line, as in {love:A,M}: a name and what follows its colon.
struct ScriptTag {
    std::string name;
    std::string value;
};

struct ScriptLine {
    char speaker = 'M'; ///< M for the user, A, B, … for the members of the chat.
    std::string text;   ///< May hold slots such as <day>.
    std::vector<ScriptTag> tags;

    const std::string* tag(std::string_view name) const;
};

/// Lines that were written one soon after the other.
struct ScriptBlock {
    std::optional<std::int64_t> seconds; ///< When it began, since the reference date; absent for small talk.
    std::vector<ScriptLine> lines;
};

/// Dialogues as a person writes them down. Blocks are separated by empty lines; `@2024-02-11 18:04` (UTC)
/// dates a block;
/// `=slot: one; two` lists what may stand for <slot>; `A: words {tag} {tag:value}` is a line, in which \n
/// breaks it.
struct ConversationScript {
    std::map<std::string, std::vector<std::string>, std::less<>> slots;
    std::vector<ScriptBlock> blocks;

    /// Blocks with a date, and those without; they refer into the script.
    std::vector<const ScriptBlock*> plot() const&;
    std::vector<const ScriptBlock*> smallTalk() const&;
    std::vector<const ScriptBlock*> plot() && = delete;
    std::vector<const ScriptBlock*> smallTalk() && = delete;
};

/// The text is ours; what does not follow the notation is an error of the writer and stops the program in
/// debug builds.
ConversationScript parseScript(std::string_view text);

} // namespace quillbook::sample
