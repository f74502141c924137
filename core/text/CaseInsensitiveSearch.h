#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace quillbook {

/// Looks for one text in many others, blind to letter case by the rules of a locale but not to accents. Use
/// from one thread at a time.
class CaseInsensitiveSearch {
public:
    /// `locale` as POSIX names it.
    CaseInsensitiveSearch(std::string_view wanted, const std::string& locale);
    ~CaseInsensitiveSearch();
    CaseInsensitiveSearch(const CaseInsensitiveSearch&) = delete;
    CaseInsensitiveSearch& operator=(const CaseInsensitiveSearch&) = delete;

    /// An empty wanted text is found in none.
    bool isFoundIn(std::string_view text) const;

private:
    struct Matcher;
    std::unique_ptr<Matcher> matcher_;
};

} // namespace quillbook
