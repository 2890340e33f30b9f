#include "traffic/RasReader.h"

#include "base/Text.h"
#include "errors/Errors.h"
#include "platform/NetworkTables.h"
#include "settings/Settings.h"
#include "traffic/LanReader.h"

#include <fmt/format.h>

#include <algorithm>

namespace korvalin {

RasReader::RasReader(Ras& ras, NetworkTables& network, LineState& state, LineBook& book,
                     CounterLedger& ledger, LanReader& adapters, Settings& settings, Errors& errors,
                     Clock& clock)
    : ras_(ras),
      network_(network),
      state_(state),
      book_(book),
      ledger_(ledger),
      adapters_(adapters),
      settings_(settings),
      errors_(errors),
      clock_(clock) {}

// A failure is reported, switches the reader off for later passes, and ends only this step.
bool RasReader::Step(const std::function<void()>& step) {
    return errors_.Step("Get_Bytes_Transmitted_RAS", [&] {
        try {
            step();
        } catch (const std::exception& error) {
            state_.LastRasError = std::max(ErrorNumber(error), 1);
            throw;
        }
    });
}

void RasReader::Get_Bytes_Transmitted_RAS(TableFromOne<LineRecord>& lines) {
    if (state_.LastRasError > 0) return;
    lineSetChanged_ = false;
    std::vector<RasConnection> connections;
    Step([&] { connections = Enumerate(); });

    const std::size_t count = connections.size();
    if (count > state_.LineCount) Step([&] { book_.GrowTo(lines, count); });
    for (std::size_t i = 1; i <= count && i <= lines.Size(); ++i) {
        Step([&] { ReadConnection(connections[i - 1], i, lines(i)); });
    }
    carriedOn_.clear();
    Step([&] { CloseEndedLines(lines, count); });
    atStart_ = false;
}

std::vector<RasConnection> RasReader::Enumerate() {
    std::vector<RasConnection> connections(std::max<std::size_t>(state_.LineCount, 1));
    std::uint32_t count = 0;
    while (ras_.EnumConnections(connections, count) == ErrorBufferTooSmall && count >= 1) {
        connections.resize(std::max<std::size_t>(connections.size() + 1, count));
    }
    connections.resize(std::min<std::size_t>(count, connections.size()));
    return connections;
}

void RasReader::ReadConnection(const RasConnection& connection, std::size_t i, LineRecord& line) {
    RasStatistics statistics;
    std::uint32_t connectionState = 0;
    // A connection that cannot be read counts as not connected, so the codes need no look.
    static_cast<void>(ras_.GetConnectionStatistics(connection.Handle, statistics));
    static_cast<void>(ras_.GetConnectStatus(connection.Handle, connectionState));
    // Noticed also while the new connection is still being dialed: later, what the old one was is forgotten.
    if (line.Handle != connection.Handle && line.Handle > 0) {
        lineSetChanged_ = true;
        errors_.WriteErrorLog(fmt::format("Leitung {} disconnected", i), "Info");
    }
    if (connectionState != RascsConnected) return;

    state_.AnyLineConnected = true;
    const Date now = clock_.Now();
    line.Connected = true;
    line.IsRas = true;
    line.SampleTime = now;
    line.SampleTimer = SecondsOfDay(now);
    line.SampleAwake = clock_.AwakeSeconds();
    if (line.LogIn == 0) BeginLine(connection, statistics, line);
    line.DeviceName = Trim(connection.DeviceName);
    line.EntryName = Trim(connection.EntryName);
    line.LineName = book_.GetAlias(line.EntryName);
    line.Handle = connection.Handle;
    line.BytesReceived = static_cast<double>(statistics.BytesReceived);
    line.BytesTransmitted = static_cast<double>(statistics.BytesTransmitted);
    line.Counts64Bits = statistics.Counts64Bits;
    line.Bps = statistics.Bps;
    MeasureDuration(line, statistics);
    book_.CheckVolume(line);
    line.Index = statistics.InterfaceIndex;
    if (line.Index != 0)
        ledger_.Set(line.Index,
                    {connection.DeviceName, statistics.RawReceived, statistics.RawTransmitted, now});
    ReadTcpStatistics();
}

void RasReader::BeginLine(const RasConnection& connection, const RasStatistics& statistics,
                          LineRecord& line) {
    const auto carried = std::find_if(carriedOn_.begin(), carriedOn_.end(), [&](const LineRecord& candidate) {
        return candidate.Handle == connection.Handle;
    });
    if (carried != carriedOn_.end()) {
        line = *carried;
        line.Connected = line.IsRas = true;
        return;
    }
    line.LogIn = clock_.Now() - OneSecond;
    line.User = state_.User;
    line.CounterSource = ++state_.LastCounterSource;
    ++state_.Changes;
    const std::uint32_t index = statistics.InterfaceIndex;
    if (const auto earlier = ledger_.TakeDialUp(index, Trim(connection.EntryName))) {
        // Open already when the last run ended: it goes on as it was then. What is told may leave out what
        // the interface had counted before.
        const double foreignReceived = static_cast<double>(statistics.RawReceived - statistics.BytesReceived);
        const double foreignTransmitted =
            static_cast<double>(statistics.RawTransmitted - statistics.BytesTransmitted);
        line.LogIn = line.PartLogIn = earlier->Open->LogIn;
        line.StartReceived =
            static_cast<double>(earlier->Received) - foreignReceived - earlier->Open->BytesReceived;
        line.StartTransmitted =
            static_cast<double>(earlier->Transmitted) - foreignTransmitted - earlier->Open->BytesTransmitted;
    } else if (atStart_ && statistics.BytesReceived == statistics.RawReceived) {
        // Up before the program, and told with all that its interface has ever counted: an earlier
        // connection's bytes are accounted for.
        line.StartReceived = static_cast<double>(ledger_.Of(index).Received);
        line.StartTransmitted = static_cast<double>(ledger_.Of(index).Transmitted);
    }
}

// The online duration is the larger of what RAS reports and the time since log-in.
void RasReader::MeasureDuration(LineRecord& line, const RasStatistics& statistics) {
    const std::uint64_t wholeSeconds = statistics.ConnectDurationMilliseconds / 1000;
    line.Duration = static_cast<double>(wholeSeconds) * OneSecond;
    const Date measured = clock_.Now() - line.LogIn;
    if (measured <= line.Duration) return;
    if (line.Duration + 10 * OneSecond < measured - state_.LogInShift) {
        if (settings_.Get(Keys::Test)) {
            errors_.WriteErrorLog(fmt::format("LogIn-Zeit verschoben: {} {}", FormatTimeOfDay(measured),
                                              FormatTimeOfDay(line.Duration)),
                                  "RAS");
        }
        state_.LogInShift = measured - line.Duration;
    }
    line.Duration = measured;
}

// A connection that has ended gets what its interface has counted since the last reading.
void RasReader::AdvanceEnded(const TableFromOne<LineRecord>& lines) {
    const auto carries = [](std::uint32_t index) {
        return [index](const LineRecord& line) { return line.Connected && line.Index == index; };
    };
    for (LineRecord& ended : state_.PreviousLineTable) {
        if (!ended.Connected || !ended.IsRas || std::any_of(lines.begin(), lines.end(), carries(ended.Index)))
            continue;
        if (const InterfaceRow* row = adapters_.LatestOf(ended.Index)) {
            const CounterLedger::Account account = ledger_.Of(ended.Index);
            if (row->InOctets > account.Received)
                ended.BytesReceived += static_cast<double>(row->InOctets - account.Received);
            if (row->OutOctets > account.Transmitted)
                ended.BytesTransmitted += static_cast<double>(row->OutOctets - account.Transmitted);
        }
    }
}

void RasReader::CloseEndedLines(TableFromOne<LineRecord>& lines, std::size_t count) {
    const bool fewer = count < state_.LineCount && book_.AnyLineWasConnected();
    if (lineSetChanged_) {
        std::copy_if(lines.begin(), lines.end(), std::back_inserter(carriedOn_),
                     [](const LineRecord& line) { return line.Connected; });
    }
    if (!fewer && !lineSetChanged_) return;
    adapters_.Look();
    AdvanceEnded(lines);
    book_.RecordClosedConnections(lines, lineSetChanged_ ? 0 : count);
}

void RasReader::ReadTcpStatistics() {
    TcpStatistics tcp;
    static_cast<void>(network_.GetTcpStatistics(tcp)); // zeroed when the system does not tell
    LineRecord& line = state_.LineTable(1);
    line.TcpConnections = tcp.NumConns;
    line.TcpEstablished = tcp.CurrEstab;
    line.TcpInSegments = tcp.InSegs;
    line.TcpOutSegments = tcp.OutSegs;
    line.TcpTime = clock_.Now();
}

} // namespace korvalin
