#pragma once

#include "stats/BilledParts.h"

#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace korvalin {

/// What is billed on a day.
struct DayUse {
    double Volume = 0;
    Date Online = 0;
};

/// The use of each alias on each of the last days. A connection belongs, whole, to the day it ended on.
class DaySums {
  public:
    /// The days that a forecast looks back.
    static constexpr int DaysBack = 28;

    explicit DaySums(const Aliases& aliases) : aliases_(aliases) {}

    /// Forgets everything, and from now on all days but the first that lie too far before `today`.
    void Begin(Date today);

    void Add(const BilledRecord& record, const std::string& lowerLine, std::size_t aliasIndex);

    /// What a connection that is still open adds to its day.
    DayUse ShareOf(const BilledRecord& open, const std::string& lowerLine, std::size_t aliasIndex) const;

    DayUse On(std::size_t aliasIndex, Date day) const;

    /// The mean day of the last days before `today`, of those since the alias was first used when these are
    /// fewer. Nothing when it was first used today.
    std::optional<DayUse> MeanBefore(std::size_t aliasIndex, Date today) const;

  private:
    struct Days {
        Date First = 0; ///< the first day of use; 0: none yet
        std::map<Date, DayUse> Uses;
    };
    BilledShare Bill(const BilledRecord& record, BilledConnection& connection, std::size_t aliasIndex) const;
    const Days* Find(std::size_t aliasIndex) const;

    const Aliases& aliases_;
    Date oldest_ = 0;
    std::vector<Days> days_;                                        // that of alias i at i - 1
    std::unordered_map<std::string, BilledConnection> connections_; // the last of each line
};

} // namespace korvalin
