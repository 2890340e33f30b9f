#include "platform/linux/LinkMessage.h"

#include <libmnl/libmnl.h>
#include <linux/if.h>
#include <linux/if_arp.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>

#include <cstddef>
#include <cstring>

namespace korvalin {
namespace {

// Attributes are aligned to 4 bytes only and may be shorter or longer than this header's record: what is
// there is copied.
template <typename Record>
bool CopyOctets(const nlattr& attribute, InterfaceRow& row) {
    Record record{};
    constexpr std::size_t needed = offsetof(Record, tx_bytes) + sizeof record.tx_bytes;
    if (mnl_attr_get_payload_len(&attribute) < needed) return false;
    std::memcpy(&record, mnl_attr_get_payload(&attribute), needed);
    row.InOctets = record.rx_bytes;
    row.OutOctets = record.tx_bytes;
    return true;
}

// The name, when it ends within its attribute.
void CopyName(const nlattr& attribute, InterfaceRow& row) {
    const auto* name = static_cast<const char*>(mnl_attr_get_payload(&attribute));
    row.Description.assign(name, strnlen(name, mnl_attr_get_payload_len(&attribute)));
}

struct LinkAttributes {
    InterfaceRow& Row;
    unsigned State = IF_OPER_UNKNOWN;
};

int TakeAttribute(const nlattr* attribute, void* context) {
    auto& [row, state] = *static_cast<LinkAttributes*>(context);
    switch (mnl_attr_get_type(attribute)) {
    case IFLA_IFNAME: CopyName(*attribute, row); break;
    case IFLA_OPERSTATE: state = mnl_attr_get_u8(attribute); break;
    case IFLA_STATS64: row.Counts64Bits = CopyOctets<rtnl_link_stats64>(*attribute, row); break;
    case IFLA_STATS: // 32 bits: they count only where the wide ones are missing, whichever comes first
        if (!row.Counts64Bits) CopyOctets<rtnl_link_stats>(*attribute, row);
        break;
    default: break;
    }
    return MNL_CB_OK;
}

int TakeCounters(const nlattr* attribute, void* context) {
    auto& row = *static_cast<InterfaceRow*>(context);
    if (mnl_attr_get_type(attribute) != IFLA_STATS_LINK_64) return MNL_CB_OK;
    row.Counts64Bits = CopyOctets<rtnl_link_stats64>(*attribute, row);
    return MNL_CB_STOP;
}

} // namespace

std::uint32_t InterfaceTypeOf(unsigned hardwareType) {
    switch (hardwareType) {
    case ARPHRD_ETHER: return IfTypeEthernet;
    case ARPHRD_LOOPBACK: return IfTypeSoftwareLoopback;
    case ARPHRD_PPP: return IfTypePpp;
    case ARPHRD_NONE: // tun, wireguard
    case ARPHRD_TUNNEL:
    case ARPHRD_TUNNEL6:
    case ARPHRD_SIT:
    case ARPHRD_IPGRE:
    case ARPHRD_IP6GRE: return IfTypeTunnel;
    default: return IfTypeOther;
    }
}

OperationalStatus OperationalStatusOf(unsigned state, unsigned flags) {
    switch (state) {
    case IF_OPER_UP: return OperationalStatus::Operational;
    case IF_OPER_DORMANT: return OperationalStatus::Connecting;
    case IF_OPER_DOWN:
    case IF_OPER_LOWERLAYERDOWN: return OperationalStatus::Disconnected;
    case IF_OPER_UNKNOWN: // loopback, tun, ppp
        return (flags & IFF_UP) != 0 && (flags & IFF_RUNNING) != 0 ? OperationalStatus::Operational
                                                                   : OperationalStatus::Disconnected;
    default: return OperationalStatus::NonOperational;
    }
}

bool ReadLinkMessage(const nlmsghdr& message, InterfaceRow& row) {
    if (message.nlmsg_type != RTM_NEWLINK || message.nlmsg_len < mnl_nlmsg_size(sizeof(ifinfomsg)))
        return false;
    const auto* link = static_cast<const ifinfomsg*>(mnl_nlmsg_get_payload(&message));
    row.Index = static_cast<std::uint32_t>(link->ifi_index);
    row.Type = InterfaceTypeOf(link->ifi_type);
    row.InOctets = row.OutOctets = 0;
    row.Counts64Bits = false;
    row.Description.clear();
    row.Address.clear();
    LinkAttributes attributes{row};
    mnl_attr_parse(&message, sizeof(ifinfomsg), TakeAttribute, &attributes);
    row.OperStatus = OperationalStatusOf(attributes.State, link->ifi_flags);
    return true;
}

std::uint32_t LinkOfCounters(const nlmsghdr& message) {
    if (message.nlmsg_type != RTM_NEWSTATS || message.nlmsg_len < mnl_nlmsg_size(sizeof(if_stats_msg)))
        return 0;
    return static_cast<const if_stats_msg*>(mnl_nlmsg_get_payload(&message))->ifindex;
}

bool ReadCountersMessage(const nlmsghdr& message, InterfaceRow& row) {
    row.Counts64Bits = false;
    mnl_attr_parse(&message, sizeof(if_stats_msg), TakeCounters, &row);
    return row.Counts64Bits;
}

} // namespace korvalin
