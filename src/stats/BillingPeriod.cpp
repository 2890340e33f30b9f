#include "stats/BillingPeriod.h"

#include <cmath>
#include <cstdint>

namespace korvalin {
namespace {

constexpr std::int64_t secondsPerMinute = 60;

} // namespace

Date PeriodBeginOf(Date date, int startDay) {
    const DateParts day = SplitDate(DayOf(date));
    if (day.Day >= startDay) return DateSerial(day.Year, day.Month, startDay);
    const Date candidate = DateSerial(day.Year, day.Month - 1, startDay);
    const bool spilled = SplitDate(candidate).Month == day.Month;
    return spilled ? DateSerial(day.Year, day.Month, 1) : candidate;
}

Date PeriodEndOf(Date date, int startDay) {
    const DateParts day = SplitDate(DayOf(date));
    Date next = DateSerial(day.Year, day.Month + (day.Day >= startDay ? 1 : 0), startDay);
    const DateParts begin = SplitDate(next);
    if (begin.Day != startDay) next = DateSerial(begin.Year, begin.Month, 1);
    return next - 1;
}

Date RoundDuration(Date duration, int stepSeconds) {
    if (stepSeconds < 2) return duration;
    const std::int64_t seconds = std::llround(duration * SecondsPerDay) % secondsPerMinute;
    if (seconds <= 0) return duration;
    const std::int64_t begun = (seconds - 1) % stepSeconds + 1;
    return duration + static_cast<double>(stepSeconds - begun) * OneSecond;
}

double RoundVolume(double bytes, double unitBytes) {
    return (std::floor(bytes / unitBytes) + 1) * unitBytes;
}

} // namespace korvalin
