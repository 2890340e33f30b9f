#include "traffic/ClockWatch.h"

#include <cmath>

namespace korvalin {
namespace {
constexpr double smallestStepSeconds = 0.5;
}

ClockWatch::ClockWatch(Clock& clock) : clock_(clock), offset_(WallAheadOfBoot()) {}

void ClockWatch::Restart() {
    offset_ = WallAheadOfBoot();
}

double ClockWatch::WallAheadOfBoot() const {
    return clock_.Now() * SecondsPerDay - clock_.BootSeconds();
}

Date ClockWatch::TakeStep() {
    const double step = WallAheadOfBoot() - offset_;
    if (std::abs(step) < smallestStepSeconds) return 0;
    offset_ += step;
    return step / SecondsPerDay;
}

} // namespace korvalin
