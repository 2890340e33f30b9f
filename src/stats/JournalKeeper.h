#pragma once

#include "platform/Journal.h"
#include "stats/Recorder.h"
#include "traffic/CloseReason.h"

#include <filesystem>
#include <functional>
#include <vector>

namespace korvalin {

class Clock;
class CounterLedger;
class DataFolder;
class Errors;
class LineBook;
class LineMonitor;
struct LineRecord;
struct LineState;

/// Keeps the journal of the program that records: what it is up to date about survives a kill, and all but
/// the last minute a power loss. A record goes into the journal together with the accounts that it settles,
/// then into the statistics, so that each byte is in one of them and in no two.
class JournalKeeper {
  public:
    struct Parts {
        korvalin::Journal& Journal;
        korvalin::Recorder& Recorder;
        korvalin::CounterLedger& CounterLedger;
        const korvalin::LineState& LineState;
        korvalin::LineBook& LineBook;
        korvalin::LineMonitor& LineMonitor;
        korvalin::Clock& Clock;
        korvalin::Errors& Errors;
        korvalin::DataFolder& DataFolder;
        /// Where the journal goes when the data folder does not take it.
        std::filesystem::path SpareFolder;
    };
    struct Hooks {
        /// Once a minute while another program records, and when this one has taken its place: what that
        /// program has recorded is in the file. Also when records of another folder have come home.
        std::function<void()> OthersRecorded = [] {};
    };
    explicit JournalKeeper(const Parts& parts) : parts_(parts) {}

    void Plug(Hooks hooks) { hooks_ = std::move(hooks); }

    /// Takes up what the last run has left, before the first pass: records what it could not. False while
    /// another program records; its accounts are then only looked at.
    bool Start();

    /// Whether another program records, whose journal and records are to be looked at.
    bool LooksOn() const { return begun_ && !records_ && failingSince_ < 0; }

    /// After every pass: writes what has changed, once a minute what has been counted.
    void PassEnded();

    /// The data folder is about to change: until the next pass the journal is where every start finds it.
    /// False when it cannot be written there.
    [[nodiscard]] bool LeaveFolder();

    /// Reads the lines once more and records all that are open. They are no lines any more then. Records that
    /// cannot be written are printed on the standard error, and wait in the journal for the next start.
    void RecordOpenLines(CloseReason reason);

  private:
    bool WaitsForJournal();
    void LookOn();
    JournalFound LoadJournal() const;
    JournalPicture Picture() const;
    using Moment = Recorder::Moment;
    bool Save(Journal::Durability durability, Moment moment);
    void Write(Moment moment);
    void PrintUnwritten() const;
    void Note() const;
    void RecordInterrupted(const std::vector<JournalEntry>& entries);
    void EndForDay(std::vector<JournalEntry>& dialUps);
    std::vector<JournalEntry> RecordedDialUps(const std::vector<OpenConnection>& records) const;
    JournalEntry EntryOf(const LineRecord& line) const;

    Parts parts_;
    Hooks hooks_;
    bool begun_ = false;
    bool records_ = false;
    bool started_ = false;         // at least one pass has been made
    std::filesystem::path folder_; // of the last Save
    bool written_ = false;         // the journal, in this run
    bool isElsewhere_ = false;     // in the spare folder
    std::uint32_t savedChanges_ = 0;
    double nextSave_ = 0;      // seconds awake
    double nextLook_ = 0;      // seconds awake
    double failingSince_ = -1; // seconds awake; below 0: the journal can be written
};

} // namespace korvalin
