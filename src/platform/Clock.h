#pragma once

#include "base/Date.h"

namespace korvalin {

/// The system's clocks. Two of them never step: they tell a wall clock that was set from time that passed.
class Clock {
  public:
    virtual ~Clock() = default;

    /// Local wall-clock time. Steps with corrections, changes of summer time and the user's hand.
    [[nodiscard]] virtual Date Now() = 0;

    /// Seconds since the system's start, time asleep included; never steps.
    [[nodiscard]] virtual double BootSeconds() = 0;

    /// Seconds that the system was awake since its start; never steps, stands still in suspend.
    [[nodiscard]] virtual double AwakeSeconds() = 0;
};

} // namespace korvalin
