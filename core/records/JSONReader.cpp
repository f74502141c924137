#include "core/records/JSONReader.h"

#include "core/records/Base64.h"
#include "core/text/ISO8601.h"

#include <bit>

#include <simdjson.h>

namespace quillbook {
namespace {

using Element = simdjson::dom::element;
using Handle = std::array<std::uintptr_t, 2>;
static_assert(sizeof(Element) == sizeof(Handle) && std::is_trivially_copyable_v<Element>);

Element element(Handle handle) {
    return std::bit_cast<Element>(handle);
}

[[noreturn]] void fail(std::string problem) {
    throw JSONDecodingError(std::move(problem));
}

template <typename Wanted>
Wanted take(Handle handle, const char* what) {
    Wanted value{};
    if (element(handle).get(value) != simdjson::SUCCESS) fail(std::string("a value is no ") + what);
    return value;
}

} // namespace

std::string JSONValue::text() const {
    return std::string(take<std::string_view>(handle_, "text"));
}

std::int64_t JSONValue::integer() const {
    return take<std::int64_t>(handle_, "whole number");
}

double JSONValue::number() const {
    return take<double>(handle_, "number");
}

bool JSONValue::truth() const {
    return take<bool>(handle_, "truth value");
}

Date JSONValue::date() const {
    const auto date = parseISO8601Seconds(take<std::string_view>(handle_, "text"));
    if (!date) fail("a text is no date");
    return *date;
}

std::vector<std::uint8_t> JSONValue::data() const {
    auto bytes = decodeBase64(take<std::string_view>(handle_, "text"));
    if (!bytes) fail("a text is no Base64");
    return *std::move(bytes);
}

std::vector<JSONValue> JSONValue::elements() const {
    const auto array = take<simdjson::dom::array>(handle_, "array");
    std::vector<JSONValue> values;
    for (const Element item : array)
        values.push_back(JSONValue(std::bit_cast<Handle>(item)));
    return values;
}

JSONValue JSONValue::required(std::string_view name) const {
    if (auto value = optional(name)) return *value;
    fail("the key \"" + std::string(name) + "\" is missing");
}

std::optional<JSONValue> JSONValue::optional(std::string_view name) const {
    const auto object = take<simdjson::dom::object>(handle_, "object");
    Element item;
    if (object[name].get(item) != simdjson::SUCCESS || item.is_null()) return std::nullopt;
    return JSONValue(std::bit_cast<Handle>(item));
}

struct JSONDocument::Parsed {
    simdjson::dom::parser parser;
    Element root;
};

JSONDocument::JSONDocument(std::string_view json) : parsed_(std::make_unique<Parsed>()) {
    // The parser reads a little behind the text, so it gets a padded copy of its own.
    const simdjson::padded_string padded(json);
    const auto error = parsed_->parser.parse(padded).get(parsed_->root);
    if (error != simdjson::SUCCESS) fail(simdjson::error_message(error));
}

JSONDocument::~JSONDocument() = default;

JSONValue JSONDocument::root() const {
    return JSONValue(std::bit_cast<JSONValue::Handle>(parsed_->root));
}

} // namespace quillbook
