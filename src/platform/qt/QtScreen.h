#pragma once

#include "platform/Screen.h"

namespace korvalin {

/// The primary screen as the toolkit sees it. Places of windows are kept in logical pixels, so both sizes
/// are.
class QtScreen : public Screen {
  public:
    std::optional<ScreenSize> Primary() override;
    std::optional<ScreenSize> CurrentDisplayMode() override { return Primary(); }
};

} // namespace korvalin
