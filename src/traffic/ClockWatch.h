#pragma once

#include "platform/Clock.h"

namespace korvalin {

/// Tells time that passed from a wall clock that was set, and from time spent asleep.
class ClockWatch {
  public:
    explicit ClockWatch(Clock& clock);

    /// How far the wall clock was set since the last call, in days (0: not at all). Differences below half a
    /// second are left to add up: a slowly corrected clock makes no steps.
    Date TakeStep();

    /// Seconds by which the wall clock is ahead of the time this program was awake for, since the watch
    /// began: all steps and all suspends. What is measured in wall-clock seconds less this never jumps.
    double JumpedSeconds() const;

  private:
    double WallSeconds() const;

    Clock& clock_;
    double bootOffset_;
    double awakeOffset_;
};

} // namespace korvalin
