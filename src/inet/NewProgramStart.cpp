#include "inet/NewProgramStart.h"

#include "platform/Clock.h"
#include "platform/Events.h"
#include "platform/InstanceLock.h"
#include "platform/Shell.h"

namespace korvalin {

bool StartNewProgram(const std::filesystem::path& program, Shell& shell, InstanceLock& lock, Events& events,
                     Clock& clock) {
    constexpr double patienceSeconds = 20;
    constexpr int pauseMilliseconds = 100;
    if (!shell.StartProgram(program)) return false;
    const double giveUp = clock.AwakeSeconds() + patienceSeconds;
    while (!lock.IsRunning(program.filename().string())) {
        if (clock.AwakeSeconds() >= giveUp) return false;
        events.Wait(pauseMilliseconds);
    }
    return true;
}

} // namespace korvalin
