#pragma once

#include "platform/NetworkTables.h"

struct nlmsghdr;

namespace korvalin {

/// Reads one message of the kernel's link table into a row, whose text's memory is used again.
/// `carrierChanges` is how often the link has found or lost its carrier, 0 where the kernel does not tell.
/// False for any other message.
bool ReadLinkMessage(const nlmsghdr& message, InterfaceRow& row, std::uint32_t& carrierChanges);

/// The same with all fields of the entry that the message tells: all but speed, last change and queue length.
bool ReadLinkEntry(const nlmsghdr& message, InterfaceEntry& entry, std::uint32_t& carrierChanges);

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
