#include "stats/JournalKeeper.h"

#include "base/Text.h"
#include "data/DataFolder.h"
#include "errors/Errors.h"
#include "platform/Clock.h"
#include "stats/Recorder.h"
#include "traffic/LineMonitor.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

namespace korvalin {
namespace {

constexpr double secondsBetweenSaves = 60;
// One that is busy keeps the window waiting for half a second.
constexpr double secondsBetweenAttempts = 5;
// A journal that is only busy can be written by then; records do not wait longer for one that is broken.
constexpr double mostSecondsWithoutJournal = 60;

} // namespace

bool JournalKeeper::Start() {
    begun_ = true;
    records_ = parts_.Recorder.TakeOver();
    if (records_) parts_.DataFolder.BeginToRecord();
    const JournalFound found =
        records_ ? LoadJournal() : parts_.Journal.Look(parts_.DataFolder.JournalFolder());
    parts_.CounterLedger.Begin(found);
    started_ = false;
    if (!records_) return false;
    if (found.IsUnreadable && WaitsForJournal()) {
        records_ = false;
        return true;
    }
    if (!found.IsUnreadable) failingSince_ = -1;
    parts_.Recorder.TakeUp(found.Picture.Pending);
    std::vector<JournalEntry> ended = found.Picture.Entries;
    // A dial-up line may still be up: the first pass tells.
    if (found.SameBoot)
        std::erase_if(ended, [](const JournalEntry& entry) { return entry.Open && entry.Open->IsRas; });
    RecordInterrupted(ended);
    std::vector<JournalEntry> dialUps = parts_.CounterLedger.TakeDialUps();
    if (parts_.LineMonitor.DividesDialUps()) EndForDay(dialUps);
    parts_.CounterLedger.KeepDialUps(std::move(dialUps));
    if (parts_.Recorder.HasPending()) Write(Moment::Running);
    return true;
}

// One that an end has left elsewhere is the newer one; the next Save brings it home.
JournalFound JournalKeeper::LoadJournal() const {
    JournalFound spare = parts_.Journal.Load(parts_.SpareFolder);
    return spare.KnowsMachine ? spare : parts_.Journal.Load(parts_.DataFolder.JournalFolder());
}

// Mostly somebody else is reading it. One that stays unreadable must not keep the lines from being recorded.
bool JournalKeeper::WaitsForJournal() {
    const double now = parts_.Clock.AwakeSeconds();
    if (failingSince_ < 0) {
        failingSince_ = now;
        parts_.Errors.WriteErrorLog("The journal of the counters cannot be read.", "SaveStats");
    }
    nextSave_ = now + secondsBetweenAttempts;
    return now - failingSince_ < mostSecondsWithoutJournal;
}

void JournalKeeper::RecordInterrupted(const std::vector<JournalEntry>& entries) {
    for (const JournalEntry& entry : entries) {
        if (!entry.Open || entry.Open->Recorded) continue;
        OpenConnection open = *entry.Open;
        open.MayRepeat = open.IsRas; // it may have gone on from a run before that one
        parts_.Recorder.Record(std::move(open), CloseReason::Interrupted);
    }
}

// What they moved on an earlier day is that day's.
void JournalKeeper::EndForDay(std::vector<JournalEntry>& dialUps) {
    const Date today = DayOf(parts_.Clock.Now());
    for (JournalEntry& entry : dialUps) {
        OpenConnection& open = *entry.Open;
        if (DayOf(open.End) == today) continue;
        RecordInterrupted({entry});
        open.LogIn = open.End = today;
        open.BytesReceived = open.BytesTransmitted = 0;
        open.Recorded = true;
    }
}

void JournalKeeper::PassEnded() {
    if (!begun_) return; // a program that only looks at the lines
    if (!records_) {
        LookOn();
        return;
    }
    RecordInterrupted(parts_.CounterLedger.TakeDialUps()); // the pass has not found them
    // The user may have moved the data: until the journal follows, a kill would leave it behind.
    const bool moved = started_ && parts_.DataFolder.GetDataPath() != folder_;
    if (moved && !parts_.Recorder.TakeOver()) {
        static_cast<void>(parts_.Journal.Save(folder_, Picture(), Journal::Durability::Medium));
        records_ = false; // another program records there
        return;
    }
    if (moved && parts_.DataFolder.BeginToRecord()) hooks_.OthersRecorded();
    const bool changed = !started_ || moved || parts_.LineState.Changes != savedChanges_;
    started_ = true;
    const bool failed = failingSince_ >= 0;
    if ((changed && !failed) || parts_.Clock.AwakeSeconds() >= nextSave_) {
        Write(Moment::Running);
    } else if (!parts_.Recorder.HasPending() || !changed) {
        Note(); // not past records that nobody has written
    }
}

bool JournalKeeper::LeaveFolder() {
    return !records_ || parts_.Journal.Save(parts_.SpareFolder, Picture(), Journal::Durability::Medium);
}

void JournalKeeper::LookOn() {
    const double now = parts_.Clock.AwakeSeconds();
    if (now >= nextSave_ && parts_.Recorder.TakeOver()) {
        // The journal has counted these lines up to its last entry; from there they begin anew, at once.
        parts_.LineBook.ForgetLines();
        if (!Start() || !records_) return;
        hooks_.OthersRecorded();
        parts_.LineMonitor.Get_Bytes_Transmitted();
    } else if (LooksOn() && now >= nextLook_) {
        nextLook_ = now + secondsBetweenSaves;
        hooks_.OthersRecorded();
    }
}

void JournalKeeper::RecordOpenLines(CloseReason reason) {
    parts_.LineMonitor.TakeLastReading();
    if (!records_) return;
    RecordInterrupted(parts_.CounterLedger.TakeDialUps());
    parts_.CounterLedger.KeepDialUps(RecordedDialUps(parts_.Recorder.SaveStatsLine(reason, 0)));
    parts_.LineBook.ForgetLines();
    Write(Moment::End);
    PrintUnwritten();
}

// They may be up at the next start, or in the next pass when the program does not end: it then knows where
// they began: in their records.
std::vector<JournalEntry> JournalKeeper::RecordedDialUps(const std::vector<OpenConnection>& records) const {
    std::vector<JournalEntry> recorded;
    for (const LineRecord& line : parts_.LineState.LineTable) {
        if (!line.Connected || !line.IsRas || line.Index == 0) continue;
        recorded.push_back(EntryOf(line));
        OpenConnection& open = *recorded.back().Open;
        open.Recorded = true;
        const auto record = std::find_if(records.begin(), records.end(), [&](const OpenConnection& made) {
            return made.IsRas && made.LineName == open.LineName;
        });
        if (record != records.end()) open.LogIn = record->LogIn;
    }
    return recorded;
}

// ---- the journal

JournalEntry JournalKeeper::EntryOf(const LineRecord& line) const {
    const CounterLedger::Account account = parts_.CounterLedger.Of(line.Index);
    return {line.Index,          account.Adapter, account.Received,
            account.Transmitted, account.ReadAt,  ConnectionOf(line)};
}

JournalPicture JournalKeeper::Picture() const {
    std::map<std::uint32_t, JournalEntry> entries;
    for (const auto& [index, account] : parts_.CounterLedger.Accounts())
        entries[index] = {index, account.Adapter, account.Received, account.Transmitted, account.ReadAt, {}};
    for (const JournalEntry& entry : parts_.CounterLedger.DialUps())
        entries[entry.Index] = entry;
    for (const LineRecord& line : parts_.LineState.LineTable) {
        if (line.Connected && line.Index != 0) entries[line.Index] = EntryOf(line);
    }
    JournalPicture picture{{}, parts_.Recorder.Pending(), parts_.CounterLedger.LastEnds()};
    for (auto& [index, entry] : entries)
        picture.Entries.push_back(std::move(entry));
    return picture;
}

bool JournalKeeper::Save(Journal::Durability durability, Moment moment) {
    folder_ = parts_.DataFolder.GetDataPath();
    const JournalPicture picture = Picture();
    if (parts_.Journal.Save(parts_.DataFolder.JournalFolder(), picture, durability)) {
        isElsewhere_ = false;
        return true;
    }
    // One that is only busy takes the next.
    if (moment == Moment::Running && !isElsewhere_ && failingSince_ < 0) return false;
    isElsewhere_ = parts_.Journal.Save(parts_.SpareFolder, picture, durability);
    return isElsewhere_;
}

void JournalKeeper::Write(Moment moment) {
    const double now = parts_.Clock.AwakeSeconds();
    const bool isKept = Save(Journal::Durability::Medium, moment);
    if (isKept) {
        written_ = true;
        failingSince_ = -1;
        savedChanges_ = parts_.LineState.Changes;
        nextSave_ = now + secondsBetweenSaves;
    } else {
        if (failingSince_ < 0) {
            failingSince_ = now;
            parts_.Errors.WriteErrorLog("The journal of the counters cannot be written.", "SaveStats");
        }
        nextSave_ = now + secondsBetweenAttempts;
        // A journal that this run has written holds the lines until the next start.
        const bool isNeeded = moment == Moment::End && !written_;
        if (!isNeeded && now - failingSince_ < mostSecondsWithoutJournal) return;
    }
    if (!parts_.Recorder.HasPending()) return;
    parts_.Recorder.WritePending(moment);
    // Once more, but not onto the medium: after a power loss the files themselves tell what they have.
    static_cast<void>(Save(Journal::Durability::Process, moment));
    parts_.Recorder.TellUnwritten(moment, isKept); // last: its box lets everything else go on
}

void JournalKeeper::PrintUnwritten() const {
    for (const PendingRecord& pending : parts_.Recorder.Pending()) {
        if (!pending.StatLine.empty())
            fmt::print(stderr, "Not written to {}: {}\n", (folder_ / StatFileName).string(),
                       EscapeControls(Trim(OneLine(pending.StatLine))));
    }
}

void JournalKeeper::Note() const {
    std::vector<JournalNote> notes;
    for (const LineRecord& line : parts_.LineState.LineTable) {
        if (!line.Connected || line.Index == 0) continue;
        const CounterLedger::Account account = parts_.CounterLedger.Of(line.Index);
        const LinePart part = OpenPartOf(line);
        notes.push_back({line.Index, account.Received, account.Transmitted, account.ReadAt,
                         part.BytesReceived, part.BytesTransmitted, part.End});
    }
    parts_.Journal.Note(notes);
}

} // namespace korvalin
