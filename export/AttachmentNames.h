#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace quillbook {

/// The front of an album folder's name, from a conversation's title: no control characters, slashes or
/// colons, at most 200 bytes, and "Conversation" where nothing usable is left.
std::string safeFolderTitle(std::string_view title);

/// Hands out the names of one album's attachments. No two are alike but for letter case, so that an album can
/// be copied to a file system that does not tell it apart. Use from one thread at a time.
class AttachmentNames {
public:
    /// A name as near to `wanted` as a file's name may be. Where nothing usable is left of that, `fallback`
    /// stands in as it is, so it may hold a slash. The name stays taken.
    std::string take(std::string_view wanted, std::string_view fallback);

private:
    std::unordered_set<std::string> usedNames_; ///< In lower case.
    /// Where the search for a free number goes on, for each name's last tried row of numbers: names are never
    /// given back, so the numbers below stay taken. Without it, one name given n times would cost n² / 2
    /// look-ups.
    std::unordered_map<std::string, std::int64_t> nextNumbers_;
};

} // namespace quillbook
