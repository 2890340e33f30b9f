#include "platform/linux/AddressMessage.h"

#include <libmnl/libmnl.h>
#include <linux/if_addr.h>
#include <linux/rtnetlink.h>

#include <arpa/inet.h>
#include <array>

namespace korvalin {
namespace {

// IFA_LOCAL is the link's own address; without a peer at the other end IFA_ADDRESS is the same.
int TakeAddress(const nlattr* attribute, void* context) {
    const nlattr** found = static_cast<const nlattr**>(context);
    const auto type = mnl_attr_get_type(attribute);
    if (type == IFA_LOCAL || (type == IFA_ADDRESS && *found == nullptr)) *found = attribute;
    return MNL_CB_OK;
}

} // namespace

std::optional<LinkAddress> ReadAddressMessage(const nlmsghdr& message) {
    if (message.nlmsg_type != RTM_NEWADDR || message.nlmsg_len < mnl_nlmsg_size(sizeof(ifaddrmsg)))
        return std::nullopt;
    const auto* header = static_cast<const ifaddrmsg*>(mnl_nlmsg_get_payload(&message));
    const nlattr* attribute = nullptr;
    mnl_attr_parse(&message, sizeof(ifaddrmsg), TakeAddress, &attribute);
    const bool isVersion4 = header->ifa_family == AF_INET;
    const std::size_t length = isVersion4 ? sizeof(in_addr) : sizeof(in6_addr);
    if ((!isVersion4 && header->ifa_family != AF_INET6) || header->ifa_scope >= RT_SCOPE_LINK ||
        attribute == nullptr || mnl_attr_get_payload_len(attribute) < length) {
        return std::nullopt;
    }
    std::array<char, INET6_ADDRSTRLEN> text{};
    inet_ntop(header->ifa_family, mnl_attr_get_payload(attribute), text.data(), text.size());
    return LinkAddress{header->ifa_index, text.data()};
}

} // namespace korvalin
