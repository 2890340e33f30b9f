#pragma once

#include "fakes/CoreFixture.h"
#include "traffic/LineMonitor.h"

namespace korvalin {

/// The traffic readers over fake ports; a closed line is noted with its last state.
class TrafficFixture : public CoreFixture {
  protected:
    struct Closed {
        std::size_t Line;
        std::string EntryName;
        double BytesReceived;
    };

    TrafficFixture() {
        lines.ProgramStart = clock.Now();
        book.Plug({[](const std::string& entry) { return "<" + entry + ">"; },
                   [this](CloseReason reason, std::size_t line) {
                       EXPECT_TRUE(reason == CloseReason::LineEnded || reason == CloseReason::Renamed);
                       const LineRecord& last = lines.PreviousLineTable(line);
                       closed.push_back({line, last.EntryName, last.BytesReceived});
                   },
                   [this] { ++historyResizes; }, [] {}});
    }

    void Pass(double secondsLater = 1) {
        clock.Advance(secondsLater);
        monitor.Get_Bytes_Transmitted();
    }

    LineState lines;
    TrafficOptions options;
    LineBook book{lines, errors, clock};
    CounterLedger ledger;
    LineNames names{networks, ras, options};
    LanReader lanReader{{.NetworkTables = network,
                         .LineState = lines,
                         .LineBook = book,
                         .CounterLedger = ledger,
                         .LineNames = names,
                         .TrafficOptions = options,
                         .Errors = errors,
                         .Clock = clock}};
    RasReader rasReader{{.Ras = ras,
                         .NetworkTables = network,
                         .LineState = lines,
                         .LineBook = book,
                         .CounterLedger = ledger,
                         .LanReader = lanReader,
                         .Settings = settings,
                         .Errors = errors,
                         .Clock = clock}};
    LineMonitor monitor{{.LineState = lines,
                         .LineBook = book,
                         .RasReader = rasReader,
                         .LanReader = lanReader,
                         .CounterLedger = ledger,
                         .TrafficOptions = options,
                         .Internet = internet,
                         .User = user,
                         .Clock = clock,
                         .Errors = errors}};
    std::vector<Closed> closed;
    int historyResizes = 0;
};

} // namespace korvalin
