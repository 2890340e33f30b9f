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

LanReader::LanReader(NetworkTables& network, LineState& state, LineBook& book, CounterLedger& ledger,
                     LineNames& names, const TrafficOptions& options, Errors& errors, Clock& clock)
    : network_(network),
      state_(state),
      book_(book),
      ledger_(ledger),
      names_(names),
      options_(options),
      errors_(errors),
      clock_(clock) {}

template <typename F>
void LanReader::Step(F&& step) {
    try {
        std::forward<F>(step)();
    } catch (const std::exception&) {
        errors_.DisplayError(fmt::format("Get_Bytes_Transmitted_LAN - interne Fehlernummer: {}", progress_),
                             0, "");
    }
}

void LanReader::Get_Bytes_Transmitted_LAN(TableFromOne<LineRecord>& lines) {
    std::size_t accepted = 0;
    bool read = false;
    ended_ = false;
    Step([&] { read = ReadTable(); });
    Step([&] { EndLines(); });
    if (read) ReadRows(lines, accepted);
    progress_ = 800;
    Step([&] {
        if (ended_) book_.RecordClosedConnections(lines, accepted);
    });
}

void LanReader::Observe(Unfollowed bytes) {
    if (!std::exchange(looked_, false) && !ReadTable()) return;
    atStart_ = false;
    for (const InterfaceRow& row : removed_)
        ledger_.Close(row);
    if (!removed_.empty()) ledger_.Meet(rows_, reading_.Time);
    for (const InterfaceRow& row : rows_) {
        if ((bytes == Unfollowed::Nobodys || IsLeftOut(row)) && !CarriesDialUp(row.Index))
            ledger_.Count(row, reading_.Time);
    }
}

// The dial-up reader accounts for its own.
bool LanReader::CarriesDialUp(std::uint32_t index) const {
    return std::any_of(state_.LineTable.begin(), state_.LineTable.end(), [&](const LineRecord& line) {
        return line.Connected && line.IsRas && line.Index == index;
    });
}

// A table that cannot be read is a pass without adapters, not an error to report.
bool LanReader::ReadTable() {
    progress_ = 1;
    removed_.clear();
    std::optional<std::vector<InterfaceRow>> table = network_.GetIfTable();
    rows_ = table ? std::move(*table) : std::vector<InterfaceRow>();
    removed_ = network_.TakeRemoved();
    // One time for all rows, taken right after the dump: the rates divide by the time between two dumps.
    reading_ = {clock_.Now(), clock_.AwakeSeconds()};
    if (!table) return false;
    // The account of one that was removed is closed; another adapter may have its index by now.
    if (removed_.empty()) ledger_.KeepOnly(rows_);
    ledger_.Meet(rows_, reading_.Time);
    hardwareIsUp_ = std::any_of(rows_.begin(), rows_.end(), [](const InterfaceRow& row) {
        return IsUp(row) && row.HasHardware && !row.IsPort;
    });
    return true;
}

// ---- which adapters

bool LanReader::IsLeftOut(const InterfaceRow& row) const {
    if (row.Type == IfTypeSoftwareLoopback || row.IsPort) return true;
    return !row.HasHardware && hardwareIsUp_ && !options_.LanVirtual;
}

// The threshold is one for the adapter, not for the connection.
bool LanReader::PassesThreshold(const InterfaceRow& row) const {
    return static_cast<double>(row.InOctets) > static_cast<double>(options_.LanActive);
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
    TableFromOne<LineRecord>& previous = state_.PreviousLineTable;
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
    if (!removed_.empty()) ledger_.Meet(rows_, reading_.Time); // those that are back already
    for (std::size_t i = 1; i <= state_.PreviousLineTable.Size(); ++i) {
        LineRecord& line = state_.PreviousLineTable(i);
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
        LineRecord unseen = BeginLine(row, names_.NameOfRemoved(row));
        ReadCounters(row, unseen);
        unseen.Index = 0;
        if (unseen.BytesReceived + unseen.BytesTransmitted > 0) state_.PreviousLineTable.Append(unseen);
    }
    ledger_.Close(row);
}

