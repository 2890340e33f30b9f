#pragma once

#include "platform/Screen.h"

namespace korvalin {

/// The command line has no screen: settings that depend on one are shown as they are stored.
class NoScreen : public Screen {
  public:
    std::optional<ScreenSize> Primary() override { return std::nullopt; }
    std::optional<ScreenSize> CurrentDisplayMode() override { return std::nullopt; }
};

} // namespace korvalin
