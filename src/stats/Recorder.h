#pragma once

#include "platform/Files.h"
#include "platform/Journal.h"
#include "traffic/CloseReason.h"

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

    /// Writes what waits. What cannot be written goes on waiting; it and the reason are in the error log.
    void WritePending();

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
    void Append(std::string_view fileName, std::string_view header, std::string PendingRecord::*line,
                bool Waiting::*done, Files::Flush flush);

    Parts parts_;
    std::vector<Waiting> waiting_;
    bool tookOver_ = false; // at some time in this run
};

} // namespace korvalin
