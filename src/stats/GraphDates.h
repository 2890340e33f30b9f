#pragma once

#include "base/Date.h"

#include <vector>

namespace korvalin {

/// Days to begin an evaluation with: today, the first of this and the last month, of this and the last year,
/// this day a year ago, the day of the first record (0: none). Newest first, none twice, none after today.
std::vector<Date> FirstDayChoices(Date today, Date firstRecord);

/// Days to end it with: today, the ends of the last month and of the last year, the day of the last record.
std::vector<Date> LastDayChoices(Date today, Date lastRecord);

} // namespace korvalin
