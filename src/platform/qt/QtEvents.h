#pragma once

#include "platform/Events.h"

namespace korvalin {

/// The toolkit's event loop.
class QtEvents : public Events {
  public:
    void ProcessPending() override;
    void Sleep(int milliseconds) override;
    void Wait(int milliseconds) override;
};

} // namespace korvalin
