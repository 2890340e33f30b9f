#pragma once

#include <cstdint>

namespace korvalin {

/// Asks the X server whether a host for embedded icons is there: it owns a selection of the screen.
class XEmbedHost {
  public:
    /// False also where there is no X server.
    bool IsThere();

  private:
    std::uint32_t selection_ = 0;
};

} // namespace korvalin
