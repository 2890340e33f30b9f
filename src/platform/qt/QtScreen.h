#pragma once

#include "platform/Screen.h"

namespace korvalin {

class QtScreen : public Screen {
  public:
    std::optional<ScreenSize> Primary() override;
    /// The same as Primary: the places of windows are kept in logical pixels, whatever the mode's resolution.
    std::optional<ScreenSize> CurrentDisplayMode() override { return Primary(); }
};

} // namespace korvalin
