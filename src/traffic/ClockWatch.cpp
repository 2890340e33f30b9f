#include "traffic/ClockWatch.h"

#include <cmath>

namespace korvalin {
namespace {
constexpr double smallestStepSeconds = 0.5;
}

ClockWatch::ClockWatch(Clock& clock)
    : clock_(clock),
      bootOffset_(WallSeconds() - clock.BootSeconds()),
      awakeOffset_(WallSeconds() - clock.AwakeSeconds()) {}

double ClockWatch::WallSeconds() const {
    return clock_.Now() * SecondsPerDay;
}

Date ClockWatch::TakeStep() {
    const double step = WallSeconds() - clock_.BootSeconds() - bootOffset_;
    if (std::abs(step) < smallestStepSeconds) return 0;
    bootOffset_ += step;
    return step / SecondsPerDay;
}

double ClockWatch::JumpedSeconds() const {
    // Losing the processor between the two readings would look like a jump: read again until it did not
    // happen.
    constexpr int attempts = 5;
    constexpr double longestReading = 50e-6;
    double jumped = 0;
    for (int i = 0; i < attempts; ++i) {
        const double before = clock_.AwakeSeconds();
        const double wall = WallSeconds();
        const double after = clock_.AwakeSeconds();
        jumped = wall - (before + after) / 2 - awakeOffset_;
        if (after - before < longestReading) break;
    }
    return jumped;
}

} // namespace korvalin
