#pragma once

#include "base/Date.h"
#include "stats/StatRecord.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace korvalin {

class Clock;
class Errors;
class Settings;
class UnitFormat;

/// A line's alias, or an alias with its tariff and its current billing period.
struct AliasInfo {
    std::string Alias;
    std::int32_t FreeHours = 0;  ///< allowance of a period
    std::int32_t FreeVolume = 0; ///< allowance in units of 1,000,000 bytes
    double FreeVolumeBytes = 0;
    double CorrectionBytes = 0; ///< what the provider counts more in the current period
    std::string LineName;       ///< in the table of lines only
    std::int32_t MonthStartDay = 1;
    Date PeriodBegin = 0; ///< first day of the current billing period
    Date PeriodEnd = 0;   ///< its last day
    std::int32_t DaysElapsed = 0;
    double FractionElapsed = 0; ///< of the period, 0 to 1
    std::int32_t DaysInPeriod = 0;
    std::int32_t RoundSeconds = 1;
    bool TrayTime = false; ///< the tray shows the period's online time
    bool TrayVol = false;  ///< the tray shows the volume left of the allowance
    bool Up1MB = true;     ///< each connection's volume is rounded up to the next unit
};

/// The tables of lines and aliases. A line is known from the first time somebody asks for its alias; tariffs
/// belong to aliases, so lines that share one are billed together. Names are compared without regard to
/// letter case; indices count from 1.
class Aliases {
  public:
    /// Volumes are rounded to the large unit of `units`.
    Aliases(Settings& settings, Errors& errors, Clock& clock, const UnitFormat& units);

    /// The alias of a line; a line without one gets its own name, which is stored.
    const std::string& GetAlias(std::string_view lineName);

    /// Sets the alias of every record.
    void FillAlias(StatRecords& records);

    /// Reads the tariff of an alias anew; an empty name keeps the entry's.
    void FillAliasInfo(std::size_t aliasIndex, std::string_view aliasName = {});

    /// Notes what the provider counts in the current period more than the program: whole units of 1,000,000
    /// bytes, which 0 takes back. Says nothing of other periods.
    void Correct(std::size_t aliasIndex, std::int32_t units);

    /// Brings the periods in line with the calendar when a new day has begun since they were read.
    void FollowDay();

    /// Forgets all lines and aliases.
    void Clear();

    /// The index of an alias; 0 when there is none of that name.
    std::size_t AliasIndex(std::string_view alias) const;
    std::size_t AliasCount() const { return aliases_.size(); }
    /// Throws std::out_of_range for an index that is none; so do the following.
    AliasInfo& Alias(std::size_t aliasIndex) { return aliases_.at(aliasIndex - 1); }
    const AliasInfo& Alias(std::size_t aliasIndex) const { return aliases_.at(aliasIndex - 1); }

    /// The known lines with their aliases, in the order they were first asked for.
    const std::vector<AliasInfo>& Lines() const { return lines_; }

    /// The billing period of an alias that holds `date`.
    Date PeriodBeginOf(Date date, std::size_t aliasIndex) const;
    /// The last day of the alias's billing period that a date lies in.
    Date PeriodEndOf(Date date, std::size_t aliasIndex) const;

    /// A connection's duration and volume (bytes) by the rules of an alias.
    Date RoundDuration(Date duration, std::size_t aliasIndex) const;
    double RoundVolume(double bytes, std::size_t aliasIndex) const;

  private:
    using Lookup = std::unordered_map<std::string, std::size_t>;

    std::string ReadAlias(const std::string& lineName);
    std::size_t AddLine(const std::string& lineName);
    void ReadTariff(AliasInfo& info);

    Settings& settings_;
    Errors& errors_;
    Clock& clock_;
    const UnitFormat& units_;
    std::vector<AliasInfo> lines_;
    std::vector<AliasInfo> aliases_;
    Lookup lineIndex_; // by lower-case name
    Lookup aliasIndex_;
    Date day_ = 0; // the periods belong to this day
};

} // namespace korvalin
