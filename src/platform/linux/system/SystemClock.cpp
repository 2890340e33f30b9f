#include "platform/linux/system/SystemClock.h"

#include <ctime>

namespace korvalin {
namespace {

constexpr double nanosecond = 1e-9;
constexpr double secondsBetweenZoneChecks = 1;

timespec Read(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return time;
}

double ReadSeconds(clockid_t clock) {
    const timespec time = Read(clock);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * nanosecond;
}

} // namespace

Date SystemClock::Now() {
    const timespec now = Read(CLOCK_REALTIME);
    // localtime_r keeps the zone of its first use; tzset looks whether TZ or /etc/localtime has changed. That
    // is a system call, and this is called for every line.
    if (const double awake = AwakeSeconds(); awake >= nextZoneCheck_) {
        tzset();
        nextZoneCheck_ = awake + secondsBetweenZoneChecks;
    }
    tm local{};
    localtime_r(&now.tv_sec, &local);
    const double seconds = local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec +
                           static_cast<double>(now.tv_nsec) * nanosecond;
    // Day and time of day are added last: a sum of seconds since 1899 would lose the microseconds.
    return DateSerial(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) + seconds / SecondsPerDay;
}

// CLOCK_MONOTONIC stands still in suspend, CLOCK_BOOTTIME does not.
double SystemClock::BootSeconds() {
    return ReadSeconds(CLOCK_BOOTTIME);
}
double SystemClock::AwakeSeconds() {
    return ReadSeconds(CLOCK_MONOTONIC);
}

} // namespace korvalin
