// Messages of the kernel whose inner lengths and types are anything.
#include "Require.h"
#include "platform/linux/netlink/AddressMessage.h"
#include "platform/linux/netlink/LinkMessage.h"
#include "platform/linux/netlink/QueueMessage.h"

#include <cstring>
#include <linux/netlink.h>
#include <vector>

using namespace korvalin;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    if (size < sizeof(nlmsghdr)) return 0;
    // The socket hands out whole messages: the header's length is right, and the start aligned.
    std::vector<std::uint64_t> room((size + sizeof(std::uint64_t) - 1) / sizeof(std::uint64_t));
    std::memcpy(room.data(), data, size);
    auto& message = *reinterpret_cast<nlmsghdr*>(room.data());
    message.nlmsg_len = static_cast<std::uint32_t>(size);
    InterfaceRow row;
    InterfaceEntry entry;
    LinkDetails details;
    const bool isLink = ReadLinkMessage(message, row, details);
    Require(ReadLinkEntry(message, entry, details) == isLink);
    Require(!(isLink && ReadRemovedLink(message, row)));
    static_cast<void>(LinkOfCounters(message));
    static_cast<void>(ReadCountersMessage(message, row));
    static_cast<void>(ReadAddressMessage(message));
    IpAddressRow four;
    UnicastIpAddressRow six;
    Require(!(ReadAddressRow(message, four) && ReadAddressRow(message, six)));
    static_cast<void>(ReadQueueMessage(message));
    return 0;
}
