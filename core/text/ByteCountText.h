#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace quillbook {

/// Sizes of files as people read them on their desktops, in one locale. Safe to call from any thread.
class ByteCountText {
public:
    /// `locale` as POSIX names it.
    explicit ByteCountText(const std::string& locale);
    ~ByteCountText();
    ByteCountText(const ByteCountText&) = delete;
    ByteCountText& operator=(const ByteCountText&) = delete;

    /// The user's own, made on first use and kept for the life of the process.
    static const ByteCountText& user();

    /// In decimal units (1 kB is 1000 bytes): bytes and kilobytes whole, megabytes with at most one decimal,
    /// all above with at most two, as in "512 bytes", "88 kB", "3.5 MB" and "1.25 GB". Halves are rounded
    /// away from zero; what rounds to 1000 of a unit is 1 of the next. The largest unit is the petabyte.
    std::string fileSize(std::int64_t bytes) const;

private:
    struct Formatters;
    std::unique_ptr<Formatters> formatters_;
};

} // namespace quillbook
