#pragma once

#include "lang/UnitFormat.h"
#include "stats/StatLine.h"
#include "traffic/TrafficFixture.h"

#include <fmt/format.h>

namespace korvalin {

/// The statistics over fake ports, with their files in the fixture's folder. The clock begins at noon of
/// 15 March 2024.
class StatsFixture : public TrafficFixture {
  protected:
    StatsFixture() { KeepDataInFolder(); }

    static Date At(std::string_view text) { return ParseDate(text, Locale()).value(); }

    /// A line of the file, of the fixture's day when `logIn` is a time only.
    static std::string Line(const std::string& name, const std::string& logIn, const std::string& duration,
                            int received = 1, const std::string& info = "") {
        const std::string day = logIn.size() > 8 ? "" : "2024-03-15 ";
        return "\"" + name + "\",#" + day + logIn + "#,#" + duration + "#,0," + std::to_string(received) +
               ",\"" + info + "\",\"\"\r\n";
    }
    /// Adds a record as the file would hold it.
    StatRecord& Add(const std::string& name, Date logIn, Date duration, double received = 0) {
        StatRecord record;
        record.LineName = records.Texts.Intern(name);
        record.LogIn = logIn;
        record.Duration = duration;
        record.BytesReceived = received;
        records.List.push_back(record);
        return records.List.back();
    }
    /// Writes the file and loads it.
    std::int32_t Load(const std::string& content, bool repair = false) {
        folder.Write("Korvalin_Stats.db", content);
        return statFile.LoadStatFile(records, repair);
    }
    /// The records as the file would hold them.
    std::string Stored() const {
        std::string text;
        for (const StatRecord& record : records.List)
            WriteStatRecord(text, FieldsOf(record));
        return text;
    }

    UnitFormat units{errors, locale, clock};
    Aliases aliases{settings, errors, clock, units};
    MonthSums monthSums{aliases, lines, errors, clock};
    PeriodSums periodSums{aliases, errors, locale};
    OpenConnections openConnections{
        {.LineState = lines, .DataFolder = dataFolder, .RecordingLock = recordingLock, .Journal = journal}};
    StatFile::Parts FileOn(Files& someFiles) {
        return {.DataFolder = dataFolder,
                .Files = someFiles,
                .Events = events,
                .Clock = clock,
                .Errors = errors,
                .OpenConnections = openConnections,
                .Aliases = aliases,
                .Locale = locale};
    }
    StatFile statFile{FileOn(files)};
    StatRecords records;
};

} // namespace korvalin
