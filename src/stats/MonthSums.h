#pragma once

#include "platform/Journal.h"
#include "stats/BilledParts.h"
#include "stats/DaySums.h"
#include "stats/Forecast.h"
#include "stats/StatRecord.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace korvalin {

class Aliases;
class Clock;
class Errors;
struct LineState;

/// What the billing rules make of a line's current period, the running connection included.
struct PeriodUse {
    double UsedBytes = 0;
    double FreeBytes = 0;       ///< allowance of the period; 0 = none
    bool TrayVol = false;       ///< the tray shows what is left of the allowance instead of what is used
    double FractionElapsed = 0; ///< of the period
};

/// The sums of the current billing period, one per alias: what was recorded before the last
/// CalcStatsThisMonth and since. What is open comes on top when somebody asks.
class MonthSums {
  public:
    MonthSums(Aliases& aliases, const LineState& lines, Errors& errors, Clock& clock);

    /// Rebuilds the tables of lines and aliases, then the sums from these records, whose aliases it sets, and
    /// from those that were made in this run after the first `known`, which are among `records`.
    void CalcStatsThisMonth(StatRecords& records, std::size_t known);

    /// A record was made.
    void Add(const OpenConnection& record);

    /// Another program records: what is open is this, as that program has it. None: it is this program's
    /// lines.
    void SetOpenElsewhere(std::optional<std::vector<OpenConnection>> open) { elsewhere_ = std::move(open); }

    /// How many records have been made in this run.
    std::size_t RecordsMade() const { return made_.size(); }

    /// Whether the last CalcStatsThisMonth went through to its end.
    bool Valid() const { return valid_; }

    /// The sum of an alias, all zero when nothing was recorded in its period. A new period begins at zero.
    const StatRecord& Sum(std::size_t aliasIndex);

    /// The use of the period of a line: recorded and open, of all lines with its alias.
    PeriodUse UseOf(std::string_view lineName);
    /// The same with where it is going.
    AliasUse UseOfLine(std::string_view lineName);

    /// What the provider has counted in an alias's running period, in units of 1,000,000 bytes, is what is
    /// used from now on; none: what the program has counted, which is returned.
    double TakeProvidersFigure(std::size_t aliasIndex, std::optional<double> megabytes);

    /// The use of an alias and where it is going, recorded and open.
    AliasUse UseOf(std::size_t aliasIndex);

  private:
    struct OpenLine {
        std::string LowerName;
        BilledRecord Record;
    };
    struct OpenUse {
        double Volume = 0;
        Date Online = 0;
        DayUse Today;
    };
    void Begin(StatRecord& sum, std::size_t aliasIndex);
    void EnsureSums();
    void AddRecord(const OpenConnection& record);
    void AddAll(const StatRecords& records);
    void AddToSum(const BilledRecord& record, const std::string& lineName, std::size_t aliasIndex);
    std::vector<OpenLine> OpenOf(std::size_t aliasIndex);
    OpenUse UseOfOpen(std::size_t aliasIndex, Date today);

    Aliases& aliases_;
    const LineState& lines_;
    Errors& errors_;
    Clock& clock_;
    StatRecords sums_; // that of alias i at i - 1
    std::unordered_map<std::string, BilledConnection>
        connections_; // the last of each line, by lower-case name
    DaySums days_;
    std::vector<OpenConnection> made_;
    std::optional<std::vector<OpenConnection>> elsewhere_;
    bool valid_ = false;
};

} // namespace korvalin
