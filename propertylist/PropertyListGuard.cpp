#include "propertylist/PropertyListGuard.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace quillbook {
namespace {

constexpr std::size_t deepestNesting = 128;
/// What libplist takes for a value beside its characters.
constexpr std::uint64_t nodeWeight = 128;

/// What the tree of a list of so many bytes may weigh. Short lists hold many small values; long ones are long
/// for the data in them.
std::uint64_t heaviestTree(std::uint64_t bytes) {
    constexpr std::uint64_t mebibyte = 1U << 20U;
    return mebibyte + std::min(128 * bytes, 256 * mebibyte + 4 * bytes);
}

// ---- The binary form: "bplist00", objects, a table of their offsets, a trailer; numbers are big-endian.

/// One object as the guard sees it: what it takes in memory, and which objects it holds.
struct ObjectShape {
    std::uint64_t weight = 0;
    std::uint64_t firstChild = 0; ///< Where the references to its children begin.
    std::uint64_t childCount = 0;
};

class BinaryPropertyList {
public:
    /// `bytes` is at least a header and a trailer long.
    explicit BinaryPropertyList(std::string_view bytes)
        : bytes_(bytes), offsetSize_(number(bytes.size() - 26, 1)),
          referenceSize_(number(bytes.size() - 25, 1)), objectCount_(number(bytes.size() - 24, 8)),
          top_(number(bytes.size() - 16, 8)), table_(number(bytes.size() - 8, 8)) {}

    bool isTrailerSound() const {
        const std::uint64_t end = bytes_.size() - trailerLength;
        const auto isNumberSize = [](std::uint64_t size) { return size >= 1 && size <= 8; };
        return isNumberSize(offsetSize_) && isNumberSize(referenceSize_) && table_ <= end &&
               top_ < objectCount_ && objectCount_ <= (end - table_) / offsetSize_;
    }

    /// Walks the objects below the top one, each once. The stack of the walk is as deep as the nesting.
    bool isTreeModest() {
        const std::uint64_t heaviest = heaviestTree(bytes_.size());
        const std::uint64_t mostNodes = heaviest / nodeWeight;
        if (objectCount_ > mostNodes) return false;
        const std::uint64_t mostReferences = std::min<std::uint64_t>(bytes_.size(), mostNodes);
        objects_.resize(objectCount_);
        if (!enter(top_)) return false;
        while (!path_.empty()) {
            Step& step = path_.back();
            Visit& visit = objects_[step.object];
            if (step.nextChild == step.shape.childCount) {
                visit.isUnderWay = false;
                path_.pop_back();
                if (!path_.empty() && !account(visit, heaviest)) return false;
                continue;
            }
            const std::uint64_t child =
                number(step.shape.firstChild + step.nextChild * referenceSize_, referenceSize_);
            ++step.nextChild;
            if (child >= objectCount_ || objects_[child].isUnderWay || ++walkedReferences_ > mostReferences)
                return false;
            if (objects_[child].height == 0 ? !enter(child) : !account(objects_[child], heaviest))
                return false;
        }
        return true;
    }

    static constexpr std::size_t headerLength = 8;
    static constexpr std::size_t trailerLength = 32;

private:
    struct Visit {
        std::uint64_t weight = 0;
        std::uint16_t height = 0; ///< Levels from here down; 0 before the first visit.
        bool isUnderWay = false;
    };
    struct Step {
        std::uint64_t object;
        ObjectShape shape;
        std::uint64_t nextChild = 0;
    };

    std::uint64_t number(std::uint64_t offset, std::uint64_t size) const {
        std::uint64_t value = 0;
        for (const char byte : bytes_.substr(offset, size))
            value = (value << 8U) | static_cast<unsigned char>(byte);
        return value;
    }

    bool enter(std::uint64_t object) {
        const auto shape = shapeOf(number(table_ + object * offsetSize_, offsetSize_));
        if (!shape || path_.size() == deepestNesting) return false;
        objects_[object] = {shape->weight, 1, true};
        path_.push_back({object, *shape});
        return true;
    }

