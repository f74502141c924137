#include "core/text/ByteCountText.h"

#include "core/text/ICULocale.h"
#include "core/text/UserLocale.h"

#include <stdexcept>
#include <vector>

#include <unicode/measunit.h>
#include <unicode/numberformatter.h>

namespace quillbook {
namespace {

/// One unit with the formatter that appends its word. A number is given to it in steps: the least amount that
/// the unit shows.
struct Unit {
    std::uint64_t step = 1;         ///< In bytes.
    std::uint64_t stepsPerUnit = 1; ///< A power of ten.
    icu::number::LocalizedNumberFormatter formatter;
};

Unit unitOf(icu::MeasureUnit unit, std::uint64_t bytes, int decimals, const icu::Locale& place) {
    // The short word of the byte has no plural in English, unlike the full one.
    const auto width = bytes == 1 ? UNUM_UNIT_WIDTH_FULL_NAME : UNUM_UNIT_WIDTH_SHORT;
    std::uint64_t stepsPerUnit = 1;
    for (int decimal = 0; decimal < decimals; ++decimal)
        stepsPerUnit *= 10;
    return {bytes / stepsPerUnit, stepsPerUnit,
            icu::number::NumberFormatter::withLocale(place)
                .unit(std::move(unit))
                .unitWidth(width)
                .scale(icu::number::Scale::powerOfTen(-decimals))
                .precision(icu::number::Precision::maxFraction(decimals))};
}

/// Halves go up.
std::uint64_t roundedSteps(std::uint64_t bytes, std::uint64_t step) {
    return bytes / step + (bytes % step >= step - step / 2 ? 1U : 0U);
}

std::string formatted(const Unit& unit, std::int64_t steps) {
    UErrorCode status = U_ZERO_ERROR;
    std::string utf8;
    unit.formatter.formatInt(steps, status).toString(status).toUTF8String(utf8);
    if (U_FAILURE(status)) throw std::runtime_error("The locale data of sizes could not be loaded.");
    return utf8;
}

} // namespace

struct ByteCountText::Formatters {
    std::vector<Unit> units; ///< Ascending.
};

ByteCountText::ByteCountText(const std::string& locale) : formatters_(std::make_unique<Formatters>()) {
    const icu::Locale place = icuLocale(locale);
    using Measure = icu::MeasureUnit;
    formatters_->units.push_back(unitOf(Measure::getByte(), 1, 0, place));
    formatters_->units.push_back(unitOf(Measure::getKilobyte(), 1'000, 0, place));
    formatters_->units.push_back(unitOf(Measure::getMegabyte(), 1'000'000, 1, place));
    formatters_->units.push_back(unitOf(Measure::getGigabyte(), 1'000'000'000, 2, place));
    formatters_->units.push_back(unitOf(Measure::getTerabyte(), 1'000'000'000'000, 2, place));
    formatters_->units.push_back(unitOf(Measure::getPetabyte(), 1'000'000'000'000'000, 2, place));
    for (const Unit& unit : formatters_->units)
        formatted(unit, 0);
}

ByteCountText::~ByteCountText() = default;

const ByteCountText& ByteCountText::user() {
    static const ByteCountText text(userNumberLocale());
    return text;
}

std::string ByteCountText::fileSize(std::int64_t bytes) const {
    // The least count of all has no positive counterpart among signed numbers.
    const auto unsignedBytes = static_cast<std::uint64_t>(bytes);
    const std::uint64_t magnitude = bytes < 0 ? 0 - unsignedBytes : unsignedBytes;
    const auto& units = formatters_->units;
    auto unit = units.begin();
    while (unit + 1 != units.end() && roundedSteps(magnitude, unit->step) >= 1'000 * unit->stepsPerUnit)
        ++unit;
    // The least count of all is shown in steps of many bytes, so that both signs have it.
    const auto steps = static_cast<std::int64_t>(roundedSteps(magnitude, unit->step));
    return formatted(*unit, bytes < 0 ? -steps : steps);
}

} // namespace quillbook
