#include "inet/NewProgramStart.h"

#include "platform/Clock.h"
#include "platform/Events.h"
#include "platform/InstanceLock.h"
#include "platform/Shell.h"

#include <string>
#include <utility>

namespace korvalin {

bool StartNewProgram(const std::filesystem::path& program, Shell& shell, InstanceLock& lock, Events& events,
                     Clock& clock) {
    constexpr double patienceSeconds = 30;
    constexpr int pauseMilliseconds = 100;
    if (!shell.StartProgram(program)) return false;
    const std::string name = program.filename().string();
    const double giveUp = clock.AwakeSeconds() + patienceSeconds;
    bool runs = false;
    while (!lock.IsReady(name)) {
        const bool ran = std::exchange(runs, lock.IsRunning(name));
        const bool hasEnded = ran && !runs;
        if (hasEnded || clock.AwakeSeconds() >= giveUp) return false;
        events.Wait(pauseMilliseconds);
    }
    return true;
}

} // namespace korvalin
