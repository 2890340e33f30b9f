#pragma once

#include "base/Date.h"
#include "stats/graph/PeriodGraph.h"

#include <string>
#include <vector>

namespace korvalin {

/// Days to begin an evaluation with: today, the first of this and the last month, of this and the last year,
/// this day a year ago, the day of the first record (0: none). Newest first, none twice, none after today.
std::vector<Date> FirstDayChoices(Date today, Date firstRecord);

/// Days to end it with: today, the ends of the last month and of the last year, the day of the last record.
std::vector<Date> LastDayChoices(Date today, Date lastRecord);

struct Locale;

/// A short date with a year of two digits.
std::string BriefDate(Date date, const Locale& locale);

/// What stands below a bar: the billing month, or the first day of a shorter period. Dates get shorter where
/// many of them stand side by side.
std::string PeriodLabel(const PeriodVolume& period, SumPeriod kind, std::size_t count, const Locale& locale);

/// The first and the last day of a period; one date if it is a day.
std::string PeriodRange(const PeriodVolume& period, const Locale& locale);

} // namespace korvalin
