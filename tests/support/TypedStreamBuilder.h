#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillbook::test {

/// Writes typed archives the way NSArchiver does: type signatures and class names share one table, objects
/// and classes another, and what stands in a table already is written as a reference
/// (docs/formats/typed-archive.md). `raw` and the elements below it write ill-formed archives just as well.
class TypedStreamBuilder {
public:
    /// A class and its superclasses, from the most derived to the root.
    struct ClassLink {
        std::string_view name;
        std::uint8_t version = 0;
    };
    using ClassChain = std::vector<ClassLink>;

    static const ClassChain nsString;
    static const ClassChain nsMutableString;
    static const ClassChain nsAttributedString;
    static const ClassChain nsMutableAttributedString;
    static const ClassChain nsDictionary;
    static const ClassChain nsNumber;
    static const ClassChain nsObject;

    /// Begins with the header.
    TypedStreamBuilder();

    TypedStreamBuilder& types(std::string_view signature);
    /// An object under the type "@": its start and its class. Gives nothing but the builder; `objectCount() -
    /// …` numbers it.
    TypedStreamBuilder& beginObject(const ClassChain& chain);
    TypedStreamBuilder& endObject();
    TypedStreamBuilder& integer(std::int64_t number);
    TypedStreamBuilder& text(std::string_view utf8);
    /// A whole object with its characters. Equal strings are written once and referred to from then on, as
    /// constants are.
    TypedStreamBuilder& string(const ClassChain& chain, std::string_view utf8);
    TypedStreamBuilder& number(std::int8_t value);
    TypedStreamBuilder& reference(std::size_t index);
    TypedStreamBuilder& raw(std::span<const std::uint8_t> bytes);
    TypedStreamBuilder& raw(std::initializer_list<std::uint8_t> bytes);
    TypedStreamBuilder& raw(std::string_view bytes);

    const std::vector<std::uint8_t>& bytes() const { return bytes_; }

private:
    void sharedString(std::string_view text);
    void classChain(const ClassChain& chain);

    std::vector<std::uint8_t> bytes_;
    std::map<std::string, std::size_t, std::less<>> sharedStrings_;
    std::map<std::string, std::size_t, std::less<>> classes_;
    std::map<std::string, std::size_t, std::less<>> stringObjects_;
    std::optional<std::size_t> signatureObject_;
    std::size_t objectCount_ = 0;
};

/// The body of a message as Messages stores it: one run over the whole text, with the number of its part.
std::vector<std::uint8_t> archivedBody(std::string_view utf8);
/// The same with the mutable classes.
std::vector<std::uint8_t> archivedMutableBody(std::string_view utf8);

} // namespace quillbook::test