// A cable's adapter under a new name is the same connection, recorded up to here under the old one.
bool LanReader::GoesOn(std::size_t i, const InterfaceRow* row) {
    if (row == nullptr || !IsActive(*row)) return false;
    const LineRecord& line = state_.PreviousLineTable(i);
    const std::string& name = names_.NameOf(*row, rows_);
    if (line.EntryName == name) return true;
    if (line.Adapter == row->Description) return false; // another network
    book_.Divide(i, CloseReason::Renamed, OpenPartOf(line).End);
    return true;
}

// ---- lines that are up

void LanReader::ReadRows(TableFromOne<LineRecord>& lines, std::size_t& accepted) {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        progress_ = static_cast<int>(i) + 501;
        Step([&] {
            if (IsLeftOut(rows_[i])) ledger_.Count(rows_[i], reading_.Time);
            if (!IsUp(rows_[i])) names_.NoteDown(rows_[i].Index);
            if (!IsUp(rows_[i]) || IsLeftOut(rows_[i])) return;
            const std::string& name = names_.NameOf(rows_[i], rows_);
            if (!PassesThreshold(rows_[i])) return;
            progress_ = static_cast<int>(i * 10 + 6000 + ++accepted);
            if (accepted > state_.LineCount) {
                book_.GrowTo(lines, accepted);
                // It may be a dial-up line that nobody has announced yet.
                state_.MonitoredLineType = LineType::Undecided;
            }
            progress_ = static_cast<int>(i * 10 + 6100 + accepted);
            const LineRecord* open = FindOpen(rows_[i].Index, accepted);
            lines(accepted) = open != nullptr ? *open : BeginLine(rows_[i], name);
            progress_ = static_cast<int>(i * 10 + 6500 + accepted);
            NameLine(rows_[i], name, lines(accepted));
            ReadCounters(rows_[i], lines(accepted));
            state_.AnyLineConnected = true;
        });
    }
    atStart_ = false;
}

LineRecord LanReader::BeginLine(const InterfaceRow& row, const std::string& name) {
    LineRecord line;
    line.CounterSource = ++state_.LastCounterSource;
    line.Index = row.Index;
    line.User = state_.User;
    NameLine(row, name, line);
    // What was up when the program started was so at least as long; what comes later began this second.
    line.UpSince = atStart_ ? state_.ProgramStart : reading_.Time - OneSecond;
    line.LogIn = std::max(atStart_ ? line.UpSince - 2 * OneSecond : line.UpSince, DayOf(reading_.Time));
    // Not within the line's last record, unless the clock was set back behind that, or the day has no second
    // left.
    const Date last = ledger_.LastEnd(line.EntryName);
    if (last >= FloorToSecond(line.LogIn) && last < reading_.Time + OneSecond &&
        last < EndOfDay(reading_.Time))
        line.LogIn = last + OneSecond;
    const CounterLedger::Account account = ledger_.Of(row.Index);
    line.StartReceived = line.LastRawReceived = static_cast<double>(account.Received);
    line.StartTransmitted = line.LastRawTransmitted = static_cast<double>(account.Transmitted);
    ++state_.Changes;
    return line;
}

void LanReader::NameLine(const InterfaceRow& row, const std::string& name, LineRecord& line) {
    line.Adapter = row.Description;
    line.DeviceName = Trim(row.Description);
    line.EntryName = name;
    line.LineName = book_.GetAlias(line.EntryName);
    line.IpAddress = row.Address;
}

void LanReader::ReadCounters(const InterfaceRow& row, LineRecord& line) {
    const bool isFirst = line.SampleTime == 0;
    line.OperStatus = static_cast<std::uint32_t>(row.OperStatus);
    line.Counts64Bits = row.Counts64Bits;
    line.BytesReceived = static_cast<double>(row.InOctets);
    line.BytesTransmitted = static_cast<double>(row.OutOctets);
    book_.ContinueCounters(line);
    if (isFirst) {
        line.UnseenReceived = line.BytesReceived;
        line.UnseenTransmitted = line.BytesTransmitted;
    }
    line.SampleTimer = SecondsOfDay(reading_.Time);
    line.SampleTime = reading_.Time;
    line.SampleAwake = reading_.Awake;
    line.Duration = reading_.Time - line.UpSince;
    line.Connected = true;
    ledger_.Count(row, reading_.Time);
}

} // namespace korvalin
