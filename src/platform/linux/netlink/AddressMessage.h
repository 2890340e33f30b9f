#pragma once

#include "platform/NetworkTables.h"

#include <cstdint>
#include <optional>
#include <string>

struct nlmsghdr;

namespace korvalin {

/// An address of a link, as rtnetlink(7) tells it.
struct LinkAddress {
    std::uint32_t Link = 0; ///< index of the link
    std::string Text;
};

/// Reads one message of the kernel's address table. nullopt for any other message and for an address that
/// reaches no further than the link.
std::optional<LinkAddress> ReadAddressMessage(const nlmsghdr& message);

/// Reads a message about an IPv4 address into a new row. False for any other message.
bool ReadAddressRow(const nlmsghdr& message, IpAddressRow& row);

/// Reads a message about an IPv6 address into a new row. False for any other message.
bool ReadAddressRow(const nlmsghdr& message, UnicastIpAddressRow& row);

} // namespace korvalin
