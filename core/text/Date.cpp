#include "core/text/Date.h"

namespace quillbook {

Date Date::now() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return fromUnixSeconds(std::chrono::duration<double>(sinceEpoch).count());
}

Date Date::fromUnixSeconds(double seconds) {
    return Date{seconds - static_cast<double>(referenceDateUnixSeconds)};
}

double Date::unixSeconds() const {
    return secondsSinceReferenceDate + static_cast<double>(referenceDateUnixSeconds);
}

} // namespace quillbook
