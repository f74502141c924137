#include "platform/linux/VCardSplitter.h"

#include "core/text/UTF8.h"
#include "core/text/UnicodeCategories.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quillbook {
namespace {

// The greatest pictures that address books store have a few megabytes; no other property comes near.
constexpr std::size_t longestPicture = 16'777'216;
constexpr std::size_t longestText = 65'536;
constexpr std::size_t mostTextOfCard = 1'048'576;
// The vCard parser's time grows with the square of the separators of a property; a structured name has four.
constexpr std::ptrdiff_t mostSeparators = 64;

// Enough for "VCARD" and blanks around it.
constexpr std::size_t longestWord = 16;

constexpr std::array<std::string_view, 5> wantedTexts = {"FN", "N", "ORG", "EMAIL", "TEL"};

std::string asciiUpper(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return upper;
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

/// Where the value's colon stands; a colon between quotation marks belongs to a parameter.
std::size_t lengthOfHeader(std::string_view line) {
    bool isQuoted = false;
    for (std::size_t index = 0; index < line.size(); ++index) {
        if (line[index] == '"') isQuoted = !isQuoted;
        if (line[index] == ':' && !isQuoted) return index;
    }
    return std::min(line.find(':'), line.size());
}

/// "item1.tel;type=home" becomes "TEL".
std::string propertyName(std::string_view header) {
    std::string_view name = header.substr(0, header.find(';'));
    const auto point = name.rfind('.');
    if (point != std::string_view::npos) name.remove_prefix(point + 1);
    return asciiUpper(name);
}

} // namespace

VCardSplitter::VCardSplitter(Visit visit) : visit_(std::move(visit)) {}

void VCardSplitter::add(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto end = bytes.find('\n');
        const std::string_view piece = bytes.substr(0, end);
        // One byte beyond the limit is enough to see that the line is too long.
        line_.append(piece.substr(0, longestPicture + 1 - std::min(line_.size(), longestPicture + 1)));
        if (end == std::string_view::npos) return;
        endLine();
        bytes.remove_prefix(end + 1);
    }
}

void VCardSplitter::finish() {
    endLine();
    endProperty();
}

void VCardSplitter::endLine() {
    if (!line_.empty() && line_.back() == '\r') line_.pop_back();
    if (continuesProperty()) {
        const bool isFolded = !line_.empty() && (line_.front() == ' ' || line_.front() == '\t');
        if (isQuotedPrintable_ && !property_.empty() && property_.back() == '=') property_.pop_back();
        appendToProperty(std::string_view(line_).substr(isFolded ? 1 : 0));
    } else {
        endProperty();
        beginProperty();
    }
    line_.clear();
}

bool VCardSplitter::continuesProperty() const {
    if (property_.empty()) return false;
    // vCard 2.1 breaks quoted-printable values softly, as RFC 2045 section 6.7 has it, and does not always
    // indent Base64.
    if (isQuotedPrintable_ && property_.back() == '=') return true;
    if (line_.empty()) return false;
    if (line_.front() == ' ' || line_.front() == '\t') return true;
    return isBase64_ && !contains(line_, ":");
}

void VCardSplitter::appendToProperty(std::string_view text) {
    if (!isPropertyWhole_ || text.size() > longestPicture - property_.size()) {
        isPropertyWhole_ = false;
    } else {
        property_ += text;
    }
}

void VCardSplitter::beginProperty() {
    isPropertyWhole_ = line_.size() <= longestPicture;
    property_.swap(line_);
    if (!isPropertyWhole_) property_.resize(longestText);
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (property_.compare(0, byteOrderMark.size(), byteOrderMark) == 0)
        property_.erase(0, byteOrderMark.size());
    headerLength_ = lengthOfHeader(property_);
    const std::string header =
        asciiUpper(std::string_view(property_).substr(0, std::min(headerLength_, longestText)));
    isQuotedPrintable_ = contains(header, "QUOTED-PRINTABLE");
    isBase64_ = contains(header, "BASE64") || contains(header, "ENCODING=B");
    // The end of a card needs no look at the line behind it.
    if (header == "END") endProperty();
}

void VCardSplitter::endProperty() {
    if (property_.empty()) return;
    const std::string_view whole = property_;
    const std::string name = propertyName(whole.substr(0, std::min(headerLength_, longestText)));
    const std::string_view value =
        trimmedWhitespace(whole.substr(std::min(headerLength_ + 1, whole.size())).substr(0, longestWord));
    const bool isOfCard = asciiUpper(value) == "VCARD";
    if (name == "BEGIN" && isOfCard) {
        takeBegin();
    } else if (name == "END" && isOfCard) {
        takeEnd();
    } else if (isInCard_ && nestedCards_ == 0 && isPropertyWhole_) {
        keepProperty(name);
    }
    isBehindEmptyAgent_ = name == "AGENT" && value.empty();
    property_.clear();
    isQuotedPrintable_ = isBase64_ = false;
}

void VCardSplitter::takeBegin() {
    if (isInCard_ && (isBehindEmptyAgent_ || nestedCards_ > 0)) {
        ++nestedCards_;
        return;
    }
    // A card without an end before the next one began: its lines are whole all the same.
    if (isInCard_) emitCard();
    isInCard_ = true;
}

void VCardSplitter::takeEnd() {
    if (nestedCards_ > 0) {
        --nestedCards_;
    } else if (isInCard_) {
        emitCard();
    }
}

void VCardSplitter::keepProperty(std::string_view name) {
    const bool isPicture = name == "PHOTO";
    if (!isPicture) {
        if (std::find(wantedTexts.begin(), wantedTexts.end(), name) == wantedTexts.end()) return;
        if (property_.size() > std::min(longestText, mostTextOfCard - textBytes_)) return;
    }
    const auto isSeparator = [](char c) { return c == ';' || c == ','; };
    if (std::count_if(property_.begin(), property_.end(), isSeparator) > mostSeparators) return;
    if (isPicture && std::exchange(hasPicture_, true)) return;
    if (!isPicture) textBytes_ += property_.size();
    // A single carriage return or a zero byte would end the line for the parser.
    std::replace_if(
        property_.begin(), property_.end(), [](char c) { return c == '\r' || c == '\0'; }, ' ');
    card_ += property_;
    card_ += "\r\n";
}

void VCardSplitter::emitCard() {
    const std::string card = "BEGIN:VCARD\r\n" + repairedUTF8(card_) + "END:VCARD\r\n";
    card_.clear();
    isInCard_ = false;
    textBytes_ = 0;
    hasPicture_ = false;
    visit_(card);
}

} // namespace quillbook
