#pragma once

#include "platform/Events.h"

#include <chrono>
#include <thread>

namespace korvalin {

/// Waiting without windows that would have to stay alive.
class PlainEvents : public Events {
  public:
    void ProcessPending() override {}
    void Sleep(int milliseconds) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }
};

} // namespace korvalin
