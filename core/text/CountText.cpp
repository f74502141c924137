#include "core/text/CountText.h"

#include "core/text/ICULocale.h"
#include "core/text/UserLocale.h"

#include <stdexcept>

#include <unicode/numberformatter.h>

namespace quillbook {

struct CountText::Formatters {
    icu::number::LocalizedNumberFormatter grouped;
};

CountText::CountText(const std::string& locale)
    : formatters_(std::make_unique<Formatters>(
          Formatters{icu::number::NumberFormatter::withLocale(icuLocale(locale))})) {}

CountText::~CountText() = default;

const CountText& CountText::user() {
    static const CountText text(userNumberLocale());
    return text;
}

std::string CountText::grouped(std::int64_t count) const {
    UErrorCode status = U_ZERO_ERROR;
    std::string utf8;
    formatters_->grouped.formatInt(count, status).toString(status).toUTF8String(utf8);
    if (U_FAILURE(status)) throw std::runtime_error("The locale data of numbers could not be loaded.");
    return utf8;
}

} // namespace quillbook
