#include "recovery/CacheIndex.h"

#include <array>
#include <utility>

namespace quillbook {
namespace {

/// Slashes at the end do not count.
std::string_view lastPathComponent(std::string_view path) {
    const auto last = path.find_last_not_of('/');
    if (last == std::string_view::npos) return {};
    path = path.substr(0, last + 1);
    return path.substr(path.rfind('/') + 1);
}

/// The names that a record's file may have in a cache, each once; empty ones stand for none.
std::array<std::string_view, 2> candidateNames(const MissingAttachmentRecord& record) {
    std::array<std::string_view, 2> names{lastPathComponent(record.filename)};
    if (record.transferName) names[1] = lastPathComponent(*record.transferName);
    if (names[1] == names[0]) names[1] = {};
    return names;
}

/// 0 where it is not known, which no cached file has: a record without a size matches nothing.
std::int64_t expectedSize(const MissingAttachmentRecord& record) {
    return record.totalBytes.value_or(0);
}

void merge(std::optional<CacheIndex::Match>& match, CacheIndex::Match other) {
    if (!match) {
        match = std::move(other);
        return;
    }
    match->isAmbiguous = true;
    if (other.file < match->file) match->file = std::move(other.file);
}

} // namespace

CacheIndex::CacheIndex(const std::vector<MissingAttachmentRecord>& missing) : names_(missing.size() * 2) {
    files_.reserve(missing.size() * 2);
    for (const MissingAttachmentRecord& record : missing) {
        if (expectedSize(record) < 1) continue;
        for (const std::string_view name : candidateNames(record)) {
            if (name.empty()) continue;
            names_.add(name);
            files_.try_emplace(Key{name, expectedSize(record)});
        }
    }
}

void CacheIndex::add(const CachedFile& file) {
    const auto found = files_.find(Key{file.basename, file.size});
    if (found != files_.end()) merge(found->second, Match{.file = file.url.native()});
}

std::optional<CacheIndex::Match> CacheIndex::match(const MissingAttachmentRecord& record) const {
    std::optional<Match> match;
    for (const std::string_view name : candidateNames(record)) {
        const auto found = files_.find(Key{name, expectedSize(record)});
        if (found != files_.end() && found->second) merge(match, *found->second);
    }
    return match;
}

} // namespace quillbook
