#pragma once

#include "base/Date.h"
#include "cli/Output.h"
#include "stats/PeriodSums.h"

#include <optional>
#include <string>

namespace korvalin {

class Program;

/// Which records are wanted; an empty field sets no limit.
struct RecordFilter {
    std::string Alias;        ///< letter case ignored
    std::optional<Date> From; ///< first day on which a connection ended
    std::optional<Date> Till; ///< last day
};

/// Prints the recorded connections, sorted by line and log-in.
void PrintRecords(Program& program, const RecordFilter& filter, OutputFormat format);

/// Prints the sums per alias and period: aliases in ascending order, the newest period of each first.
void PrintSums(Program& program, SumPeriod period, const std::string& alias, OutputFormat format);

/// Loads the statistics file as the start of the program does and tells what that changed.
void RepairStatistics(Program& program);

} // namespace korvalin
