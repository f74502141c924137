#include "core/text/GraphemeClusters.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <memory>

#include <unicode/brkiter.h>
#include <unicode/utext.h>

namespace quillbook {
namespace {

struct UTextCloser {
    void operator()(UText* text) const { utext_close(text); }
};

// Clusters have no greatest length, but what stands this far behind a limit cannot move a boundary before it.
constexpr std::size_t lookAhead = 1'024;
// ICU counts positions in 32 bits.
constexpr std::size_t longestText = std::numeric_limits<std::int32_t>::max();

/// Walks the cluster boundaries behind the start in order, until `visit` gives false.
template <typename Visit>
void forEachBoundary(std::string_view text, Visit visit) {
    thread_local const std::unique_ptr<icu::BreakIterator> clusters = [] {
        UErrorCode status = U_ZERO_ERROR;
        return std::unique_ptr<icu::BreakIterator>(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    }();
    const auto length = static_cast<std::int64_t>(std::min(text.size(), longestText));
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UText, UTextCloser> view(utext_openUTF8(nullptr, text.data(), length, &status));
    if (!clusters || U_FAILURE(status)) return;
    clusters->setText(view.get(), status);
    if (U_FAILURE(status)) return;
    for (auto next = clusters->next(); next != icu::BreakIterator::DONE; next = clusters->next()) {
        if (!visit(static_cast<std::size_t>(next))) return;
    }
}

} // namespace

std::string_view graphemePrefix(std::string_view text, std::size_t maximumBytes) {
    if (text.size() <= maximumBytes) return text;
    std::size_t length = 0;
    const std::size_t window = std::min(text.size() - maximumBytes, lookAhead) + maximumBytes;
    forEachBoundary(text.substr(0, window), [&](std::size_t boundary) {
        if (boundary <= maximumBytes) length = boundary;
        return boundary < maximumBytes;
    });
    return text.substr(0, length);
}

std::string shortened(std::string_view text, std::size_t maximumBytes) {
    constexpr std::string_view ellipsis = "…";
    assert(maximumBytes >= ellipsis.size());
    if (text.size() <= maximumBytes) return std::string(text);
    return std::string(graphemePrefix(text, maximumBytes - ellipsis.size())).append(ellipsis);
}

std::string_view firstGrapheme(std::string_view text) {
    std::size_t length = text.size();
    forEachBoundary(text, [&](std::size_t boundary) {
        length = boundary;
        return false;
    });
    return text.substr(0, length);
}

} // namespace quillbook
