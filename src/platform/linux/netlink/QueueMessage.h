#pragma once

#include <cstdint>
#include <optional>

struct nlmsghdr;

namespace korvalin {

/// What waits before a link.
struct QueueLength {
    std::uint32_t Link = 0; ///< index of the link
    std::uint32_t Packets = 0;
};

/// Reads one message of the kernel's table of queueing disciplines. nullopt for any other message and for a
/// discipline that is part of another one, which counts for it.
std::optional<QueueLength> ReadQueueMessage(const nlmsghdr& message);

} // namespace korvalin
