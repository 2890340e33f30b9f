#pragma once

#include "platform/Clock.h"

namespace korvalin {

/// Tells time that passed from a wall clock that was set.
class ClockWatch {
  public:
    explicit ClockWatch(Clock& clock);

    /// Begins anew: what happened before is no step.
    void Restart();

    /// How far the wall clock was set since the last call, in days (0: not at all). Differences below half a
    /// second are left to add up: a slowly corrected clock makes no steps.
    Date TakeStep();

  private:
    double WallAheadOfBoot() const;

    Clock& clock_;
    double offset_;
};

} // namespace korvalin
