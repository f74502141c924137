#pragma once

#include "tools/sample/LibraryRows.h"
#include "tools/writing/DeterministicRandom.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

namespace quillbook::sample {

/// Hands out attachments, up to a number, and writes their files below Library/Messages/Attachments. Throws
/// FileError.
class AttachmentShelf {
public:
    /// `messages` is the folder Library/Messages.
    AttachmentShelf(std::filesystem::path messages, std::uint64_t seed, std::int64_t count);

    /// The attachment of that name (see MediaCatalog), or nothing when none is left.
    std::optional<AttachmentRow> take(std::string_view name, bool isFromMe);
    /// The next of the small files that no dialogue names.
    std::optional<AttachmentRow> takeSmallFile(bool isFromMe);

    std::int64_t remaining() const { return count_ - taken_; }
    std::int64_t taken() const { return taken_; }
    std::int64_t onDisk() const { return onDisk_; }

private:
    AttachmentRow recordFor(bool isFromMe);
    void store(const AttachmentRow& row, const Data& contents);

    std::filesystem::path messages_;
    DeterministicRandom random_;
    std::uint64_t seed_;
    std::int64_t count_;
    std::int64_t taken_ = 0;
    std::int64_t onDisk_ = 0;
    std::int64_t smallFiles_ = 0;
};

} // namespace quillbook::sample
