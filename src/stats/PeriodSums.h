#pragma once

#include "stats/StatRecord.h"

namespace korvalin {

class Aliases;
class Errors;
struct Locale;

/// The periods that connections are summed by, as the setting "z_optStatSum" numbers them.
enum class SumPeriod { Day = 0, Week = 1, BillingMonth = 2 };

/// Sums of connections per alias and period. A connection belongs, whole, to the period it ended in; one that
/// was recorded day by day counts in each period with the parts that ended there, together.
class PeriodSums {
  public:
    PeriodSums(const Aliases& aliases, Errors& errors, const Locale& locale)
        : aliases_(aliases), errors_(errors), locale_(locale) {}

    /// Replaces `sums` by the sums of the records, open connections included: aliases in ascending order, the
    /// newest period of each first.
    void CalcStatSums(const StatRecords& records, SumPeriod period, StatRecords& sums) const;

  private:
    void SumUp(const StatRecords& records, SumPeriod period, StatRecords& sums) const;
    void Begin(StatRecord& sum, const StatRecord& first, std::size_t alias, SumPeriod period,
               TextPool& texts) const;

    const Aliases& aliases_;
    Errors& errors_;
    const Locale& locale_;
};

} // namespace korvalin
