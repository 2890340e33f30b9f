#include "data/FileActions.h"

#include "base/Paths.h"
#include "platform/Clock.h"
#include "platform/Events.h"

#include <chrono>
#include <ctime>

namespace korvalin {

std::optional<Date> FileTime(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) return std::nullopt;
    const auto written = std::filesystem::last_write_time(file, error);
    if (error) return std::nullopt;
    const auto moment = std::chrono::file_clock::to_sys(written);
    const std::time_t seconds = std::chrono::system_clock::to_time_t(
        std::chrono::time_point_cast<std::chrono::system_clock::duration>(moment));
    const std::tm* local = std::localtime(&seconds);
    if (local == nullptr) return std::nullopt;
    return DateSerial(local->tm_year + 1900, local->tm_mon + 1, local->tm_mday) +
           TimeSerial(local->tm_hour, local->tm_min, local->tm_sec);
}

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
