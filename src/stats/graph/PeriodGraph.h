#pragma once

#include "stats/PeriodSums.h"

#include <string>
#include <vector>

namespace korvalin {

/// What the user wants to see of one alias.
struct GraphOptions {
    std::string Alias; ///< letter case ignored
    Date From = 0;     ///< first day
    Date Till = 0;     ///< last day
    SumPeriod Period = SumPeriod::BillingMonth;
    int FirstWeekday = 0; ///< of a week: 0 is Sunday, 6 Saturday
    int MaxPeriods = 24;  ///< at least 1; the newest ones are kept
    bool Send = true;     ///< transmitted bytes count
    bool Received = true; ///< received bytes count
};

/// What the connections that ended in a period have moved.
struct PeriodVolume {
    Date Begin = 0;
    Date End = 0; ///< exclusive
    double BytesReceived = 0;
    double BytesTransmitted = 0;
};

/// An alias's volume by period, oldest first; the periods follow each other without a gap.
struct PeriodGraph {
    Date From = 0; ///< the chosen days moved to the borders of their periods, and none beyond today's period
    Date Till = 0;
    std::vector<PeriodVolume> Periods; ///< empty: there is no such alias
    std::size_t PeriodsInRange = 0;    ///< of which the newest are shown
    double Maximum = 0;                ///< largest volume of a period in bytes, of the directions that count
    Date FirstRecord = 0;              ///< day on which the alias's first connection ended; 0: it has none
    Date LastRecord = 0;
};

/// The bytes of the directions that count.
double ShownVolume(const PeriodVolume& period, bool send, bool received);

/// Sums the records, which stay in their order, by the periods from `From` till `Till`. A connection counts,
/// whole, in the period it ended in; those that ended before or after are left out. `today` may have a time
/// of day.
PeriodGraph CalcGraph(const StatRecords& records, const GraphOptions& options, const Aliases& aliases,
                      Date today);

} // namespace korvalin
