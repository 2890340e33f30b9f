#include "stats/graph/GraphLabels.h"

#include "base/Locale.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>

namespace korvalin {
namespace {

std::vector<Date> NewestFirst(std::vector<Date> days, Date today) {
    std::erase_if(days, [today](Date day) { return day == 0 || day > today; });
    std::sort(days.begin(), days.end(), std::greater<>());
    days.erase(std::unique(days.begin(), days.end()), days.end());
    return days;
}

} // namespace

std::vector<Date> FirstDayChoices(Date today, Date firstRecord) {
    today = DayOf(today);
    const DateParts day = SplitDate(today);
    return NewestFirst({today, DateSerial(day.Year, day.Month, 1), DateSerial(day.Year, day.Month - 1, 1),
                        DateSerial(day.Year, 1, 1), DateSerial(day.Year - 1, day.Month, day.Day),
                        DateSerial(day.Year - 1, 1, 1), firstRecord},
                       today);
}

std::vector<Date> LastDayChoices(Date today, Date lastRecord) {
    today = DayOf(today);
    const DateParts day = SplitDate(today);
    return NewestFirst({today, DateSerial(day.Year, day.Month, 0), DateSerial(day.Year, 1, 0), lastRecord},
                       today);
}

std::string BriefDate(Date date, const Locale& locale) {
    return FormatPattern(date, ReplaceAll(locale.ShortDate, "yyyy", "yy"));
}

std::string PeriodLabel(const PeriodVolume& period, SumPeriod kind, std::size_t count, const Locale& locale) {
    constexpr std::size_t many = 13;
    constexpr std::size_t longest = 9; // characters that the room below the base line holds
    if (kind == SumPeriod::BillingMonth) {
        const DateParts begin = SplitDate(period.Begin);
        return fmt::format("{} {:02}", locale.ShortMonthNames.at(static_cast<std::size_t>(begin.Month) - 1),
                           begin.Year % 100);
    }
    const std::string whole = FormatPattern(period.Begin, locale.ShortDate);
    const bool shorten = count >= many || CharacterCount(whole) > longest;
    return shorten ? BriefDate(period.Begin, locale) : whole;
}

std::string PeriodRange(const PeriodVolume& period, const Locale& locale) {
    const std::string begin = FormatPattern(period.Begin, locale.ShortDate);
    const Date last = period.End - 1;
    return last == period.Begin ? begin : begin + " - " + FormatPattern(last, locale.ShortDate);
}

} // namespace korvalin
