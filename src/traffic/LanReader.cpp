#include "traffic/LanReader.h"

#include "base/Text.h"
#include "errors/Errors.h"

namespace korvalin {

LanReader::LanReader(NetworkTables& network, LineState& state, LineBook& book, const TrafficOptions& options,
                     Errors& errors, Clock& clock)
    : network_(network), state_(state), book_(book), options_(options), errors_(errors), clock_(clock) {}

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
    replaced_ = false;
    Step([&] { read = ReadTable(); });
    if (read) ReadRows(lines, accepted);
    progress_ = 800;
    Step([&] {
        const bool maybeEnded = accepted < state_.LineCount || replaced_;
        if (maybeEnded && state_.PreviousLineTable(1).Connected) {
            book_.RecordClosedConnections(lines, accepted);
        }
    });
}

// A table that cannot be read is a pass without adapters, not an error to report.
bool LanReader::ReadTable() {
    progress_ = 1;
    return network_.GetIfTable(rows_, true) == 0;
}

void LanReader::ReadRows(TableFromOne<LineRecord>& lines, std::size_t& accepted) {
    // One time for all rows, taken right after the dump: the rates divide by the time between two dumps.
    const Reading reading = {clock_.Now(), clock_.AwakeSeconds()};
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        progress_ = static_cast<int>(i) + 501;
        Step([&] {
            if (!IsActive(rows_[i])) return;
            progress_ = static_cast<int>(i * 10 + 6000 + ++accepted);
            if (accepted > state_.LineCount) {
                book_.GrowTo(lines, accepted);
                state_.MonitoredLineType.clear();
            }
            progress_ = static_cast<int>(i * 10 + 6100 + accepted);
            FillLine(rows_[i], reading, lines(accepted));
            progress_ = static_cast<int>(i * 10 + 6500 + accepted);
            book_.CheckVolume(lines(accepted));
        });
    }
}

// An adapter without a carrier, or switched off, stays in this system's table; its connection has ended.
bool LanReader::IsActive(const InterfaceRow& row) const {
    return row.OperStatus >= OperationalStatus::Connecting && row.Type != IfTypeSoftwareLoopback &&
           static_cast<double>(row.InOctets) > static_cast<double>(options_.LanActive);
}

// An adapter that was renamed, or moved up into the slot of one that dropped out, counts on its own: nothing
// measured on the other's counters may meet its own.
void LanReader::TakeSource(const InterfaceRow& row, LineRecord& line) {
    if (line.CounterSource != 0 && line.EntryName == Trim(row.Description)) return;
    replaced_ = replaced_ || line.CounterSource != 0;
    line.CounterSource = ++state_.LastCounterSource;
    line.StartReceived = line.StartTransmitted = 0;
    line.LastRawReceived = line.LastRawTransmitted = 0;
    line.WrapsReceived = line.WrapsTransmitted = 0;
}

void LanReader::FillLine(const InterfaceRow& row, const Reading& reading, LineRecord& line) {
    TakeSource(row, line);
    line.IsRas = false;
    line.OperStatus = static_cast<std::uint32_t>(row.OperStatus);
    line.Counts64Bits = row.Counts64Bits;
    line.BytesReceived = static_cast<double>(row.InOctets);
    line.BytesTransmitted = static_cast<double>(row.OutOctets);
    if (line.StartReceived == 0) line.StartReceived = line.BytesReceived;
    if (line.StartTransmitted == 0) line.StartTransmitted = line.BytesTransmitted;
    line.SampleTimer = SecondsOfDay(reading.Time);
    line.SampleTime = reading.Time;
    line.SampleAwake = reading.Awake;
    line.Connected = true;
    state_.AnyLineConnected = true;
    line.Duration = reading.Time - state_.ProgramStart;
    line.DeviceName = Trim(row.Description);
    line.EntryName = line.DeviceName;
    line.IpAddress = row.Address;
    line.LineName = book_.GetAlias(line.EntryName);
}

} // namespace korvalin
