#pragma once

#include "StatsFixture.h"

namespace korvalin {

/// For tests in which the program runs more than once.
class RunFixture : public StatsFixture {
  protected:
    RunFixture() { journal.SpareFolder = shell.SettingsFolder(); }

    struct OwnLock {
        FakeRecordingLock Lock;
    };
    /// One run, whose lock tells whether another program records.
    struct ProgramRun : OwnLock, Program {
        ProgramRun(RunFixture& t, Files& files, Journal& journal)
            : Program(t.PortsWith(files, Lock, journal, t.signatures), t.locale) {
            lines.ProgramStart = t.clock.Now();
        }
    };
    void Pass(ProgramRun& run, double secondsLater = 1) {
        clock.Advance(secondsLater);
        run.trafficOptions = options;
        run.lineMonitor.Get_Bytes_Transmitted();
    }
};

} // namespace korvalin
