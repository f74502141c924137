#include "export/AttachmentNames.h"

#include "core/text/GraphemeClusters.h"
#include "core/text/UTF8.h"
#include "core/text/UnicodeCategories.h"

#include <algorithm>

namespace quillbook {
namespace {

constexpr std::size_t longestName = 200;
// NAME_MAX: no common file system takes a longer name.
constexpr std::size_t longestPossibleName = 255;
// A hyphen and the digits of the largest counter, behind a name that is taken.
constexpr std::size_t roomForCounter = 21;

/// Valid UTF-8 whatever the text is, with a hyphen for each scalar that has no place in the name of a file or
/// folder.
std::string withoutForbiddenScalars(std::string_view text) {
    std::string name;
    name.reserve(text.size());
    while (!text.empty()) {
        const char32_t scalar = takeScalar(text);
        const bool isForbidden = scalar == U'/' || scalar == U':' || isControlOrFormat(scalar);
        appendScalar(name, isForbidden ? U'-' : scalar);
    }
    return name;
}

/// What is left without blanks and points at the ends, which hide a name or get lost; `fallback` where
/// nothing is.
std::string trimmedOr(std::string_view name, std::string_view fallback) {
    const std::string_view trimmed = trimmedBlanksAndPoints(name);
    return trimmed.empty() ? repairedUTF8(fallback) : std::string(trimmed);
}

/// The last component of a path with slashes or backslashes.
std::string lastComponent(std::string_view wanted) {
    std::string path(wanted);
    std::replace(path.begin(), path.end(), '\\', '/');
    const auto last = path.find_last_not_of('/');
    if (last == std::string::npos) return {};
    path.resize(last + 1);
    return path.substr(path.rfind('/') + 1);
}

/// A file's name in its two parts; `suffix` is the extension with its point, or empty.
struct NameParts {
    std::string stem;
    std::string suffix;

    std::string joined() const { return stem + suffix; }
    std::string numbered(std::int64_t number) const { return stem + '-' + std::to_string(number) + suffix; }
};

NameParts split(const std::string& name) {
    const auto point = name.rfind('.');
    const bool hasExtension = point != std::string::npos && point + 1 < name.size();
    return hasExtension ? NameParts{name.substr(0, point), name.substr(point)} : NameParts{name, {}};
}

/// The parts of a name of at most 200 bytes. A longer extension makes it longer, but never longer than file
/// systems take.
NameParts shortened(NameParts parts, std::string_view fallback) {
    const std::size_t room = longestName - std::min(longestName, parts.suffix.size());
    parts.stem = graphemePrefix(parts.stem, room);
    if (!parts.stem.empty()) return parts;
    parts.stem = repairedUTF8(fallback);
    if (parts.stem.size() + parts.suffix.size() + roomForCounter <= longestPossibleName) return parts;
    return NameParts{std::string(graphemePrefix(parts.stem, longestName)), {}};
}

} // namespace

std::string safeFolderTitle(std::string_view title) {
    const std::string name = trimmedOr(withoutForbiddenScalars(title), "Conversation");
    return std::string(graphemePrefix(name, longestName));
}

std::string AttachmentNames::take(std::string_view wanted, std::string_view fallback) {
    const std::string name = trimmedOr(withoutForbiddenScalars(lastComponent(wanted)), fallback);
    const NameParts parts = shortened(split(name), fallback);
    std::string candidate = parts.joined();
    if (usedNames_.insert(lowercased(candidate)).second) return candidate;
    // Names whose second candidates are alike share all later ones. The slash tells a point of the stem from
    // the suffix's.
    const std::string row = lowercased(parts.numbered(2)) + (parts.suffix.empty() ? "/" : "");
    std::int64_t& number = nextNumbers_.try_emplace(row, 2).first->second;
    do {
        candidate = parts.numbered(number++);
    } while (!usedNames_.insert(lowercased(candidate)).second);
    return candidate;
}

} // namespace quillbook
