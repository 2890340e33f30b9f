#include "traffic/LanReader.h"

#include "base/Text.h"
#include "errors/Errors.h"

#include <algorithm>
#include <utility>

namespace korvalin {
namespace {

// An adapter without a carrier, or switched off, stays in this system's table; its connection has ended.
bool IsUp(const InterfaceRow& row) {
    return row.OperStatus >= OperationalStatus::Connecting && row.Type != IfTypeSoftwareLoopback;
}

} // namespace

template <typename F>
void LanReader::Step(F&& step) {
    try {
        std::forward<F>(step)();
    } catch (const std::exception&) {
        parts_.Errors.DisplayError(
            fmt::format("Get_Bytes_Transmitted_LAN - interne Fehlernummer: {}", progress_), 0, "");
    }
}

void LanReader::Get_Bytes_Transmitted_LAN(TableFromOne<LineRecord>& lines) {
    std::size_t accepted = 0;
    bool read = false;
    ended_ = false;
    Step([&] { read = std::exchange(looked_, false) || ReadTable(); });
    Step([&] { EndLines(); });
    if (read) ReadRows(lines, accepted);
    progress_ = 800;
    Step([&] {
        if (ended_) parts_.LineBook.RecordClosedConnections(lines, accepted);
    });
}

void LanReader::Observe(Unfollowed bytes) {
    if (!std::exchange(looked_, false) && !ReadTable()) return;
    atStart_ = false;
    for (const InterfaceRow& row : removed_)
        parts_.CounterLedger.Close(row);
    if (!removed_.empty()) parts_.CounterLedger.Meet(rows_, reading_.Time);
    for (const InterfaceRow& row : rows_) {
        if ((bytes == Unfollowed::Nobodys || IsLeftOut(row)) && !CarriesDialUp(row.Index))
            parts_.CounterLedger.Count(row, reading_.Time);
    }
}

// The dial-up reader accounts for its own.
bool LanReader::CarriesDialUp(std::uint32_t index) const {
    return std::any_of(
        parts_.LineState.LineTable.begin(), parts_.LineState.LineTable.end(),
        [&](const LineRecord& line) { return line.Connected && line.IsRas && line.Index == index; });
}

// A table that cannot be read is a pass without adapters, not an error to report.
bool LanReader::ReadTable() {
    progress_ = 1;
    removed_.clear();
    std::optional<std::vector<InterfaceRow>> table = parts_.NetworkTables.GetIfTable();
    rows_ = table ? std::move(*table) : std::vector<InterfaceRow>();
    removed_ = parts_.NetworkTables.TakeRemoved();
    // One time for all rows, taken right after the dump: the rates divide by the time between two dumps.
    reading_ = {parts_.Clock.Now(), parts_.Clock.AwakeSeconds()};
    if (!table) return false;
    // The account of one that was removed is closed; another adapter may have its index by now.
    if (removed_.empty()) parts_.CounterLedger.KeepOnly(rows_);
    parts_.CounterLedger.Meet(rows_, reading_.Time);
    hardwareIsUp_ = std::any_of(rows_.begin(), rows_.end(), [](const InterfaceRow& row) {
        return IsUp(row) && row.HasHardware && !row.IsPort;
    });
    return true;
}

// ---- which adapters

bool LanReader::IsLeftOut(const InterfaceRow& row) const {
    if (row.Type == IfTypeSoftwareLoopback || row.IsPort) return true;
    return !row.HasHardware && hardwareIsUp_ && !parts_.TrafficOptions.LanVirtual;
}

// The threshold is one for the adapter, not for the connection.
bool LanReader::PassesThreshold(const InterfaceRow& row) const {
    return static_cast<double>(row.InOctets) > static_cast<double>(parts_.TrafficOptions.LanActive);
}

bool LanReader::IsActive(const InterfaceRow& row) const {
    return IsUp(row) && !IsLeftOut(row) && PassesThreshold(row);
}

const InterfaceRow* LanReader::FindRow(std::uint32_t index) const {
    const auto found =
        std::lower_bound(rows_.begin(), rows_.end(), index,
                         [](const InterfaceRow& row, std::uint32_t i) { return row.Index < i; });
    return found != rows_.end() && found->Index == index ? &*found : nullptr;
}

const InterfaceRow* LanReader::LatestOf(std::uint32_t index) const {
    const auto removed = std::find_if(removed_.begin(), removed_.end(),
                                      [&](const InterfaceRow& row) { return row.Index == index; });
    return removed != removed_.end() ? &*removed : FindRow(index);
}

// The connection over an adapter; mostly the one in `slot`, where its adapter stood in the pass before.
LineRecord* LanReader::FindOpen(std::uint32_t index, std::size_t slot) {
    TableFromOne<LineRecord>& previous = parts_.LineState.PreviousLineTable;
    const auto isIt = [&](const LineRecord& line) {
        return line.Connected && !line.IsRas && line.Index == index;
    };
    if (slot >= 1 && slot <= previous.Size() && isIt(previous(slot))) return &previous(slot);
    const auto found = std::find_if(previous.begin(), previous.end(), isIt);
    return found != previous.end() ? &*found : nullptr;
}

// ---- lines that end

// Connections that do not go on get the adapter's last counters before they are recorded.
void LanReader::EndLines() {
    for (const InterfaceRow& row : removed_)
        EndRemoved(row);
    if (!removed_.empty()) parts_.CounterLedger.Meet(rows_, reading_.Time); // those that are back already
    for (std::size_t i = 1; i <= parts_.LineState.PreviousLineTable.Size(); ++i) {
        LineRecord& line = parts_.LineState.PreviousLineTable(i);
        if (!line.Connected || line.IsRas) continue;
        const InterfaceRow* row = line.Index != 0 ? FindRow(line.Index) : nullptr;
        if (GoesOn(i, row)) continue;
        if (row != nullptr) ReadCounters(*row, line);
        line.Index = 0;
        ended_ = true;
    }
}

// Whatever has its index now is another adapter. One that came and went between two looks, or moved bytes
// without being followed, was a connection too.
void LanReader::EndRemoved(const InterfaceRow& row) {
    if (LineRecord* line = FindOpen(row.Index, 0)) {
        ReadCounters(row, *line);
        line->Index = 0; // the loop over all lines ends it
    } else if (!IsLeftOut(row) && PassesThreshold(row)) {
        LineRecord unseen = BeginLine(row, parts_.LineNames.NameOfRemoved(row));
        ReadCounters(row, unseen);
        unseen.Index = 0;
        if (unseen.BytesReceived + unseen.BytesTransmitted > 0)
            parts_.LineState.PreviousLineTable.Append(unseen);
    }
    parts_.CounterLedger.Close(row);
}

// A cable's adapter under a new name is the same connection, recorded up to here under the old one.
bool LanReader::GoesOn(std::size_t i, const InterfaceRow* row) {
    if (row == nullptr || !IsActive(*row)) return false;
    const LineRecord& line = parts_.LineState.PreviousLineTable(i);
    const std::string& name = parts_.LineNames.NameOf(*row, rows_);
    if (line.EntryName == name) return true;
    if (line.Adapter == row->Description) return false; // another network
    parts_.LineBook.Divide(i, CloseReason::Renamed, OpenPartOf(line).End);
    return true;
}

// ---- lines that are up

void LanReader::ReadRows(TableFromOne<LineRecord>& lines, std::size_t& accepted) {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        progress_ = static_cast<int>(i) + 501;
        Step([&] {
            if (IsLeftOut(rows_[i])) parts_.CounterLedger.Count(rows_[i], reading_.Time);
            if (!IsUp(rows_[i])) parts_.LineNames.NoteDown(rows_[i].Index);
            if (!IsUp(rows_[i]) || IsLeftOut(rows_[i])) return;
            const std::string& name = parts_.LineNames.NameOf(rows_[i], rows_);
            if (!PassesThreshold(rows_[i])) return;
            progress_ = static_cast<int>(i * 10 + 6000 + ++accepted);
            if (accepted > parts_.LineState.LineCount) {
                parts_.LineBook.GrowTo(lines, accepted);
                // It may be a dial-up line that nobody has announced yet.
                parts_.LineState.MonitoredLineType = LineType::Undecided;
            }
            progress_ = static_cast<int>(i * 10 + 6100 + accepted);
            const LineRecord* open = FindOpen(rows_[i].Index, accepted);
            lines(accepted) = open != nullptr ? *open : BeginLine(rows_[i], name);
            progress_ = static_cast<int>(i * 10 + 6500 + accepted);
            NameLine(rows_[i], name, lines(accepted));
            ReadCounters(rows_[i], lines(accepted));
            parts_.LineState.AnyLineConnected = true;
        });
    }
    atStart_ = false;
}

