#include "platform/linux/netlink/LinkMessage.h"

#include <libmnl/libmnl.h>
#include <linux/if.h>
#include <linux/if_arp.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <sys/socket.h>

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

// 0 when it is cut short.
std::uint32_t NumberOf(const nlattr& attribute) {
    return mnl_attr_get_payload_len(&attribute) >= sizeof(std::uint32_t) ? mnl_attr_get_u32(&attribute) : 0;
}

// It may lack its zero at the end.
std::string_view TextOf(const nlattr& attribute) {
    const auto* text = static_cast<const char*>(mnl_attr_get_payload(&attribute));
    return {text, strnlen(text, mnl_attr_get_payload_len(&attribute))};
}

// What a port of a bridge carries is not counted by the bridge, at least not all of it.
int TakeKind(const nlattr* attribute, void* context) {
    if (mnl_attr_get_type(attribute) != IFLA_INFO_SLAVE_KIND) return MNL_CB_OK;
    const std::string_view kind = TextOf(*attribute);
    static_cast<InterfaceRow*>(context)->IsPort = kind == "bond" || kind == "team";
    return MNL_CB_STOP;
}

struct LinkAttributes {
    InterfaceRow& Row;
    LinkDetails& Details;
    unsigned State = IF_OPER_UNKNOWN;
};

int TakeAttribute(const nlattr* attribute, void* context) {
    auto& [row, details, state] = *static_cast<LinkAttributes*>(context);
    switch (mnl_attr_get_type(attribute)) {
    case IFLA_IFNAME: row.Description = TextOf(*attribute); break;
    case IFLA_OPERSTATE: state = mnl_attr_get_u8(attribute); break;
    case IFLA_CARRIER_CHANGES: details.CarrierChanges = NumberOf(*attribute); break;
    case IFLA_MASTER: details.Master = NumberOf(*attribute); break;
    case IFLA_PARENT_DEV_NAME: row.HasHardware = true; break;
    case IFLA_LINKINFO: mnl_attr_parse_nested(attribute, TakeKind, &row); break;
    case IFLA_STATS64: row.Counts64Bits = CopyOctets<rtnl_link_stats64>(*attribute, row); break;
    case IFLA_STATS: // 32 bits: they count only where the wide ones are missing, whichever comes first
        if (!row.Counts64Bits) CopyOctets<rtnl_link_stats>(*attribute, row);
        break;
    default: break;
    }
    return MNL_CB_OK;
}

PhysicalAddress PhysicalAddressOf(const nlattr& attribute) {
    PhysicalAddress address;
    address.Length = std::min<std::size_t>(mnl_attr_get_payload_len(&attribute), address.Bytes.size());
    std::memcpy(address.Bytes.data(), mnl_attr_get_payload(&attribute), address.Length);
    return address;
}

// The kernel counts multicasts received within the packets, and tells neither broadcasts nor what was sent to
// many. Packets of a protocol that nobody speaks are among those dropped.
template <typename Record>
void CopyPackets(const nlattr& attribute, InterfaceEntry& entry) {
    Record record{};
    std::memcpy(&record, mnl_attr_get_payload(&attribute),
                std::min<std::size_t>(mnl_attr_get_payload_len(&attribute), sizeof record));
    entry.InNUcastPkts = record.multicast;
    entry.InUcastPkts = record.rx_packets - std::min(record.multicast, record.rx_packets);
    entry.InDiscards = std::uint64_t{record.rx_dropped} + record.rx_missed_errors;
    entry.InErrors = record.rx_errors;
    entry.OutUcastPkts = record.tx_packets;
    entry.OutDiscards = record.tx_dropped;
    entry.OutErrors = record.tx_errors;
}

int TakeEntryAttribute(const nlattr* attribute, void* context) {
    auto& entry = *static_cast<InterfaceEntry*>(context);
    switch (mnl_attr_get_type(attribute)) {
    case IFLA_OPERSTATE: // the kernel knows no test that the administrator orders, but a line under test
        if (mnl_attr_get_u8(attribute) == IF_OPER_TESTING) entry.AdminStatus = AdministrativeStatus::Testing;
        break;
    case IFLA_MTU: entry.Mtu = NumberOf(*attribute); break;
    case IFLA_ADDRESS: entry.PhysAddr = PhysicalAddressOf(*attribute); break;
    case IFLA_STATS64: CopyPackets<rtnl_link_stats64>(*attribute, entry); break;
    case IFLA_STATS:
        if (!entry.Counts64Bits) CopyPackets<rtnl_link_stats>(*attribute, entry);
        break;
    default: break;
    }
    return MNL_CB_OK;
}

bool HoldsLink(const nlmsghdr& message, std::uint16_t type) {
    return message.nlmsg_type == type && message.nlmsg_len >= mnl_nlmsg_size(sizeof(ifinfomsg));
}

const ifinfomsg& LinkOf(const nlmsghdr& message) {
    return *static_cast<const ifinfomsg*>(mnl_nlmsg_get_payload(&message));
}

void ReadLink(const nlmsghdr& message, InterfaceRow& row, LinkDetails& details) {
    const ifinfomsg& link = LinkOf(message);
    row.Index = static_cast<std::uint32_t>(link.ifi_index);
    row.Type = InterfaceTypeOf(link.ifi_type);
    row.InOctets = row.OutOctets = 0;
    row.Counts64Bits = row.HasHardware = row.IsPort = false;
    row.Description.clear();
    row.Address.clear();
    details = {};
    LinkAttributes attributes{row, details};
    mnl_attr_parse(&message, sizeof(ifinfomsg), TakeAttribute, &attributes);
    row.OperStatus = OperationalStatusOf(attributes.State, link.ifi_flags);
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
    case ARPHRD_IEEE802_TR: return IfTypeTokenRing;
    case ARPHRD_FDDI: return IfTypeFddi;
    case ARPHRD_SLIP:
    case ARPHRD_CSLIP:
    case ARPHRD_SLIP6:
    case ARPHRD_CSLIP6: return IfTypeSlip;
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

bool ReadLinkMessage(const nlmsghdr& message, InterfaceRow& row, LinkDetails& details) {
    if (!HoldsLink(message, RTM_NEWLINK)) return false;
    ReadLink(message, row, details);
    return true;
}

bool ReadLinkEntry(const nlmsghdr& message, InterfaceEntry& entry, LinkDetails& details) {
    entry = {};
    if (!ReadLinkMessage(message, entry, details)) return false;
    entry.AdminStatus = (LinkOf(message).ifi_flags & IFF_UP) != 0 ? AdministrativeStatus::Enabled
                                                                  : AdministrativeStatus::Disabled;
    mnl_attr_parse(&message, sizeof(ifinfomsg), TakeEntryAttribute, &entry);
    return true;
}

bool ReadRemovedLink(const nlmsghdr& message, InterfaceRow& row) {
    // A bridge says so too when a port leaves it, in its own family.
    if (!HoldsLink(message, RTM_DELLINK) || LinkOf(message).ifi_family != AF_UNSPEC) return false;
    LinkDetails details;
    ReadLink(message, row, details);
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
