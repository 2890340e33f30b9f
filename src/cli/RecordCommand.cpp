#include "cli/Commands.h"
#include "platform/linux/system/TerminationSignals.h"
#include "program/Program.h"

#include <fmt/format.h>

#include <csignal>
#include <cstdlib>
#include <poll.h>

namespace korvalin {
namespace {

// The signal that arrived within the time; 0 when there was none.
int AwaitSignal(const TerminationSignals& signals, int milliseconds) {
    pollfd waiting{signals.Get(), POLLIN, 0};
    return poll(&waiting, 1, milliseconds) > 0 ? signals.Take() : 0;
}

} // namespace

int RecordUntilSignal(Program& program, const TerminationSignals& signals) {
    program.LoadRecords();
    if (!program.BeginToRecord()) {
        fmt::print(stderr, "Another program records into {}\n", program.dataFolder.GetDataPath().string());
        return EXIT_FAILURE;
    }
    SamplingLoop& loop = program.samplingLoop;
    int signal = 0;
    while (signal == 0) {
        loop.TimerMain_Timer();
        signal = AwaitSignal(signals, loop.MillisecondsToNextStep());
    }
    program.journalKeeper.RecordOpenLines(signal == SIGTERM ? CloseReason::SystemEnd
                                                            : CloseReason::TaskManager);
    return program.recorder.HasPending() ? EXIT_FAILURE : EXIT_SUCCESS;
}

} // namespace korvalin
