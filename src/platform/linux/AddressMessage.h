#pragma once

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

} // namespace korvalin
