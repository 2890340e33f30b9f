#pragma once

#include "stats/PeriodUse.h"
#include "stats/StatRecord.h"

#include <string_view>

namespace korvalin {

class Aliases;
class Clock;
class Errors;
struct LineState;

/// The sums of the current billing period, one per alias. They hold the records of the last
/// CalcStatsThisMonth; a record written since counts from the next one on.
class MonthSums {
  public:
    MonthSums(Aliases& aliases, const LineState& lines, Errors& errors, Clock& clock);

    /// Rebuilds the tables of lines and aliases, then the sums from these records, whose aliases it sets.
    void CalcStatsThisMonth(StatRecords& records);

    /// Whether the last CalcStatsThisMonth went through to its end.
    bool Valid() const { return valid_; }

    /// The sum of an alias, all zero when nothing was recorded in its period. A new period begins at zero.
    const StatRecord& Sum(std::size_t aliasIndex);

    /// The use of the period of a line, whose open connection has moved `openBytes`.
    PeriodUse UseOf(std::string_view lineName, double openBytes);

  private:
    void Begin(StatRecord& sum, std::size_t aliasIndex);
    void EnsureSums();
    void Add(const StatRecords& records);

    Aliases& aliases_;
    const LineState& lines_;
    Errors& errors_;
    Clock& clock_;
    StatRecords sums_; // that of alias i at i - 1
    bool valid_ = false;
};

} // namespace korvalin
