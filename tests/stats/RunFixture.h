#pragma once

#include "StatsFixture.h"
#include "stats/JournalKeeper.h"
#include "stats/Recorder.h"

namespace korvalin {

/// For tests in which the program runs more than once.
class RunFixture : public StatsFixture {
  protected:
    TemporaryFolder spare;

    /// The modules that one run owns. `made` is told of each record, `othersRecorded` when there are some of
    /// another program.
    struct ProgramRun {
        ProgramRun(RunFixture& t, Files& files, Journal& journal,
                   std::function<std::filesystem::path()> folder,
                   std::function<void(const OpenConnection& record)> made,
                   std::function<void()> othersRecorded)
            : Book(State, t.errors, t.clock),
              Names(t.networks, t.ras, t.options),
              Lan(t.network, State, Book, Ledger, Names, t.options, t.errors, t.clock),
              Ras(t.ras, t.network, State, Book, Ledger, Lan, t.settings, t.errors, t.clock),
              Monitor(State, Book, Ras, Lan, t.options, t.internet, t.user, t.clock, t.errors),
              Record({State, Ledger, files, t.errors, t.language, t.clock, Lock, t.locale, folder,
                      std::move(made)}),
              Keeper({journal, Record, Ledger, State, Book, Monitor, t.clock, t.errors, folder,
                      t.spare.Path(), std::move(othersRecorded)}) {
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
        Recorder Record;
        JournalKeeper Keeper;
    };
};

} // namespace korvalin
