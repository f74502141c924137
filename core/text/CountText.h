#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace quillbook {

/// Whole numbers as people read them on their desktops, in one locale. Safe to call from any thread.
class CountText {
public:
    /// `locale` as POSIX names it.
    explicit CountText(const std::string& locale);
    ~CountText();
    CountText(const CountText&) = delete;
    CountText& operator=(const CountText&) = delete;

    /// The user's own, made on first use and kept for the life of the process.
    static const CountText& user();

    /// With its digits in groups, as in "1,204".
    std::string grouped(std::int64_t count) const;

private:
    struct Formatters;
    std::unique_ptr<Formatters> formatters_;
};

} // namespace quillbook
