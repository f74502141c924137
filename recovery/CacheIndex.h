#pragma once

#include "core/interfaces/AttachmentSurvey.h"
#include "recovery/CachedFile.h"
#include "recovery/NameFilter.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quillbook {

/// The names and sizes that missing attachments are looked for by, each with the cached files that have both.
/// Of those it keeps what an answer needs, the lowest path and whether there were more: its memory goes with
/// the records, and neither many files of one name nor many records of one name make a search slower.
class CacheIndex {
public:
    struct Match {
        std::string file;         ///< The lowest path, compared as bytes.
        bool isAmbiguous = false; ///< More than one file matched.
    };

    /// The records must outlive the index and stay as they are.
    explicit CacheIndex(const std::vector<MissingAttachmentRecord>& missing);

    /// False only for names that no record is looked for by.
    bool mayWant(std::string_view name) const { return names_.mayHold(name); }
    void add(const CachedFile& file);
    std::optional<Match> match(const MissingAttachmentRecord& record) const;

private:
    struct Key {
        std::string_view name;
        std::int64_t size = 0;

        bool operator==(const Key&) const = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const noexcept {
            // An odd factor (Knuth, The Art of Computer Programming, volume 3, section 6.4) spreads the
            // sizes.
            constexpr std::uint64_t factor = 0x9E37'79B9'7F4A'7C15;
            return std::hash<std::string_view>()(key.name) ^ (static_cast<std::uint64_t>(key.size) * factor);
        }
    };

    NameFilter names_;
    std::unordered_map<Key, std::optional<Match>, KeyHash> files_;
};

} // namespace quillbook
