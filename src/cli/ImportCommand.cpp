#include "base/Text.h"
#include "cli/Commands.h"
#include "platform/Clock.h"
#include "platform/DayCounts.h"
#include "program/Program.h"
#include "stats/DayImport.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

namespace korvalin {
namespace {

const char* TextOf(DayCounts::Fault fault) {
    using Fault = DayCounts::Fault;
    switch (fault) {
    case Fault::NoFile: return "there is no such file";
    case Fault::Unreadable: return "the file cannot be read";
    case Fault::Foreign: return "the file is no database of vnStat 2";
    case Fault::Damaged: return "the database is damaged";
    case Fault::Newer: return "the database is of a vnStat that is newer than what is known here";
    case Fault::Locked: return "another program is writing to the database";
    case Fault::None: break;
    }
    return "";
}

bool KeepOnly(const std::vector<std::string>& interfaces, std::vector<CountedDay>& days) {
    const auto isOf = [&](const CountedDay& day, const std::string& name) { return day.Adapter == name; };
    for (const std::string& name : interfaces) {
        if (std::any_of(days.begin(), days.end(), [&](const CountedDay& day) { return isOf(day, name); }))
            continue;
        fmt::print(stderr, "The database has no day of the interface {}\n", EscapeControls(name));
        return false;
    }
    std::erase_if(days, [&](const CountedDay& day) {
        return !interfaces.empty() && std::none_of(interfaces.begin(), interfaces.end(),
                                                   [&](const std::string& name) { return isOf(day, name); });
    });
    return true;
}

void PrintAdapter(const ImportedAdapter& adapter) {
    fmt::print("{}: {} days taken", EscapeControls(adapter.Adapter), adapter.Taken);
    const auto left = [](std::size_t days, const char* why) {
        if (days > 0) fmt::print("; {} left: {}", days, why);
    };
    left(adapter.Known, "imported before");
    left(adapter.Recorded, "there are records of that day");
    left(adapter.Running, "the day has not ended");
    left(adapter.Empty, "nothing moved");
    fmt::print("\n");
}

} // namespace

int ImportHistory(Program& program, Clock& clock, DayCounts::Reading reading, const ImportChoice& choice) {
    if (reading.Fault != DayCounts::Fault::None) {
        fmt::print(stderr, "{}: {}\n", EscapeControls(choice.File), TextOf(reading.Fault));
        return EXIT_FAILURE;
    }
    if (!KeepOnly(choice.Interfaces, reading.Days)) return ExitUsage;
    const Date now = clock.Now();
    const std::string note = ImportNote(program.language, now, program.locale);
    DayImport import;
    const auto make = [&](const StatRecords& there) {
        import = ImportDays(reading.Days, there, DayOf(now), note, program.locale);
        return import.Records;
    };
    StatRecords there;
    program.statFile.LoadStatFile(there, false);
    if (!make(there).empty() && !choice.DryRun) {
        const LoadReport::Hindrance hindrance = program.statFile.AddRecords(make);
        if (hindrance != LoadReport::Hindrance::None) {
            fmt::print(stderr, "Nothing was imported into {}: {}\n", program.statFile.StatFilePath().string(),
                       TextOf(hindrance));
            return EXIT_FAILURE;
        }
    }
    for (const ImportedAdapter& adapter : import.Adapters)
        PrintAdapter(adapter);
    if (choice.DryRun) fmt::print("nothing was written\n");
    if (import.Adapters.empty()) fmt::print("The database has no days.\n");
    if (const auto& backup = program.statFile.Report().Backup; !backup.empty())
        fmt::print("the statistics as they were are {}\n", backup.string());
    return EXIT_SUCCESS;
}

} // namespace korvalin
