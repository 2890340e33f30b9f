// The texts of the period graph.
#pragma once

#include "stats/PeriodGraph.h"

#include <string>

namespace korvalin {

struct Locale;

/// A short date with a year of two digits.
std::string BriefDate(Date date, const Locale& locale);

/// What stands below a bar: the billing month, or the first day of a shorter period. Dates get shorter where
/// many of them stand side by side.
std::string PeriodLabel(const PeriodVolume& period, SumPeriod kind, std::size_t count, const Locale& locale);

/// The first and the last day of a period; one date if it is a day.
std::string PeriodRange(const PeriodVolume& period, const Locale& locale);

} // namespace korvalin
