#include "core/text/CaseInsensitiveSearch.h"

#include "core/text/ICULocale.h"

#include <unicode/coll.h>
#include <unicode/stsearch.h>
#include <unicode/tblcoll.h>

namespace quillbook {

struct CaseInsensitiveSearch::Matcher {
    icu::UnicodeString wanted;
    std::unique_ptr<icu::Collator> collator;
    std::unique_ptr<icu::StringSearch> search;
};

CaseInsensitiveSearch::CaseInsensitiveSearch(std::string_view wanted, const std::string& locale)
    : matcher_(std::make_unique<Matcher>()) {
    const auto size = static_cast<int32_t>(wanted.size());
    matcher_->wanted = icu::UnicodeString::fromUTF8(icu::StringPiece(wanted.data(), size));
    if (matcher_->wanted.isEmpty()) return;
    UErrorCode status = U_ZERO_ERROR;
    matcher_->collator.reset(icu::Collator::createInstance(icuLocale(locale), status));
    auto* rules = dynamic_cast<icu::RuleBasedCollator*>(matcher_->collator.get());
    if (U_FAILURE(status) || rules == nullptr) return;
    // The third level of collation holds the letter case, the second the accents (Unicode Technical Standard
    // #10).
    rules->setStrength(icu::Collator::SECONDARY);
    // A search needs a text from the start; each call of isFoundIn gives it another.
    matcher_->search =
        std::make_unique<icu::StringSearch>(matcher_->wanted, matcher_->wanted, rules, nullptr, status);
    if (U_FAILURE(status)) matcher_->search.reset();
}

CaseInsensitiveSearch::~CaseInsensitiveSearch() = default;

bool CaseInsensitiveSearch::isFoundIn(std::string_view text) const {
    if (!matcher_->search || text.empty()) return false;
    const auto size = static_cast<int32_t>(text.size());
    const icu::UnicodeString target = icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), size));
    UErrorCode status = U_ZERO_ERROR;
    matcher_->search->setText(target, status);
    return U_SUCCESS(status) && matcher_->search->first(status) != USEARCH_DONE && U_SUCCESS(status);
}

} // namespace quillbook