LineRecord LanReader::BeginLine(const InterfaceRow& row, const std::string& name) {
    LineRecord line;
    line.CounterSource = ++parts_.LineState.LastCounterSource;
    line.Index = row.Index;
    line.User = parts_.LineState.User;
    NameLine(row, name, line);
    // What was up when the program started was so at least as long; what comes later began this second.
    line.UpSince = atStart_ ? parts_.LineState.ProgramStart : reading_.Time - OneSecond;
    line.LogIn = std::max(atStart_ ? line.UpSince - 2 * OneSecond : line.UpSince, DayOf(reading_.Time));
    // Not within the line's last record, unless the clock was set back behind that, or the day has no second
    // left.
    const Date last = parts_.CounterLedger.LastEnd(line.EntryName);
    if (last >= FloorToSecond(line.LogIn) && last < reading_.Time + OneSecond &&
        last < EndOfDay(reading_.Time))
        line.LogIn = last + OneSecond;
    const CounterLedger::Account account = parts_.CounterLedger.Of(row.Index);
    line.StartReceived = line.LastRawReceived = static_cast<double>(account.Received);
    line.StartTransmitted = line.LastRawTransmitted = static_cast<double>(account.Transmitted);
    ++parts_.LineState.Changes;
    return line;
}

void LanReader::NameLine(const InterfaceRow& row, const std::string& name, LineRecord& line) {
    line.Adapter = row.Description;
    line.DeviceName = Trim(row.Description);
    line.EntryName = name;
    line.LineName = parts_.LineBook.GetAlias(line.EntryName);
    line.IpAddress = row.Address;
}

void LanReader::ReadCounters(const InterfaceRow& row, LineRecord& line) {
    const bool isFirst = line.SampleTime == 0;
    line.OperStatus = static_cast<std::uint32_t>(row.OperStatus);
    line.Counts64Bits = row.Counts64Bits;
    line.BytesReceived = static_cast<double>(row.InOctets);
    line.BytesTransmitted = static_cast<double>(row.OutOctets);
    parts_.LineBook.ContinueCounters(line);
    if (isFirst) {
        line.UnseenReceived = line.BytesReceived;
        line.UnseenTransmitted = line.BytesTransmitted;
    }
    line.SampleTimer = SecondsOfDay(reading_.Time);
    line.SampleTime = reading_.Time;
    line.SampleAwake = reading_.Awake;
    line.Duration = reading_.Time - line.UpSince;
    line.Connected = true;
    parts_.CounterLedger.Count(row, reading_.Time);
}

} // namespace korvalin
