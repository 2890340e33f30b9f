#pragma once

#include "platform/Screen.h"

namespace korvalin {

class FakeScreen : public Screen {
  public:
    std::optional<ScreenSize> Size = ScreenSize{1280, 1024};
    std::optional<ScreenSize> Mode = ScreenSize{1280, 1024};

    std::optional<ScreenSize> Primary() override { return Size; }
    std::optional<ScreenSize> CurrentDisplayMode() override { return Mode; }
};

} // namespace korvalin
