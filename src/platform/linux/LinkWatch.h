#pragma once

#include "platform/linux/Descriptor.h"

namespace korvalin {

/// Listens to the kernel's announcements of links that come, go or change their name, state or addresses. Their
/// counters are not announced.
class LinkWatch {
  public:
    /// True when a link has changed since the last call, and whenever that cannot be known: at the first
    /// call, when announcements were lost, when the kernel lets nobody listen.
    bool Changed();

  private:
    bool Open();
    bool Drain();

    Descriptor socket_;
};

} // namespace korvalin
