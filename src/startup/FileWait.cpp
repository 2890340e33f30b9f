#include "startup/FileWait.h"

#include "errors/Paths.h"
#include "platform/Clock.h"
#include "platform/Events.h"

namespace korvalin {

bool DeleteFileWait(const std::filesystem::path& path, double seconds, Events& events, Clock& clock) {
    constexpr int pauseMilliseconds = 100;
    const double end = clock.AwakeSeconds() + seconds;
    while (FileExists(path) && clock.AwakeSeconds() < end) {
        std::error_code ignored;
        if (IsFileNotFolder(path)) std::filesystem::remove(path, ignored);
        if (!FileExists(path)) return true;
        events.ProcessPending();
        events.Sleep(pauseMilliseconds);
    }
    return !FileExists(path);
}

} // namespace korvalin
