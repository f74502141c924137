#include "tools/sample/ConversationScript.h"

#include "core/text/Date.h"
#include "core/text/ISO8601.h"

#include <cassert>

namespace quillbook::sample {
namespace {

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

/// Takes everything up to the separator off `rest`; all of it if there is none.
std::string_view takeUntil(std::string_view& rest, char separator) {
    const std::size_t end = rest.find(separator);
    const std::string_view piece = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return piece;
}

std::string withLineBreaks(std::string_view text) {
    std::string result;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const bool isBreak = text[index] == '\\' && index + 1 < text.size() && text[index + 1] == 'n';
        result += isBreak ? '\n' : text[index];
        if (isBreak) ++index;
    }
    return result;
}

std::vector<ScriptTag> parseTags(std::string_view text) {
    std::vector<ScriptTag> tags;
    while (!text.empty()) {
        takeUntil(text, '{');
        std::string_view inside = takeUntil(text, '}');
        if (inside.empty()) break;
        const std::string_view name = takeUntil(inside, ':');
        tags.push_back({std::string(name), std::string(inside)});
    }
    return tags;
}

ScriptLine parseLine(std::string_view line) {
    assert(line.size() > 2 && line[1] == ':');
    const std::size_t tags = line.find('{');
    const std::string_view words = trimmed(line.substr(2, tags == std::string_view::npos ? tags : tags - 2));
    return {line.front(), withLineBreaks(words),
            tags == std::string_view::npos ? std::vector<ScriptTag>() : parseTags(line.substr(tags))};
}

/// "2024-02-11 18:04" in UTC.
std::int64_t parseMoment(std::string_view text) {
    const auto date =
        parseISO8601Seconds(std::string(text.substr(0, 10)) + "T" + std::string(text.substr(11, 5)) + ":00Z");
    assert(date.has_value());
    return static_cast<std::int64_t>(date.value_or(Date()).secondsSinceReferenceDate);
}

void parseSlot(std::string_view line, ConversationScript& script) {
    auto& values = script.slots[std::string(takeUntil(line, ':'))];
    while (!line.empty())
        values.emplace_back(trimmed(takeUntil(line, ';')));
}

} // namespace

const std::string* ScriptLine::tag(std::string_view name) const {
    for (const ScriptTag& candidate : tags) {
        if (candidate.name == name) return &candidate.value;
    }
    return nullptr;
}

std::vector<const ScriptBlock*> ConversationScript::plot() const& {
    std::vector<const ScriptBlock*> dated;
    for (const ScriptBlock& block : blocks) {
        if (block.seconds) dated.push_back(&block);
    }
    return dated;
}

std::vector<const ScriptBlock*> ConversationScript::smallTalk() const& {
    std::vector<const ScriptBlock*> undated;
    for (const ScriptBlock& block : blocks) {
        if (!block.seconds) undated.push_back(&block);
    }
    return undated;
}

ConversationScript parseScript(std::string_view text) {
    ConversationScript script;
    bool isNewBlock = true;
    while (!text.empty()) {
        const std::string_view line = trimmed(takeUntil(text, '\n'));
        if (line.empty()) {
            isNewBlock = true;
        } else if (line.front() == '=') {
            parseSlot(line.substr(1), script);
        } else {
            if (isNewBlock) script.blocks.emplace_back();
            isNewBlock = false;
            if (line.front() == '@') {
                script.blocks.back().seconds = parseMoment(line.substr(1));
            } else {
                script.blocks.back().lines.push_back(parseLine(line));
            }
        }
    }
    return script;
}

} // namespace quillbook::sample
