#pragma once

#include "platform/Files.h"
#include "platform/Journal.h"
#include "traffic/CloseReason.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

class Clock;
class CounterLedger;
class DataFolder;
class Errors;
class Language;
class MonthSums;
class RecordingLock;
struct LineState;
struct Locale;
struct RecordTime;

/// Makes records of connections that ended, and writes them to the statistics file and to its export. A
/// record waits until both have it: the journal keeps it over a fault in between.
class Recorder {
  public:
    struct Parts {
        const korvalin::LineState& LineState;
        korvalin::CounterLedger& CounterLedger;
        korvalin::Files& Files;
        korvalin::Errors& Errors;
        korvalin::Language& Language;
        korvalin::Clock& Clock;
        korvalin::RecordingLock& RecordingLock;
        const korvalin::Locale& Locale;
        korvalin::DataFolder& DataFolder;
        korvalin::MonthSums& MonthSums; ///< told of each record when it is made
    };
    explicit Recorder(const Parts& parts) : parts_(parts) {}

    /// Becomes the one program that records into the data folder; false while another one is.
    bool TakeOver();

    /// Makes records of the open part of line `index`, or of all lines (0), as the previous pass has left
    /// them, and gives them as they are written. Lines that moved next to nothing are left out. Does nothing
    /// before the program has taken over.
    std::vector<OpenConnection> SaveStatsLine(CloseReason reason, std::size_t index);

    /// Makes a record of a connection, at a place where a load takes it for no other record, and gives it as
    /// it is written. An adapter's gets whole seconds of one day.
    OpenConnection Record(OpenConnection connection, CloseReason reason);

    /// The records that are not in both files yet.
    std::vector<PendingRecord> Pending() const;
    bool HasPending() const { return !waiting_.empty(); }
    /// How many of the records made in this run a load of the statistics file finds: the last ones may wait.
    std::size_t RecordsInFile() const;

    /// Takes over what an earlier run has left, unless the files have it.
    void TakeUp(const std::vector<PendingRecord>& pending);

    enum class Moment { Running, End };
    /// Writes what waits. What cannot be written goes on waiting; it is in the error log. At the program's
    /// end another program that holds a file is hardly waited for.
    void WritePending(Moment moment);

    /// Tells the user why the last WritePending could not write: once until it can, and at the program's end.
    /// A file that is only held is then told at the end alone. `areKept`: the journal holds the records
    /// meanwhile.
    void TellUnwritten(Moment moment, bool areKept);

  private:
    struct Waiting {
        PendingRecord Record;
        bool InStatistics = false;
        bool InExport = false;
        bool Told = false; ///< the log has it
    };
    void Settle(OpenConnection& connection) const;
    std::vector<RecordTime> TimesOf(std::string_view lineName) const;
    std::string InfoText(CloseReason reason) const;
    std::string ExportLine(const OpenConnection& record, std::string_view info) const;
    void TellOf(std::string_view statLine) const;
    bool IsAtEndOf(std::string_view fileName, std::string_view line) const;
    struct Place {
        std::string_view FileName, Header;
        std::string PendingRecord::*Line;
        bool Waiting::*Done;
        Files::Flush Flush;
    };
    int Append(const Place& place, Files::Wait wait);
    void LogUnwritten(const std::filesystem::path& path, const std::string& lines, int error) const;

    Parts parts_;
    std::vector<Waiting> waiting_;
    int error_ = 0; // of the last WritePending, and the file's name
    std::string_view failedFile_;
    int told_ = 0;          // the error that the user knows of
    bool tookOver_ = false; // at some time in this run
};

} // namespace korvalin
