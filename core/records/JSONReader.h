#pragma once

#include "core/records/DescribedError.h"
#include "core/records/SourceID.h"
#include "core/text/Date.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillbook {

/// A text that is no JSON, or not the JSON form of the record that was asked for.
class JSONDecodingError final : public DescribedError {
public:
    explicit JSONDecodingError(std::string problem) : problem_(std::move(problem)) {}
    std::string description() const override { return "The JSON data could not be read: " + problem_ + "."; }

private:
    std::string problem_;
};

/// One value of a parsed JSON text (RFC 8259). Values live as long as their JSONDocument.
/// Every reader throws JSONDecodingError when the value is of another type; whole numbers must be whole.
class JSONValue {
public:
    std::string text() const;
    std::int64_t integer() const;
    double number() const;
    bool truth() const;
    /// In the form that `JSONWriter` gives dates.
    Date date() const;
    std::vector<std::uint8_t> data() const;
    std::vector<JSONValue> elements() const;

    /// The member of that name of this object; throws where it is absent or null.
    JSONValue required(std::string_view name) const;
    /// Nothing where it is absent or null.
    std::optional<JSONValue> optional(std::string_view name) const;

private:
    friend class JSONDocument;
    using Handle =
        std::array<std::uintptr_t, 2>; ///< The parser's own element, kept out of this header for its size.
    explicit JSONValue(Handle handle) : handle_(handle) {}
    Handle handle_;
};

/// A parsed JSON text. Hostile input is safe: depth is limited and texts must be valid UTF-8.
class JSONDocument {
public:
    /// Throws JSONDecodingError.
    explicit JSONDocument(std::string_view json);
    ~JSONDocument();
    JSONDocument(const JSONDocument&) = delete;
    JSONDocument& operator=(const JSONDocument&) = delete;

    JSONValue root() const;

private:
    struct Parsed;
    std::unique_ptr<Parsed> parsed_;
};

} // namespace quillbook
