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
    std::vector<RasConnection> connections;
    Step([&] { connections = ras_.EnumConnections(); });
    Step([&] { EndAdapters(lines); });

    const std::size_t count = connections.size();
    if (count > state_.LineCount) Step([&] { book_.GrowTo(lines, count); });
    const TableFromOne<LineRecord> before = lines;
    for (std::size_t i = 1; i <= count && i <= lines.Size(); ++i) {
        Step([&] {
            TakeSlot(connections[i - 1].Handle, i, before, lines(i));
            ReadConnection(connections[i - 1], lines(i));
        });
    }
    Step([&] { CloseEndedLines(lines, count); });
    Step([&] { KeepApart(lines); });
    atStart_ = false;
}

// Adapters that were followed up to now; one of them may carry a connection.
void RasReader::EndAdapters(TableFromOne<LineRecord>& lines) {
    bool any = false;
    for (const LineRecord& line : state_.PreviousLineTable) {
        if (!line.Connected || line.IsRas) continue;
        recordedAsAdapters_.insert(line.Index);
        any = true;
    }
    if (any) book_.RecordClosedConnections(lines, 0);
}

// A connection keeps its line when those before it end.
void RasReader::TakeSlot(std::int32_t handle, std::size_t i, const TableFromOne<LineRecord>& before,
                         LineRecord& line) {
    if (line.Handle == handle) return;
    if (line.Handle > 0) errors_.WriteErrorLog(fmt::format("Leitung {} disconnected", i), "Info");
    const auto open = std::find_if(before.begin(), before.end(),
                                   [&](const LineRecord& candidate) { return candidate.Handle == handle; });
    line = open != before.end() ? *open : LineRecord();
}

void RasReader::ReadConnection(const RasConnection& connection, LineRecord& line) {
    const RasStatistics statistics = ras_.GetConnectionStatistics(connection.Handle);
    if (ras_.GetConnectStatus(connection.Handle) != RascsConnected) return;

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
    line.LogIn = clock_.Now() - OneSecond;
    line.User = state_.User;
    line.CounterSource = ++state_.LastCounterSource;
    ++state_.Changes;
    const std::uint32_t index = statistics.InterfaceIndex;
    // What is told may leave out what the interface had counted before.
    const double foreignReceived = static_cast<double>(statistics.RawReceived - statistics.BytesReceived);
    const double foreignTransmitted =
        static_cast<double>(statistics.RawTransmitted - statistics.BytesTransmitted);
    const bool isWhole = foreignReceived + foreignTransmitted == 0;
    if (const auto earlier = ledger_.TakeDialUp(index, Trim(connection.EntryName))) {
        // Open already when the last run ended: it goes on as it was then.
        line.LogIn = line.PartLogIn = earlier->Open->LogIn;
        const OpenConnection& open = *earlier->Open;
        line.Continued = open.End > open.LogIn || open.BytesReceived + open.BytesTransmitted > 0;
        line.StartReceived =
            static_cast<double>(earlier->Received) - foreignReceived - earlier->Open->BytesReceived;
        line.StartTransmitted =
            static_cast<double>(earlier->Transmitted) - foreignTransmitted - earlier->Open->BytesTransmitted;
    } else if (recordedAsAdapters_.erase(index) > 0 || (atStart_ && isWhole)) {
        // Recorded as an adapter a moment ago. Or up before the program, and told with all that its interface
        // has ever counted: an earlier connection's bytes are accounted for.
        line.StartReceived = static_cast<double>(ledger_.Of(index).Received) - foreignReceived;
        line.StartTransmitted = static_cast<double>(ledger_.Of(index).Transmitted) - foreignTransmitted;
    }
}

// The online duration is the larger of what RAS reports and the time since log-in: at least a second, also of
// one that was dialed again within it.
void RasReader::MeasureDuration(LineRecord& line, const RasStatistics& statistics) {
    const std::uint64_t wholeSeconds = statistics.ConnectDurationMilliseconds / 1000;
    line.Duration = static_cast<double>(wholeSeconds) * OneSecond;
    const Date measured = std::max(clock_.Now() - line.LogIn, OneSecond);
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
    adapters_.Look();
    for (LineRecord& ended : state_.PreviousLineTable) {
        // Neither those that go on, nor whose interface carries another connection by now.
        const bool isCarried = std::any_of(lines.begin(), lines.end(), [&](const LineRecord& line) {
            return line.Connected && line.Index == ended.Index;
        });
        const InterfaceRow* row = adapters_.LatestOf(ended.Index);
        if (!ended.Connected || !ended.IsRas || isCarried || row == nullptr) continue;
        const CounterLedger::Account account = ledger_.Of(ended.Index);
        const auto since = [](std::uint64_t now, std::uint64_t then) {
            return static_cast<double>(now > then ? now - then : 0);
        };
        ended.BytesReceived += since(row->InOctets, account.Received);
        ended.BytesTransmitted += since(row->OutOctets, account.Transmitted);
    }
}

// Dialed again at once it is another connection, and in a day that comes twice another part: neither is to be
// taken for the one before. Behind a clock that was set back only the record finds its place.
void RasReader::KeepApart(TableFromOne<LineRecord>& lines) {
    for (LineRecord& line : lines) {
        if (!line.Connected || line.Continued) continue;
        const Date last = RoundToSecond(ledger_.LastEnd(line.EntryName));
        const bool isPart = line.PartLogIn != 0;
        Date& logIn = isPart ? line.PartLogIn : line.LogIn;
        const Date latest = isPart ? EndOfDay(line.SampleTime) : line.SampleTime + OneSecond;
        if (last >= FloorToSecond(logIn) && last < latest) logIn = last + OneSecond;
    }
}

void RasReader::CloseEndedLines(TableFromOne<LineRecord>& lines, std::size_t count) {
    const auto isUp = [&](std::int32_t handle) {
        return std::any_of(lines.begin(), lines.end(),
                           [&](const LineRecord& line) { return line.Connected && line.Handle == handle; });
    };
    const TableFromOne<LineRecord>& previous = state_.PreviousLineTable;
    const bool ended = std::any_of(previous.begin(), previous.end(), [&](const LineRecord& line) {
        return line.Connected && !isUp(line.Handle);
    });
    const bool fewer = count < state_.LineCount && book_.AnyLineWasConnected();
    if (!ended && !fewer) return;
    AdvanceEnded(lines);
    book_.RecordClosedConnections(lines, count);
}

void RasReader::ReadTcpStatistics() {
    const TcpStatistics tcp = network_.GetTcpStatistics();
    LineRecord& line = state_.LineTable(1);
    line.TcpConnections = tcp.NumConns;
    line.TcpEstablished = tcp.CurrEstab;
    line.TcpInSegments = tcp.InSegs;
    line.TcpOutSegments = tcp.OutSegs;
    line.TcpTime = clock_.Now();
}

} // namespace korvalin
