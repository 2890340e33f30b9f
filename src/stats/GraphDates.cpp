#include "stats/GraphDates.h"

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

} // namespace korvalin
