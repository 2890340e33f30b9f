#pragma once

#include "platform/Clock.h"

namespace korvalin {

/// A clock that stands until a test moves it.
class FakeClock : public Clock {
  public:
    explicit FakeClock(Date now = DateSerial(2024, 3, 15) + TimeSerial(12, 0, 0)) : now_(now) {}

    Date Now() override { return now_; }
    double BootSeconds() override { return boot_; }
    double AwakeSeconds() override { return awake_; }

    /// Time passes.
    void Advance(double seconds) {
        now_ += seconds / SecondsPerDay;
        boot_ += seconds;
        awake_ += seconds;
    }
    /// Somebody sets the wall clock (or summer time begins): no time passes.
    void SetWallClock(Date now) { now_ = now; }
    /// The machine sleeps.
    void Suspend(double seconds) {
        now_ += seconds / SecondsPerDay;
        boot_ += seconds;
    }

  private:
    Date now_;
    double boot_ = 5000;
    double awake_ = 4000;
};

} // namespace korvalin
