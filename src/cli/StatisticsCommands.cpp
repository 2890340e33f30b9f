#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/KnownAliases.h"
#include "program/Program.h"

#include <fmt/format.h>

#include <cstdlib>

namespace korvalin {
namespace {

bool Matches(const StatRecord& record, const RecordFilter& filter) {
    const Date day = DayOf(record.End());
    return (filter.Alias.empty() || EqualsNoCase(record.Alias, filter.Alias)) &&
           (!filter.From || day >= *filter.From) && (!filter.Till || day <= *filter.Till);
}

} // namespace

int PrintRecords(Program& program, const RecordFilter& filter, OutputFormat format) {
    StatRecords records;
    program.statFile.LoadStatFile(records, false);
    if (!IsKnownAlias(program, filter.Alias)) return ExitUsage;
    Output output(format, {{"file_index", -9},
                           {"line_name", 16},
                           {"alias", 16},
                           {"log_in", 19},
                           {"log_out", 19},
                           {"duration_seconds", -15},
                           {"bytes_received", -16},
                           {"bytes_transmitted", -16},
                           {"info", 40},
                           {"user", 0}});
    for (const StatRecord& record : records.List) {
        if (!Matches(record, filter)) continue;
        output.Row({NumberCell(record.FileIndex), TextCell(record.LineName), TextCell(record.Alias),
                    DateTimeCell(record.LogIn), DateTimeCell(record.LogOut), SecondsCell(record.Duration),
                    NumberCell(record.BytesReceived), NumberCell(record.BytesTransmitted),
                    TextCell(record.Info), TextCell(record.User)});
    }
    return EXIT_SUCCESS;
}

int PrintSums(Program& program, SumPeriod period, const std::string& alias, OutputFormat format) {
    program.LoadRecords(); // the user's volume unit, by which volumes are rounded
    StatRecords records;
    StatRecords sums;
    program.statFile.LoadStatFile(records, false);
    if (!IsKnownAlias(program, alias)) return ExitUsage;
    program.periodSums.CalcStatSums(records, period, sums);
    Output output(format, {{"alias", 16},
                           {"period_begin", 11},
                           {"period_end", 10},
                           {"label", 25},
                           {"connections", -11},
                           {"duration_seconds", -15},
                           {"duration_rounded_seconds", -22},
                           {"bytes_received", -16},
                           {"bytes_transmitted", -16},
                           {"volume_rounded", -16}});
    for (const StatRecord& sum : sums.List) {
        if (!alias.empty() && !EqualsNoCase(sum.Alias, alias)) continue;
        output.Row({TextCell(sum.Alias), DateCell(sum.StatPeriodBegin), DateCell(sum.StatPeriodEnd),
                    TextCell(sum.PeriodLabel), NumberCell(sum.ConnCount), SecondsCell(sum.Duration),
                    SecondsCell(sum.DurationRounded), NumberCell(sum.BytesReceived),
                    NumberCell(sum.BytesTransmitted), NumberCell(sum.VolumeRounded)});
    }
    return EXIT_SUCCESS;
}

const char* TextOf(LoadReport::Hindrance hindrance) {
    using Hindrance = LoadReport::Hindrance;
    switch (hindrance) {
    case Hindrance::Held: return "another program holds the file";
    case Hindrance::NotOpened: return "the file may not be written";
    case Hindrance::Unreadable: return "the file could not be read to its end";
    case Hindrance::NoRecords:
        return "the file has not a single record, so it is probably none of statistics";
    case Hindrance::Changed: return "another program has written to the file meanwhile";
    case Hindrance::DiskFull: return "the disk has no room for a second copy";
    case Hindrance::ReadOnly: return "the disk is write-protected";
    case Hindrance::NotWritable: return "its folder cannot be written";
    case Hindrance::None: break;
    }
    return "";
}

int RepairStatistics(Program& program) {
    StatRecords records;
    const int count = program.statFile.LoadStatFile(records, true);
    const LoadReport& report = program.statFile.Report();
    fmt::print("{}: {} records\n", program.statFile.StatFilePath().string(), count);
    if (report.Converted)
        fmt::print("converted from the file of an older release, which stays where it is\n");
    fmt::print("merged: {}\ndropped: {}\n", report.Merged, report.Dropped);
    if (!report.Backup.empty()) {
        fmt::print("rewritten; the old file is {}\n", report.Backup.string());
    } else if (report.NeedsRepair()) {
        fmt::print("not rewritten: {}\n", TextOf(report.NotRewritten));
        return report.Error != 0 ? EXIT_FAILURE : EXIT_SUCCESS;
    }
    return EXIT_SUCCESS;
}

} // namespace korvalin
