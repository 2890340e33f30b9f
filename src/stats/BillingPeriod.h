// The rules of a tariff that need no tables: billing periods and roundings.
#pragma once

#include "base/Date.h"

namespace korvalin {

/// First day of the billing period that holds `date`; periods begin on day `startDay` (1 to 31) of each
/// month, or on the first of the next one where the month is too short for that day.
Date PeriodBeginOf(Date date, int startDay);

/// Last day of the billing period that holds `date`: the day before the next one begins.
Date PeriodEndOf(Date date, int startDay);

/// A duration with the seconds of its last minute rounded up to the next multiple of `stepSeconds` within
/// that minute (1 to 60; 1 rounds nothing).
Date RoundDuration(Date duration, int stepSeconds);

/// A volume rounded up to the next whole number of units of `unitBytes`; a whole number of units gains one
/// more, as does nothing at all.
double RoundVolume(double bytes, double unitBytes);

} // namespace korvalin
