#pragma once

#include "platform/Files.h"
#include "stats/StatRecord.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>

namespace korvalin {

class Aliases;
class Clock;
class Errors;
class Events;
struct LineState;
struct Locale;

/// What a load met in the file.
struct LoadReport {
    std::size_t Dropped = 0; ///< lines that are no records
    std::size_t Merged = 0;  ///< records that described a connection already there
    /// Whether the file is to be rewritten: it is damaged or has many duplicates.
    bool NeedsRepair() const;

    bool Converted = false;       ///< the file was made from that of an older release
    std::filesystem::path Backup; ///< where the old file went when it was rewritten; empty: it was not
};

/// The file with one line per ended connection.
class StatFile {
  public:
    using DataFolderOf = std::function<std::filesystem::path()>;

    StatFile(DataFolderOf dataFolder, Files& files, Events& events, Clock& clock, Errors& errors,
             const LineState& lines, Aliases& aliases, const Locale& locale);

    std::filesystem::path StatFilePath() const;

    /// Replaces `records` by those of the file, sorted by line and log-in, duplicates merged, aliases set.
    /// With `repair` a damaged file, or one with many duplicates, is rewritten and the old one kept as a
    /// backup; without, the connections that are open now are added as "Running". Windows stay alive
    /// meanwhile. Returns the number of records; what went wrong has been reported.
    std::int32_t LoadStatFile(StatRecords& records, bool repair);

    /// About the last LoadStatFile.
    const LoadReport& Report() const { return report_; }

  private:
    void Convert(const std::filesystem::path& oldFile);
    void Read(StatRecords& records);
    void TakeLine(std::string_view line, StatRecords& records);
    void AddRunning(StatRecords& records);
    void Tidy(StatRecords& records);
    void Repair(const StatRecords& records);

    DataFolderOf dataFolder_;
    Files& files_;
    Events& events_;
    Clock& clock_;
    Errors& errors_;
    const LineState& lines_;
    Aliases& aliases_;
    const Locale& locale_;
    LoadReport report_;
    // Of the load that is going on.
    std::uintmax_t bytesRead_ = 0;
    std::size_t linesRead_ = 0;
    std::string decoded_; // the last line that was not in UTF-8
};

} // namespace korvalin
