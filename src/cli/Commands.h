#pragma once

#include "base/Date.h"
#include "cli/Output.h"
#include "platform/DayCounts.h"
#include "stats/PeriodSums.h"
#include "stats/StatFile.h"

#include <optional>
#include <string>
#include <vector>

namespace korvalin {

class Clock;
class Files;
class Language;
class NetworkTables;
class Program;
class Settings;
class TerminationSignals;
struct Locale;

enum class LinesFormat { Table, Json };

/// Prints the monitored lines with their rates: once, after the second that a rate needs, or every second for
/// ever.
void PrintLines(Program& program, LinesFormat format, bool watch);

/// Prints on one line the rates of all lines and, of an alias (empty: of the first line's), what is used,
/// left and to be expected; every second with `watch`, until nobody reads it any more. As JSON it is an
/// object a panel can show. The exit code: ExitUsage for an alias that nothing has.
[[nodiscard]] int PrintStatus(Program& program, const std::string& alias, bool asJson, bool watch);

/// Corrects what is used of the running period to what the provider says (units of 1,000,000 bytes); nothing
/// takes the correction back. The exit code.
[[nodiscard]] int TakeProvidersFigure(Program& program, const std::string& alias,
                                      std::optional<double> megabytes);

/// Prints counters, rates, use and allowances as the text that monitoring systems read, or puts it into a
/// file, which is at every moment a whole one. The exit code.
[[nodiscard]] int TellMetrics(Program& program, Files& files, const std::string& file);

/// Prints the tables of network adapters and IP addresses, as a window shows them or as one JSON object of
/// two lists, an object for each adapter or address.
void PrintNetwork(NetworkTables& network, Language& language, const Locale& locale, bool asJson);

/// Watches the lines and records those that end, without a window, until a signal asks the program to end;
/// then the open ones are recorded. The exit code: 1 when another program records into the data folder.
[[nodiscard]] int RecordUntilSignal(Program& program, const TerminationSignals& signals);

/// Prints every setting that is stored or has a default, as it is read: name, kind, value.
void ListSettings(Settings& settings);

/// The exit code for a command that was typed wrong.
inline constexpr int ExitUsage = 2;

/// Prints one setting as it is read. The exit code: ExitUsage for a name that is no setting's.
[[nodiscard]] int PrintSetting(Settings& settings, const std::string& name);

/// Stores a value in its corrected form and prints what is read then; an empty text deletes the setting. The
/// exit code: 1, with the reason on standard error, when that is not the value that was given.
[[nodiscard]] int StoreSetting(Settings& settings, const Locale& locale, const std::string& name,
                               const std::string& value);

/// Which records are wanted; an empty field sets no limit.
struct RecordFilter {
    std::string Alias;        ///< letter case ignored
    std::optional<Date> From; ///< first day on which a connection ended
    std::optional<Date> Till; ///< last day
};

/// Prints the recorded connections, sorted by line and log-in. The exit code: ExitUsage for an alias that
/// nothing has.
[[nodiscard]] int PrintRecords(Program& program, const RecordFilter& filter, OutputFormat format);

/// Prints the sums per alias and period: aliases in ascending order, the newest period of each first. The
/// exit code as of PrintRecords.
[[nodiscard]] int PrintSums(Program& program, SumPeriod period, const std::string& alias,
                            OutputFormat format);

/// Loads the statistics file as the start of the program does and tells what that changed.
int RepairStatistics(Program& program);

/// What kept records from being written, for people.
const char* TextOf(LoadReport::Hindrance hindrance);

/// What is imported.
struct ImportChoice {
    std::string File;                    ///< where it was read, for messages
    std::vector<std::string> Interfaces; ///< only these; empty: all
    bool DryRun = false;                 ///< only tell
};

/// Makes records of the days that another program has counted, and tells which it took and left. The exit
/// code.
[[nodiscard]] int ImportHistory(Program& program, Clock& clock, DayCounts::Reading reading,
                                const ImportChoice& choice);

/// Prints what a shell needs to complete the program's words.
void PrintCompletion(const std::string& shell);

} // namespace korvalin
