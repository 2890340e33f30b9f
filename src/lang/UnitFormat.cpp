#include "lang/UnitFormat.h"

#include "base/Numbers.h"
#include "base/Units.h"
#include "errors/Errors.h"
#include "platform/Clock.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace korvalin {

UnitFormat::UnitFormat(Errors& errors, const Locale& locale, Clock& clock)
    : errors_(errors), locale_(locale), clock_(clock) {}

std::int32_t UnitFormat::UnitFactor(std::string_view unitName) {
    if (const auto factor = FindUnitFactor(unitName)) return *factor;
    errors_.WriteErrorLog("unknown unit: " + std::string(unitName), "noGroup");
    return 1000;
}

void UnitFormat::SetUnits(std::string_view rateUnit, std::string_view volumeUnit) {
    rateFactor_ = UnitFactor(rateUnit);
    volumeFactor_ = UnitFactor(volumeUnit);
}

std::string UnitFormat::FormatKB(double value, std::int32_t& factor, std::string_view format) const {
    if (factor == 0) factor = rateFactor_;
    return FormatNumber(value / factor, format, locale_);
}

std::string UnitFormat::FormatMB(double value, std::int32_t& factor, std::string_view format) const {
    if (factor == 0) factor = volumeFactor_;
    return FormatNumber(value / factor, format, locale_);
}

std::int32_t UnitFormat::SecondsSince(Date date, bool toNow) const {
    const Date span = toNow ? clock_.Now() - date : date;
    // A span built from whole seconds may fall short of them by the last bit.
    constexpr double most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(std::floor(span * SecondsPerDay + 1e-4), -most, most));
}

} // namespace korvalin
