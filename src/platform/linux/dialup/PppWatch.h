#pragma once

#include "platform/linux/files/Descriptor.h"

namespace korvalin {

/// Listens to the kernel, from its construction on, for a link of PPP. One is made when the other side has
/// been found, before anything is negotiated with it.
class PppWatch {
  public:
    PppWatch();

    /// Whether a link of PPP was announced; also when that cannot be known.
    bool HasSeenLink();

  private:
    Descriptor socket_;
    bool seen_ = false;
};

} // namespace korvalin
