#pragma once

#include "platform/Clock.h"

namespace korvalin {

class SystemClock : public Clock {
  public:
    /// Follows the system's time zone: one that is changed while the program runs counts from the next call
    /// on.
    Date Now() override;
    double BootSeconds() override;
    double AwakeSeconds() override;
};

} // namespace korvalin
