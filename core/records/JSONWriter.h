#pragma once

#include "core/records/SourceID.h"
#include "core/text/Date.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillbook {

/// `pretty` is the form of an album's files: two-space indentation, one key per line, a blank on either side
/// of the colon,
/// `[]` and `{}` for what is empty. `compact` puts a value on one line without blanks.
enum class JSONForm { pretty, compact };

/// Writes one JSON value (RFC 8259) as a stream; slashes stand as they are, and memory stays flat whatever
/// the value's size. The caller gives the keys of each object in ascending order; keys and texts must be
/// valid UTF-8.
class JSONWriter {
public:
    /// Takes the next piece of the text; pieces may end anywhere, also within a character. May throw.
    using Sink = std::function<void(std::string_view)>;

    explicit JSONWriter(Sink sink, JSONForm form = JSONForm::pretty);

    void beginObject();
    void endObject();
    void beginArray();
    void endArray();
    void key(std::string_view name);

    void value(std::string_view text);
    void value(const char* text) { value(std::string_view(text)); }
    void value(const std::string& text) { value(std::string_view(text)); }
    void value(std::int64_t number);
    void value(int number) { value(static_cast<std::int64_t>(number)); }
    void value(double number);
    void value(bool truth);
    void value(Date date);
    void value(const SourceID& id) { value(std::string_view(id.rawValue)); }
    void value(std::span<const std::uint8_t> bytes);

    /// A key with its value.
    template <typename Value>
    void member(std::string_view name, const Value& content) {
        key(name);
        value(content);
    }
    /// An absent value leaves its key out.
    template <typename Value>
    void member(std::string_view name, const std::optional<Value>& content) {
        if (content) member(name, *content);
    }

    /// Hands the last piece to the sink. Call it once, behind the value.
    void finish();

private:
    void beginValue();
    void begin(char bracket);
    void end(char bracket);
    void newLine();
    void flushIfFull();

    Sink sink_;
    JSONForm form_;
    std::string buffer_;
    std::vector<std::string>
        lastKeys_; ///< One an open bracket: the key written last, to hold callers to the order.
    std::size_t depth_ = 0;
    bool isFirst_ = true;
    bool isBehindKey_ = false;
};

/// Appends the text as a JSON string, quotes included.
void appendJSONString(std::string& json, std::string_view text);

} // namespace quillbook