    /// Adds a finished child to the object that is under way.
    bool account(const Visit& child, std::uint64_t heaviest) {
        Visit& parent = objects_[path_.back().object];
        parent.weight += child.weight;
        parent.height = std::max<std::uint16_t>(parent.height, static_cast<std::uint16_t>(child.height + 1));
        return parent.weight <= heaviest && parent.height <= deepestNesting;
    }

    /// Nothing for what reaches past the objects and for kinds that no list of Apple's holds.
    std::optional<ObjectShape> shapeOf(std::uint64_t offset) const {
        if (offset < headerLength || offset >= table_) return std::nullopt;
        const std::uint64_t marker = number(offset, 1);
        const std::uint64_t low = marker & 0x0FU;
        std::uint64_t start = offset + 1;
        const auto leaf = [&](std::uint64_t size) -> std::optional<ObjectShape> {
            if (size > table_ - start) return std::nullopt;
            return ObjectShape{nodeWeight + 2 * size, 0, 0};
        };
        switch (marker >> 4U) {
        case 0x0:
            return leaf(0);
        case 0x1:
        case 0x2:
            return low > 4 ? std::nullopt : leaf(1ULL << low);
        case 0x3:
            return leaf(8);
        case 0x8:
            return leaf(low + 1);
        default:
            break;
        }
        const auto count = countOf(low, start);
        if (!count) return std::nullopt;
        switch (marker >> 4U) {
        case 0x4:
        case 0x5:
            return leaf(*count);
        case 0x6:
            return leaf(*count * 2);
        case 0xA:
            return container(start, *count);
        case 0xD:
            return container(start, *count * 2);
        default:
            return std::nullopt;
        }
    }

    /// The count in the marker, or in the integer behind it; `start` moves past that. Never more than the
    /// list has bytes.
    std::optional<std::uint64_t> countOf(std::uint64_t low, std::uint64_t& start) const {
        std::uint64_t count = low;
        if (low == 0x0F) {
            const std::uint64_t marker = start < table_ ? number(start, 1) : 0;
            const std::uint64_t size = 1ULL << (marker & 0x0FU);
            if (marker >> 4U != 0x1 || size > 8 || size > table_ - start - 1) return std::nullopt;
            count = number(start + 1, size);
            start += 1 + size;
        }
        return count > bytes_.size() ? std::nullopt : std::optional(count);
    }

    std::optional<ObjectShape> container(std::uint64_t start, std::uint64_t childCount) const {
        if (childCount > (table_ - start) / referenceSize_) return std::nullopt;
        return ObjectShape{nodeWeight, start, childCount};
    }

    std::string_view bytes_;
    std::uint64_t offsetSize_;
    std::uint64_t referenceSize_;
    std::uint64_t objectCount_;
    std::uint64_t top_;
    std::uint64_t table_;
    std::vector<Visit> objects_;
    std::vector<Step> path_;
    std::uint64_t walkedReferences_ = 0;
};

// ---- The XML form

constexpr std::string_view blanks = " \t\r\n";
constexpr std::array<std::string_view, 10> elements = {"dict", "array", "string", "key",  "integer",
                                                       "real", "true",  "false",  "date", "data"};

/// Reads the tags alone. What libplist might take for a tag is a tag here too, so it cannot see a deeper
/// nesting.
class XMLNesting {
public:
    explicit XMLNesting(std::uint64_t heaviest) : mostElements_(heaviest / nodeWeight) {}

    /// `tag` is what stands between "<" and the next ">"; `start` is where in the list it does.
    bool accept(std::string_view tag, std::size_t start) {
        if (tag.find('<') != std::string_view::npos) return false;
        if (tag.starts_with('/')) return close(tag.substr(1), start);
        if (!hasRoot_) return acceptProlog(tag);
        const bool isEmpty = tag.ends_with('/');
        const std::string_view name = isEmpty ? trimmedEnd(tag.substr(0, tag.size() - 1)) : tag;
        if (open_.empty() || open_.size() == deepestNesting || !isElement(name)) return false;
        if (++elementCount_ > mostElements_) return false;
        open_.push_back({name, start});
        return !isEmpty || close(name, start);
    }

