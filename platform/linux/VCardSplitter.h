#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace quillbook {

/// Takes a stream of vCards (vCard 2.1, RFC 2426, RFC 6350) apart into single cards with unfolded lines,
/// which hold only the properties that name, reach and show a person: FN, N, ORG, EMAIL, TEL and PHOTO.
/// Memory is bounded whatever the bytes are: an overlong property is left out. A card that the stream's end
/// cuts off is left out, for its last number may be cut too.
class VCardSplitter {
public:
    /// Takes one card from "BEGIN:VCARD" to "END:VCARD", as valid UTF-8. May throw.
    using Visit = std::function<void(const std::string& card)>;

    explicit VCardSplitter(Visit visit);

    /// The next bytes of the stream; pieces may end anywhere.
    void add(std::string_view bytes);
    /// Call it once, at the end of the stream.
    void finish();

private:
    void endLine();
    bool continuesProperty() const;
    void appendToProperty(std::string_view text);
    void beginProperty();
    void endProperty();
    void takeBegin();
    void takeEnd();
    void keepProperty(std::string_view name);
    void emitCard();

    Visit visit_;
    std::string line_;             ///< As it stands in the stream, so far.
    std::string property_;         ///< Unfolded, so far.
    bool isPropertyWhole_ = true;  ///< No part of it was too long to keep.
    std::size_t headerLength_ = 0; ///< Of the property's name and parameters.
    bool isQuotedPrintable_ = false;
    bool isBase64_ = false;

    std::string card_;
    bool isInCard_ = false;
    std::size_t nestedCards_ = 0; ///< Cards begun within this one, as an AGENT of vCard 2.1 is.
    bool isBehindEmptyAgent_ = false;
    std::size_t textBytes_ = 0; ///< Of the card's properties but for pictures.
    bool hasPicture_ = false;
};

} // namespace quillbook
