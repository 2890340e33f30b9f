#include "traffic/LineMonitor.h"

#include "errors/Errors.h"
#include "inet/ConnectionState.h"
#include "platform/User.h"
#include "traffic/CounterLedger.h"

#include <algorithm>

namespace korvalin {

void LineMonitor::Get_Bytes_Transmitted() {
    Pass();
    parts_.LineBook.TellPassEnded();
}

void LineMonitor::Pass() {
    LineState& state = parts_.LineState;
    const auto step = [&](auto&& work) {
        static_cast<void>(parts_.Errors.Step("Get_Bytes_Transmitted", work));
    };
    step([&] { TakeSnapshot(); });
    step([&] { DivideAtMidnight(); });
    state.AnyLineConnected = false;
    step([&] { parts_.LineBook.ResetLineSamples(state.LineTable); });
    if (!firstPassDone_) step([&] { state.RasInstalled = IsRasInstalled(parts_.Internet); });
    firstPassDone_ = true;
    if (state.MonitoredLineType == LineType::Undecided || state.LineCount == 0)
        step([&] { DetermineLineType(); });
    const bool isLan = state.MonitoredLineType == LineType::Lan;
    const bool isRas = state.MonitoredLineType == LineType::Ras;
    if (isLan && parts_.TrafficOptions.LanProt) {
        step([&] { AdvanceEndedCalls(); });
        return step([&] { parts_.LanReader.Get_Bytes_Transmitted_LAN(state.LineTable); });
    }
    if (isRas) {
        step([&] { parts_.RasReader.Get_Bytes_Transmitted_RAS(state.LineTable); });
    } else {
        step([&] { CloseLines(); });
    }
    step([&] { AdvanceEndedCalls(); });
    // What carries a dial-up line, or is not wanted, is nobody's; without a route it is the coming line's.
    step([&] {
        parts_.LanReader.Observe(isRas || isLan ? LanReader::Unfollowed::Nobodys
                                                : LanReader::Unfollowed::Kept);
    });
}

// A call that went after an end of the program was called off, before the next pass: its record lacks what
// its interface has counted since.
void LineMonitor::AdvanceEndedCalls() {
    std::vector<JournalEntry> calls = parts_.CounterLedger.TakeDialUps();
    if (calls.empty()) return;
    parts_.LanReader.Look();
    const Date now = parts_.Clock.Now();
    const auto since = [](std::uint64_t counted, std::uint64_t then) {
        return static_cast<double>(counted > then ? counted - then : 0);
    };
    const auto isCarried = [&](std::uint32_t index) { // by another call
        return std::ranges::any_of(parts_.LineState.LineTable, [&](const LineRecord& line) {
            return line.Connected && line.Index == index;
        });
    };
    for (JournalEntry& call : calls) {
        OpenConnection& open = *call.Open;
        const InterfaceRow* row = parts_.LanReader.LatestOf(call.Index);
        if (!open.Recorded || row == nullptr || isCarried(call.Index)) continue;
        const double received = since(row->InOctets, call.Received);
        const double transmitted = since(row->OutOctets, call.Transmitted);
        parts_.CounterLedger.Count(*row, now);
        if (received + transmitted == 0) continue;
        open.BytesReceived += received;
        open.BytesTransmitted += transmitted;
        open.Recorded = false;
    }
    parts_.CounterLedger.KeepDialUps(std::move(calls));
}

void LineMonitor::TakeLastReading() {
    Pass();
    TakeSnapshot();
}

// Nobody looks after the lines of the previous pass any more, as when the last route has gone: they have
// ended.
void LineMonitor::CloseLines() {
    if (parts_.LineBook.AnyLineWasConnected())
        parts_.LineBook.RecordClosedConnections(parts_.LineState.LineTable, 0);
}

void LineMonitor::TakeSnapshot() {
    LineState& state = parts_.LineState;
    state.PreviousLineTable = TableFromOne<LineRecord>(std::max<std::size_t>(state.LineCount, 1));
    state.User = parts_.User.Name();
    if (state.LineCount == 0) return;
    for (std::size_t i = 1; i <= state.LineCount; ++i) {
        LineRecord& previous = state.PreviousLineTable(i);
        if (state.LineTable(i).Connected) previous = state.LineTable(i);
        if (previous.User.empty()) previous.User = state.User;
    }
}

// A pass over unknown lines reads nothing, so the LAN flag of such a pass is not looked at. Adapters that
// are followed go on to be when no route is left.
void LineMonitor::DetermineLineType() {
    LineState& state = parts_.LineState;
    const ConnectedState connected = parts_.Internet.GetConnectedState();
    if ((connected.Flags & InternetConnectionModem) != 0) {
        state.MonitoredLineType = state.RasInstalled ? LineType::Ras : LineType::Unknown;
        if (!state.RasInstalled) return;
    }
    const bool followsAdapters = state.LineCount > 0 && state.MonitoredLineType == LineType::Undecided;
    if ((connected.Flags & InternetConnectionLan) != 0 || followsAdapters)
        state.MonitoredLineType = LineType::Lan;
}

bool LineMonitor::IsDivided(const LineRecord& line) const {
    return line.Connected && (parts_.TrafficOptions.Split == SplitDays::All ||
                              (parts_.TrafficOptions.Split == SplitDays::Adapters && !line.IsRas));
}

// A suspend may lie between the last reading and this one: the parts belong to the days of their readings.
void LineMonitor::DivideAtMidnight() {
    const Date today = DayOf(parts_.Clock.Now());
    if (DividesDialUps()) parts_.CounterLedger.BeginDialUpsOn(today);
    for (std::size_t i = 1; i <= parts_.LineState.PreviousLineTable.Size(); ++i) {
        LineRecord& line = parts_.LineState.PreviousLineTable(i);
        if (!IsDivided(line) || DayOf(line.SampleTime) == today) continue;
        line.PartEnd = EndOfDay(line.SampleTime);
        parts_.LineBook.Divide(i, CloseReason::DayEnded, today);
    }
}

void LineMonitor::ShiftMoments(Date days) {
    const Date now = parts_.Clock.Now();
    TakeSnapshot();
    for (std::size_t i = 1; i <= parts_.LineState.PreviousLineTable.Size(); ++i) {
        const LineRecord& line = parts_.LineState.PreviousLineTable(i);
        if (IsDivided(line) && DayOf(line.SampleTime) != DayOf(now))
            parts_.LineBook.Divide(i, CloseReason::DayEnded, now - days);
    }
    parts_.LineState.ProgramStart += days;
    for (LineRecord& line : parts_.LineState.LineTable) {
        for (Date* moment : {&line.LogIn, &line.UpSince, &line.PartLogIn, &line.SampleTime}) {
            if (*moment != 0 && !(line.Continued && moment == &line.PartLogIn)) *moment += days;
        }
        if (!IsDivided(line)) continue;
        // What was today's stays today's.
        if (!line.Continued) line.PartLogIn = std::max(OpenPartOf(line).LogIn, DayOf(now));
        line.SampleTime = std::max(line.SampleTime, DayOf(now));
    }
    TakeSnapshot();
}

} // namespace korvalin
