#pragma once

#include "platform/Clock.h"

namespace korvalin {

class SystemClock : public Clock {
  public:
    /// Follows the system's time zone: one that is changed while the program runs counts within a second.
    Date Now() override;
    double BootSeconds() override;
    double AwakeSeconds() override;

  private:
    double nextZoneCheck_ = 0; // seconds awake
};

} // namespace korvalin
