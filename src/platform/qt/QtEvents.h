#pragma once

#include "platform/Events.h"

namespace korvalin {

class QtEvents : public Events {
  public:
    void ProcessPending() override;
    void Sleep(int milliseconds) override;
};

} // namespace korvalin
