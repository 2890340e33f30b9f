#pragma once

#include "platform/Events.h"
#include "platform/Screen.h"

#include <chrono>
#include <thread>

namespace korvalin {

/// The command line has no screen: settings that depend on one are shown as they are stored.
class NoScreen : public Screen {
  public:
    std::optional<ScreenSize> Primary() override { return std::nullopt; }
    std::optional<ScreenSize> CurrentDisplayMode() override { return std::nullopt; }
};

/// Waiting without windows that would have to stay alive.
class PlainEvents : public Events {
  public:
    void ProcessPending() override {}
    void Sleep(int milliseconds) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }
};

} // namespace korvalin
