#pragma once

#include "platform/NetworkTables.h"
#include "platform/linux/files/Descriptor.h"

#include <cstddef>
#include <vector>

namespace korvalin {

/// Listens to the kernel's announcements of links that come, go or change their name, state or addresses.
/// Their counters are not announced, except the last ones of a link that goes.
class LinkWatch {
  public:
    /// True when a link has changed since the last call, and whenever that cannot be known: at the first
    /// call, when announcements were lost, when the kernel lets nobody listen.
    bool Changed();

    /// The links whose end Changed has heard of since the last call, in the order in which they went, as the
    /// kernel describes them then. Where announcements are lost some are missing.
    std::vector<InterfaceRow> TakeRemoved();

  private:
    bool Open();
    bool Drain();
    void Take(std::size_t bytes);

    Descriptor socket_;
    std::vector<char> buffer_;
    std::vector<InterfaceRow> removed_;
};

} // namespace korvalin
