#pragma once

#include "platform/linux/netlink/NetlinkSocket.h"

#include <cstdint>
#include <optional>

namespace korvalin {

/// Reads from a message of the kernel's address table when the address was given to its link, in hundredths
/// of a second that the system was awake. nullopt for another link, another message, and an address that
/// reaches no further than the link.
std::optional<std::uint32_t> ReadAddressBirth(const nlmsghdr& message, std::uint32_t link);

/// How many seconds the system was awake since the link got the oldest of its addresses: that is when a
/// connection over it came up. nullopt when it has none. `awakeSeconds` is now.
std::optional<double> OldestAddressAge(NetlinkSocket& socket, std::uint32_t link, double awakeSeconds);

} // namespace korvalin
