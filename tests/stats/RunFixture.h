#pragma once

#include "StatsFixture.h"
#include "stats/JournalKeeper.h"
#include "stats/Recorder.h"

namespace korvalin {

/// For tests in which the program runs more than once.
class RunFixture : public StatsFixture {
  protected:
    TemporaryFolder spare;

    /// The modules that one run owns.
    struct ProgramRun {
        ProgramRun(RunFixture& t, Files& files, Journal& journal)
            : Book(State, t.errors, t.clock),
              Names(t.networks, t.ras, t.options),
              Lan({.NetworkTables = t.network,
                   .LineState = State,
                   .LineBook = Book,
                   .CounterLedger = Ledger,
                   .LineNames = Names,
                   .TrafficOptions = t.options,
                   .Errors = t.errors,
                   .Clock = t.clock}),
              Ras({.Ras = t.ras,
                   .NetworkTables = t.network,
                   .LineState = State,
                   .LineBook = Book,
                   .CounterLedger = Ledger,
                   .LanReader = Lan,
                   .Settings = t.settings,
                   .Errors = t.errors,
                   .Clock = t.clock}),
              Monitor({.LineState = State,
                       .LineBook = Book,
                       .RasReader = Ras,
                       .LanReader = Lan,
                       .TrafficOptions = t.options,
                       .Internet = t.internet,
                       .User = t.user,
                       .Clock = t.clock,
                       .Errors = t.errors}),
              Tariffs(t.settings, t.errors, t.clock, t.units),
              Month(Tariffs, State, t.errors, t.clock),
              Record({.LineState = State,
                      .CounterLedger = Ledger,
                      .Files = files,
                      .Errors = t.errors,
                      .Language = t.language,
                      .Clock = t.clock,
                      .RecordingLock = Lock,
                      .Locale = t.locale,
                      .DataFolder = t.dataFolder,
                      .MonthSums = Month}),
              Keeper({.Journal = journal,
                      .Recorder = Record,
                      .CounterLedger = Ledger,
                      .LineState = State,
                      .LineBook = Book,
                      .LineMonitor = Monitor,
                      .Clock = t.clock,
                      .Errors = t.errors,
                      .DataFolder = t.dataFolder,
                      .SpareFolder = t.spare.Path()}) {
            State.ProgramStart = t.clock.Now();
            Book.Plug({[](const std::string& entry) { return entry; },
                       [this](CloseReason reason, std::size_t line) { Record.SaveStatsLine(reason, line); },
                       [] {}, [this] { Keeper.PassEnded(); }});
        }
        FakeRecordingLock Lock;
        LineState State;
        CounterLedger Ledger;
        LineBook Book;
        LineNames Names;
        LanReader Lan;
        RasReader Ras;
        LineMonitor Monitor;
        Aliases Tariffs;
        MonthSums Month;
        Recorder Record;
        JournalKeeper Keeper;
    };
};

} // namespace korvalin
