#include "traffic/LineMonitor.h"

#include "errors/Errors.h"
#include "inet/ConnectionState.h"
#include "platform/User.h"

namespace korvalin {

LineMonitor::LineMonitor(LineState& state, LineBook& book, RasReader& ras, LanReader& lan,
                         const TrafficOptions& options, Internet& internet, User& user, Clock& clock,
                         Errors& errors)
    : state_(state),
      book_(book),
      ras_(ras),
      lan_(lan),
      options_(options),
      internet_(internet),
      user_(user),
      clock_(clock),
      errors_(errors) {}

void LineMonitor::Get_Bytes_Transmitted() {
    Pass();
    book_.TellPassEnded();
}

void LineMonitor::Pass() {
    const auto step = [&](auto&& work) { static_cast<void>(errors_.Step("Get_Bytes_Transmitted", work)); };
    step([&] { TakeSnapshot(); });
    step([&] { DivideAtMidnight(); });
    state_.AnyLineConnected = false;
    step([&] { book_.ResetLineSamples(state_.LineTable); });
    if (!firstPassDone_) step([&] { state_.RasInstalled = IsRasInstalled(internet_); });
    firstPassDone_ = true;
    if (state_.MonitoredLineType == LineType::Undecided || state_.LineCount == 0)
        step([&] { DetermineLineType(); });
    const bool isLan = state_.MonitoredLineType == LineType::Lan;
    const bool isRas = state_.MonitoredLineType == LineType::Ras;
    if (isLan && options_.LanProt) return step([&] { lan_.Get_Bytes_Transmitted_LAN(state_.LineTable); });
    if (isRas) {
        step([&] { ras_.Get_Bytes_Transmitted_RAS(state_.LineTable); });
    } else {
        step([&] { CloseLines(); });
    }
    // What carries a dial-up line, or is not wanted, is nobody's; without a route it is the coming line's.
    step(
        [&] { lan_.Observe(isRas || isLan ? LanReader::Unfollowed::Nobodys : LanReader::Unfollowed::Kept); });
}

void LineMonitor::TakeLastReading() {
    Pass();
    TakeSnapshot();
}

// Nobody looks after the lines of the previous pass any more, as when the last route has gone: they have
// ended.
void LineMonitor::CloseLines() {
    if (book_.AnyLineWasConnected()) book_.RecordClosedConnections(state_.LineTable, 0);
}

void LineMonitor::TakeSnapshot() {
    state_.PreviousLineTable = TableFromOne<LineRecord>(std::max<std::size_t>(state_.LineCount, 1));
    state_.User = user_.Name();
    if (state_.LineCount == 0) return;
    for (std::size_t i = 1; i <= state_.LineCount; ++i) {
        LineRecord& previous = state_.PreviousLineTable(i);
        if (state_.LineTable(i).Connected) previous = state_.LineTable(i);
        if (previous.User.empty()) previous.User = state_.User;
    }
}

// A pass over unknown lines reads nothing, so the LAN flag of such a pass is not looked at. Adapters that
// are followed go on to be when no route is left.
void LineMonitor::DetermineLineType() {
    const ConnectedState connected = internet_.GetConnectedState();
    if ((connected.Flags & InternetConnectionModem) != 0) {
        state_.MonitoredLineType = state_.RasInstalled ? LineType::Ras : LineType::Unknown;
        if (!state_.RasInstalled) return;
    }
    const bool followsAdapters = state_.LineCount > 0 && state_.MonitoredLineType == LineType::Undecided;
    if ((connected.Flags & InternetConnectionLan) != 0 || followsAdapters)
        state_.MonitoredLineType = LineType::Lan;
}

bool LineMonitor::IsDivided(const LineRecord& line) const {
    return line.Connected &&
           (options_.Split == SplitDays::All || (options_.Split == SplitDays::Adapters && !line.IsRas));
}

// A suspend may lie between the last reading and this one: the parts belong to the days of their readings.
void LineMonitor::DivideAtMidnight() {
    const Date today = DayOf(clock_.Now());
    for (std::size_t i = 1; i <= state_.PreviousLineTable.Size(); ++i) {
        LineRecord& line = state_.PreviousLineTable(i);
        if (!IsDivided(line) || DayOf(line.SampleTime) == today) continue;
        line.PartEnd = EndOfDay(line.SampleTime);
        book_.Divide(i, CloseReason::DayEnded, today);
    }
}

void LineMonitor::ShiftMoments(Date days) {
    const Date now = clock_.Now();
    TakeSnapshot();
    for (std::size_t i = 1; i <= state_.PreviousLineTable.Size(); ++i) {
        const LineRecord& line = state_.PreviousLineTable(i);
        if (IsDivided(line) && DayOf(line.SampleTime) != DayOf(now))
            book_.Divide(i, CloseReason::DayEnded, now - days);
    }
    state_.ProgramStart += days;
    for (LineRecord& line : state_.LineTable) {
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
