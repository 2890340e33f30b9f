#pragma once

#include "platform/NetworkTables.h"

struct nlmsghdr;

namespace korvalin {

/// What a message tells of a link beside its row.
struct LinkDetails {
    /// How often the link has found or lost its carrier; 0 where the kernel does not tell.
    std::uint32_t CarrierChanges = 0;
    /// The index of the bond, team or bridge that the link is a port of; 0 when it is none.
    std::uint32_t Master = 0;
};

/// Reads one message of the kernel's link table into a row, whose text's memory is used again. Hardware is
/// known only where the kernel names it (since Linux 5.14), and not that of a bond or team, which its ports
/// have. False for any other message.
bool ReadLinkMessage(const nlmsghdr& message, InterfaceRow& row, LinkDetails& details);

/// The same with all fields of the entry that the message tells: all but speed, last change and queue length.
bool ReadLinkEntry(const nlmsghdr& message, InterfaceEntry& entry, LinkDetails& details);

/// Reads the announcement that a link has gone, with its last counters. False for any other message, also for
/// one that only says that a bridge has lost a port.
bool ReadRemovedLink(const nlmsghdr& message, InterfaceRow& row);

/// The index of the link that a message of the counter table is about; 0 for any other message.
std::uint32_t LinkOfCounters(const nlmsghdr& message);

/// Takes the 64-bit counters of such a message into the link's row; false when it has none.
bool ReadCountersMessage(const nlmsghdr& message, InterfaceRow& row);

/// The interface type of one of the kernel's hardware types (ARPHRD).
std::uint32_t InterfaceTypeOf(unsigned hardwareType);

/// The operational status of one of the kernel's states (IF_OPER); `flags` are the interface's (IFF), which
/// decide where a driver does not tell its state.
OperationalStatus OperationalStatusOf(unsigned state, unsigned flags);

} // namespace korvalin
