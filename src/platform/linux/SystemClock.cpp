#include "platform/linux/SystemClock.h"

#include <ctime>

namespace korvalin {
namespace {

// 1 January 1970 as a day number.
constexpr Date unixEpoch = 25569;

constexpr double secondsBetweenZoneChecks = 5;

double Seconds(clockid_t id) {
    timespec time{};
    clock_gettime(id, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

} // namespace

Date SystemClock::Now() {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    // localtime_r alone keeps the zone of the program's start; the user may travel. Looking for a new one is a system
    // call, and this routine is called for every line.
    if (const double awake = AwakeSeconds(); awake >= nextZoneCheck_) {
        tzset();
        nextZoneCheck_ = awake + secondsBetweenZoneChecks;
    }
    tm local{};
    localtime_r(&time.tv_sec, &local);
    const double localSeconds = static_cast<double>(time.tv_sec + local.tm_gmtoff) + static_cast<double>(time.tv_nsec) * 1e-9;
    return unixEpoch + localSeconds / SecondsPerDay;
}

double SystemClock::BootSeconds() { return Seconds(CLOCK_BOOTTIME); }
double SystemClock::AwakeSeconds() { return Seconds(CLOCK_MONOTONIC); }

} // namespace korvalin
