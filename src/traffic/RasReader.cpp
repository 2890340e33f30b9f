#include "traffic/RasReader.h"

#include "base/Text.h"
#include "errors/Errors.h"
#include "platform/NetworkTables.h"
#include "settings/Settings.h"
#include "traffic/LanReader.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace korvalin {

// A failure is reported, switches the reader off for later passes, and ends only this step.
template <typename F>
bool RasReader::Step(F&& step) {
    return parts_.Errors.Step("Get_Bytes_Transmitted_RAS", [&] {
        try {
            std::forward<F>(step)();
        } catch (const std::exception& error) {
            parts_.LineState.LastRasError = std::max(ErrorNumber(error), 1);
            throw;
        }
    });
}

void RasReader::Get_Bytes_Transmitted_RAS(TableFromOne<LineRecord>& lines) {
    if (parts_.LineState.LastRasError > 0) return;
    std::vector<RasConnection> connections;
    Step([&] { connections = parts_.Ras.EnumConnections(); });
    Step([&] { EndAdapters(lines); });

    const std::size_t count = connections.size();
    if (count > parts_.LineState.LineCount) Step([&] { parts_.LineBook.GrowTo(lines, count); });
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
    for (const LineRecord& line : parts_.LineState.PreviousLineTable) {
        if (!line.Connected || line.IsRas) continue;
        recordedAsAdapters_.insert(line.Index);
        any = true;
    }
    if (any) parts_.LineBook.RecordClosedConnections(lines, 0);
}

// A connection keeps its line when those before it end.
void RasReader::TakeSlot(std::int32_t handle, std::size_t i, const TableFromOne<LineRecord>& before,
                         LineRecord& line) {
    if (line.Handle == handle) return;
    if (line.Handle > 0) parts_.Errors.WriteErrorLog(fmt::format("Leitung {} disconnected", i), "Info");
    const auto open = std::find_if(before.begin(), before.end(),
                                   [&](const LineRecord& candidate) { return candidate.Handle == handle; });
    line = open != before.end() ? *open : LineRecord();
}

void RasReader::ReadConnection(const RasConnection& connection, LineRecord& line) {
    const RasStatistics statistics = parts_.Ras.GetConnectionStatistics(connection.Handle);
    if (parts_.Ras.GetConnectStatus(connection.Handle) != RascsConnected) return;

    parts_.LineState.AnyLineConnected = true;
    const Date now = parts_.Clock.Now();
    line.Connected = true;
    line.IsRas = true;
    line.SampleTime = now;
    line.SampleTimer = SecondsOfDay(now);
    line.SampleAwake = parts_.Clock.AwakeSeconds();
    if (line.LogIn == 0) BeginLine(connection, statistics, line);
    line.DeviceName = Trim(connection.DeviceName);
    line.EntryName = Trim(connection.EntryName);
    line.LineName = parts_.LineBook.GetAlias(line.EntryName);
    line.Handle = connection.Handle;
    line.BytesReceived = static_cast<double>(statistics.BytesReceived);
    line.BytesTransmitted = static_cast<double>(statistics.BytesTransmitted);
    line.Counts64Bits = statistics.Counts64Bits;
    line.Bps = statistics.Bps;
    MeasureDuration(line, statistics);
    parts_.LineBook.CheckVolume(line);
    line.Index = statistics.InterfaceIndex;
    if (line.Index != 0)
        parts_.CounterLedger.Set(
            line.Index, {connection.DeviceName, statistics.RawReceived, statistics.RawTransmitted, now});
}

void RasReader::BeginLine(const RasConnection& connection, const RasStatistics& statistics,
                          LineRecord& line) {
    line.LogIn = parts_.Clock.Now() - OneSecond;
    line.User = parts_.LineState.User;
    line.CounterSource = ++parts_.LineState.LastCounterSource;
    ++parts_.LineState.Changes;
    const std::uint32_t index = statistics.InterfaceIndex;
    // What is told may leave out what the interface had counted before.
    const double foreignReceived = static_cast<double>(statistics.RawReceived - statistics.BytesReceived);
    const double foreignTransmitted =
        static_cast<double>(statistics.RawTransmitted - statistics.BytesTransmitted);
    const bool isWhole = foreignReceived + foreignTransmitted == 0;
    if (const auto earlier = parts_.CounterLedger.TakeDialUp(index, Trim(connection.EntryName))) {
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
        line.StartReceived = static_cast<double>(parts_.CounterLedger.Of(index).Received) - foreignReceived;
        line.StartTransmitted =
            static_cast<double>(parts_.CounterLedger.Of(index).Transmitted) - foreignTransmitted;
    }
}

// The online duration is the larger of what RAS reports and the time since log-in: at least a second, also of
// one that was dialed again within it.
void RasReader::MeasureDuration(LineRecord& line, const RasStatistics& statistics) {
    const std::uint64_t wholeSeconds = statistics.ConnectDurationMilliseconds / 1000;
    line.Duration = static_cast<double>(wholeSeconds) * OneSecond;
    const Date measured = std::max(parts_.Clock.Now() - line.LogIn, OneSecond);
    if (measured <= line.Duration) return;
    if (line.Duration + 10 * OneSecond < measured - parts_.LineState.LogInShift) {
        if (parts_.Settings.Get(Keys::Test)) {
            parts_.Errors.WriteErrorLog(fmt::format("LogIn-Zeit verschoben: {} {}", FormatTimeOfDay(measured),
                                                    FormatTimeOfDay(line.Duration)),
                                        "RAS");
        }
        parts_.LineState.LogInShift = measured - line.Duration;
    }
    line.Duration = measured;
}

// A connection that has ended gets what its interface has counted since the last reading.
void RasReader::AdvanceEnded(const TableFromOne<LineRecord>& lines) {
    parts_.LanReader.Look();
    for (LineRecord& ended : parts_.LineState.PreviousLineTable) {
        // Neither those that go on, nor whose interface carries another connection by now.
        const bool isCarried = std::any_of(lines.begin(), lines.end(), [&](const LineRecord& line) {
            return line.Connected && line.Index == ended.Index;
        });
        const InterfaceRow* row = parts_.LanReader.LatestOf(ended.Index);
        if (!ended.Connected || !ended.IsRas || isCarried || row == nullptr) continue;
        const CounterLedger::Account account = parts_.CounterLedger.Of(ended.Index);
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
        const Date last = RoundToSecond(parts_.CounterLedger.LastEnd(line.EntryName));
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
    const TableFromOne<LineRecord>& previous = parts_.LineState.PreviousLineTable;
    const bool ended = std::any_of(previous.begin(), previous.end(), [&](const LineRecord& line) {
        return line.Connected && !isUp(line.Handle);
    });
    const bool fewer = count < parts_.LineState.LineCount && parts_.LineBook.AnyLineWasConnected();
    if (!ended && !fewer) return;
    AdvanceEnded(lines);
    parts_.LineBook.RecordClosedConnections(lines, count);
}

} // namespace korvalin