    /// libplist takes a list whose end is missing for a shorter one.
    bool isComplete() const { return hasRoot_ && open_.empty(); }

private:
    struct Element {
        std::string_view name;
        std::size_t start = 0;
        std::uint64_t keyCount = 0;
    };

    static bool isElement(std::string_view name) {
        return std::find(elements.begin(), elements.end(), name) != elements.end();
    }

    static std::string_view trimmedEnd(std::string_view name) {
        return name.substr(0, name.find_last_not_of(blanks) + 1);
    }

    bool acceptProlog(std::string_view tag) {
        if (tag.starts_with("?xml") || tag.starts_with("!DOCTYPE"))
            return tag.find('[') == std::string_view::npos;
        if (tag != "plist" && !tag.starts_with("plist ")) return false;
        hasRoot_ = true;
        open_.push_back({"plist"});
        return !tag.ends_with('/');
    }

    bool close(std::string_view name, std::size_t start) {
        if (open_.empty() || open_.back().name != name) return false;
        const std::size_t length = start - open_.back().start;
        open_.pop_back();
        return name != "key" || open_.empty() || isKeyAffordable(length);
    }

    /// libplist looks each key up among the earlier ones of its dictionary. Its hash table helps only as long
    /// as the keys were not chosen to collide, and then a comparison takes about 20 ns, as long as reading
    /// 128 bytes, before it comes to the characters. The binary form is read without comparing keys.
    bool isKeyAffordable(std::uint64_t length) {
        constexpr std::uint64_t fixedCost = 128;
        constexpr std::uint64_t mostBytes = 6'000'000'000;
        comparedBytes_ += open_.back().keyCount++ * (fixedCost + length);
        return comparedBytes_ <= mostBytes;
    }

    std::vector<Element> open_;
    bool hasRoot_ = false;
    std::uint64_t mostElements_;
    std::uint64_t elementCount_ = 0;
    std::uint64_t comparedBytes_ = 0;
};

/// For every entity libplist moves the rest of its string by some bytes.
class EntityCost {
public:
    /// `text` is what stands between two tags.
    bool accept(std::string_view text) {
        constexpr std::uint64_t mostBytes = 4ULL << 30U;
        const auto entities = static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '&'));
        movedBytes_ += entities * text.size();
        return movedBytes_ <= mostBytes;
    }

private:
    std::uint64_t movedBytes_ = 0;
};

} // namespace

bool isSafeBinaryPropertyList(std::string_view bytes, std::size_t maximumBytes) {
    using List = BinaryPropertyList;
    if (!bytes.starts_with("bplist00") || bytes.size() > maximumBytes) return false;
    if (bytes.size() < List::headerLength + List::trailerLength) return false;
    BinaryPropertyList list(bytes);
    return list.isTrailerSound() && list.isTreeModest();
}

bool isSafeXMLPropertyList(std::string_view bytes, std::size_t maximumBytes) {
    const auto start = std::min(bytes.find_first_not_of(blanks), bytes.size());
    const std::string_view text = bytes.substr(start);
    const auto begins = [&text](std::string_view opening) { return text.starts_with(opening); };
    if (!begins("<?xml") && !begins("<!DOCTYPE plist") && !begins("<plist")) return false;
    if (bytes.size() > maximumBytes) return false;
    XMLNesting nesting(heaviestTree(bytes.size()));
    EntityCost entities;
    std::size_t rest = 0;
    for (auto open = bytes.find('<'); open != std::string_view::npos; open = bytes.find('<', rest)) {
        const auto close = bytes.find('>', open);
        if (close == std::string_view::npos || !entities.accept(bytes.substr(rest, open - rest)))
            return false;
        if (!nesting.accept(bytes.substr(open + 1, close - open - 1), open)) return false;
        rest = close + 1;
    }
    return nesting.isComplete() && entities.accept(bytes.substr(rest));
}

std::string_view withoutByteOrderMark(std::string_view bytes) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    return bytes.starts_with(mark) ? bytes.substr(mark.size()) : bytes;
}

} // namespace quillbook
