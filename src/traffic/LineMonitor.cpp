#include "traffic/LineMonitor.h"

#include "errors/ConnectionState.h"
#include "errors/Errors.h"
#include "platform/User.h"

namespace korvalin {

LineMonitor::LineMonitor(LineState& state, LineBook& book, RasReader& ras, LanReader& lan,
                         const TrafficOptions& options, Internet& internet, User& user, Errors& errors)
    : state_(state),
      book_(book),
      ras_(ras),
      lan_(lan),
      options_(options),
      internet_(internet),
      user_(user),
      errors_(errors) {}

void LineMonitor::Get_Bytes_Transmitted() {
    const auto step = [&](auto&& work) { errors_.Step("Get_Bytes_Transmitted", work); };
    step([&] { TakeSnapshot(); });
    state_.AnyLineConnected = false;
    step([&] { book_.ResetLineSamples(state_.LineTable); });
    if (!firstPassDone_) step([&] { state_.RasInstalled = IsRasInstalled(internet_); });
    firstPassDone_ = true;
    if (state_.MonitoredLineType.empty() || state_.LineCount == 0) step([&] { DetermineLineType(); });
    if (state_.MonitoredLineType == "LAN" && options_.LanProt) {
        step([&] { lan_.Get_Bytes_Transmitted_LAN(state_.LineTable); });
    } else if (state_.MonitoredLineType == "RAS") {
        step([&] { ras_.Get_Bytes_Transmitted_RAS(state_.LineTable); });
    } else {
        step([&] { CloseLines(); });
    }
}

// Nobody looks after the lines of the previous pass any more, as when the last route has gone: they have
// ended.
void LineMonitor::CloseLines() {
    if (book_.AnyLineWasConnected()) book_.RecordClosedConnections(state_.LineTable, 0);
}

void LineMonitor::TakeSnapshot() {
    state_.PreviousLineTable = TableFromOne<LineRecord>(std::max<std::size_t>(state_.LineCount, 1));
    if (state_.LineCount == 0) return;
    const std::string user = user_.Name();
    for (std::size_t i = 1; i <= state_.LineCount; ++i) {
        LineRecord& previous = state_.PreviousLineTable(i);
        if (state_.LineTable(i).Connected) previous = state_.LineTable(i);
        if (previous.User.empty()) previous.User = user;
    }
}

// A pass over "unknown" lines reads nothing, so the LAN flag of such a pass is not looked at.
void LineMonitor::DetermineLineType() {
    const ConnectedState connected = internet_.GetConnectedState();
    if ((connected.Flags & InternetConnectionModem) != 0) {
        state_.MonitoredLineType = state_.RasInstalled ? "RAS" : "unknown";
        if (!state_.RasInstalled) return;
    }
    if ((connected.Flags & InternetConnectionLan) != 0) state_.MonitoredLineType = "LAN";
}

void LineMonitor::ShiftMoments(Date days) {
    state_.ProgramStart += days;
    for (auto* table : {&state_.LineTable, &state_.PreviousLineTable}) {
        for (LineRecord& line : *table) {
            if (line.LogIn != 0) line.LogIn += days;
        }
    }
}

} // namespace korvalin
