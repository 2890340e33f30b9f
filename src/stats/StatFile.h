#pragma once

#include "platform/Files.h"
#include "platform/Journal.h"
#include "stats/StatLine.h"
#include "stats/StatRecord.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

class Aliases;
class Clock;
class DataFolder;
class Errors;
class Events;
class OpenConnections;
struct Locale;

/// What a load met in the file.
struct LoadReport {
    std::size_t Dropped = 0; ///< lines that are no records
    std::size_t Merged = 0;  ///< records that described a connection already there
    /// Whether the file is to be rewritten: it is damaged or has many duplicates.
    bool NeedsRepair() const;

    /// What kept a file that needs it from being rewritten.
    enum class Hindrance {
        None,
        Held,
        NotOpened,
        Unreadable,
        NoRecords,
        Changed,
        DiskFull,
        ReadOnly,
        NotWritable
    };
    Hindrance NotRewritten = Hindrance::None;
    int Error = 0; ///< the system's number, where writing has failed

    bool Converted = false;       ///< the file was made from that of an older release
    std::filesystem::path Backup; ///< where the old file went when it was rewritten; empty: it was not
};

/// Brings a record of an open connection, if it is one, up to this moment; false when nothing has changed.
bool FollowOpen(StatRecord& record, const std::vector<OpenConnection>& open);

/// The file with one line per ended connection.
class StatFile {
  public:
    /// Told now and then which fraction of the file was read; false cancels the load.
    using Progress = std::function<bool(double fraction)>;
    struct Parts {
        korvalin::DataFolder& DataFolder;
        korvalin::Files& Files;
        korvalin::Events& Events;
        korvalin::Clock& Clock;
        korvalin::Errors& Errors;
        const korvalin::OpenConnections& OpenConnections;
        korvalin::Aliases& Aliases;
        const korvalin::Locale& Locale;
    };
    explicit StatFile(const Parts& parts) : parts_(parts) {}

    /// The file in the data folder that is in force.
    std::filesystem::path StatFilePath() const;

    /// Replaces `records` by those of the file, sorted by line and log-in, duplicates merged, aliases set.
    /// With `repair` a damaged file, or one with many duplicates, is rewritten and the old one kept as a
    /// backup; without, the connections that are open now are added as "Running". Windows stay alive
    /// meanwhile. Returns the number of records; what went wrong has been reported. A load that is cancelled
    /// has none.
    std::int32_t LoadStatFile(StatRecords& records, bool repair, const Progress& progress = {});

    enum class Deletion {
        Done,
        Held,    ///< another program holds the file
        Changed, ///< the file is not the one that the records come from
        Failed,  ///< the new file could not be written
        Cancelled
    };
    /// Deletes records (by their index in the list) from the file, which is kept as a backup, and from the
    /// list. What was appended to the file since it was loaded stays, as do open connections in the list.
    /// Unless it is Done, file and list are as they were. Windows stay alive meanwhile.
    [[nodiscard]] Deletion DeleteRecords(StatRecords& records, const std::vector<std::uint32_t>& deleted,
                                         const Progress& progress = {});

    /// Makes records of those that are there, the open connections among them.
    using MakeRecords = std::function<std::vector<StatFields>(const StatRecords& there)>;
    /// Adds records to the file, which is kept as a backup (Report().Backup) unless it was empty. No other
    /// program can write between the look at what is there and the end. None: they are in the file, or none
    /// were made; otherwise the file is as it was.
    [[nodiscard]] LoadReport::Hindrance AddRecords(const MakeRecords& make);

    /// What is open at this moment.
    std::vector<OpenConnection> Open() const;

    /// Changes when a load would find other connections: the file's size and time, and what is open.
    std::string Fingerprint(const std::vector<OpenConnection>& open) const;
    std::string Fingerprint() const { return Fingerprint(Open()); }

    /// About the last LoadStatFile.
    const LoadReport& Report() const { return report_; }

  private:
    std::unique_ptr<FileLock> HoldOrMake();
    bool Extend(std::uintmax_t bytes, std::string_view lines);
    LoadReport::Hindrance WhyNotHeld();
    void Convert(const std::filesystem::path& oldFile);
    void Read(StatRecords& records, const Progress& progress);
    void Pause(const Progress& progress, std::uintmax_t seen, std::uintmax_t size);
    void TakeLine(std::string_view line, StatRecords& records);
    void AddRunning(StatRecords& records, const std::vector<OpenConnection>& open, bool dialUp);
    void Tidy(StatRecords& records, const std::vector<OpenConnection>& open);
    void Repair(const StatRecords& records);
    bool Rewrite(const StatRecords& records, const std::vector<bool>& leftOut, std::string_view appended,
                 FileMark& written, const Progress& progress = {});

    Parts parts_;
    LoadReport report_;
    // Of the load that is going on.
    std::size_t linesRead_ = 0;
    std::string decoded_; // the last line that was not in UTF-8
};

} // namespace korvalin
