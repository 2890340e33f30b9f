#pragma once

#include "platform/Clock.h"

namespace korvalin {

class SystemClock : public Clock {
  public:
    Date Now() override;
    double BootSeconds() override;
    double AwakeSeconds() override;

  private:
    double nextZoneCheck_ = 0; // seconds awake
};

} // namespace korvalin
