#include "platform/linux/netlink/AddressMessage.h"

#include <libmnl/libmnl.h>
#include <linux/if_addr.h>
#include <linux/rtnetlink.h>

#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <netinet/ip.h>

namespace korvalin {
namespace {

// Attributes that are of use, where they are long enough.
struct AddressAttributes {
    const void* Local = nullptr;
    const void* Broadcast = nullptr;
    std::optional<std::uint32_t> Flags;
    std::size_t AddressLength = 0; ///< that the version demands
};

// IFA_LOCAL is the link's own address; without a peer at the other end IFA_ADDRESS is the same.
int TakeAttribute(const nlattr* attribute, void* context) {
    auto& taken = *static_cast<AddressAttributes*>(context);
    const std::size_t length = mnl_attr_get_payload_len(attribute);
    const auto type = mnl_attr_get_type(attribute);
    if (type == IFA_FLAGS && length >= sizeof(std::uint32_t)) taken.Flags = mnl_attr_get_u32(attribute);
    if (length < taken.AddressLength) return MNL_CB_OK;
    const void* address = mnl_attr_get_payload(attribute);
    if (type == IFA_LOCAL || (type == IFA_ADDRESS && taken.Local == nullptr)) taken.Local = address;
    if (type == IFA_BROADCAST) taken.Broadcast = address;
    return MNL_CB_OK;
}

// The header of a message about an address of IPv4 or IPv6, with its attributes; nullptr for any other.
const ifaddrmsg* ReadAttributes(const nlmsghdr& message, AddressAttributes& taken) {
    if (message.nlmsg_type != RTM_NEWADDR || message.nlmsg_len < mnl_nlmsg_size(sizeof(ifaddrmsg)))
        return nullptr;
    const auto* header = static_cast<const ifaddrmsg*>(mnl_nlmsg_get_payload(&message));
    if (header->ifa_family != AF_INET && header->ifa_family != AF_INET6) return nullptr;
    taken.AddressLength = header->ifa_family == AF_INET ? sizeof(in_addr) : sizeof(in6_addr);
    mnl_attr_parse(&message, sizeof(ifaddrmsg), TakeAttribute, &taken);
    return taken.Local != nullptr ? header : nullptr;
}

std::string TextOf(int family, const void* address) {
    std::array<char, INET6_ADDRSTRLEN> text{};
    inet_ntop(family, address, text.data(), text.size());
    return text.data();
}

Ip4Address MaskOf(unsigned prefixLength) {
    Ip4Address mask{};
    for (unsigned bit = 0; bit < prefixLength && bit < 32; ++bit)
        mask[bit / 8] = static_cast<std::uint8_t>(mask[bit / 8] | (0x80U >> (bit % 8)));
    return mask;
}

// Every address that is not there for good came by a protocol that may take it away again.
std::uint16_t TypeOf(std::uint32_t flags) {
    unsigned type = 0;
    if ((flags & IFA_F_SECONDARY) == 0) type |= IpAddressPrimary;
    if ((flags & IFA_F_PERMANENT) == 0) type |= IpAddressDynamic;
    return static_cast<std::uint16_t>(type);
}

} // namespace

std::optional<LinkAddress> ReadAddressMessage(const nlmsghdr& message) {
    AddressAttributes taken;
    const ifaddrmsg* header = ReadAttributes(message, taken);
    if (header == nullptr || header->ifa_scope >= RT_SCOPE_LINK) return std::nullopt;
    return LinkAddress{header->ifa_index, TextOf(header->ifa_family, taken.Local)};
}

bool ReadAddressRow(const nlmsghdr& message, IpAddressRow& row) {
    AddressAttributes taken;
    const ifaddrmsg* header = ReadAttributes(message, taken);
    if (header == nullptr || header->ifa_family != AF_INET) return false;
    std::memcpy(row.Address.data(), taken.Local, row.Address.size());
    if (taken.Broadcast != nullptr) std::memcpy(row.Broadcast.data(), taken.Broadcast, row.Broadcast.size());
    row.Index = header->ifa_index;
    row.Mask = MaskOf(header->ifa_prefixlen);
    row.ReasmSize = IP_MAXPACKET; // this system puts together whatever IPv4 can carry
    row.Type = TypeOf(taken.Flags.value_or(header->ifa_flags));
    return true;
}

bool ReadAddressRow(const nlmsghdr& message, UnicastIpAddressRow& row) {
    AddressAttributes taken;
    const ifaddrmsg* header = ReadAttributes(message, taken);
    if (header == nullptr || header->ifa_family != AF_INET6) return false;
    std::memcpy(row.Address.data(), taken.Local, row.Address.size());
    row.Text = TextOf(AF_INET6, taken.Local);
    row.Index = header->ifa_index;
    row.OnLinkPrefixLength = header->ifa_prefixlen;
    return true;
}

} // namespace korvalin
