#include "platform/linux/NetlinkNetworkTables.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include <libmnl/libmnl.h>
#include <linux/if.h>
#include <linux/if_arp.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>

namespace korvalin {
namespace {

std::uint32_t TypeOf(unsigned short arpHardware) {
    switch (arpHardware) {
    case ARPHRD_LOOPBACK: return IfTypeSoftwareLoopback;
    case ARPHRD_ETHER: return IfTypeEthernet;
    case ARPHRD_PPP: return IfTypePpp;
    case ARPHRD_NONE: // tun, wireguard
    case ARPHRD_TUNNEL:
    case ARPHRD_TUNNEL6:
    case ARPHRD_SIT:
    case ARPHRD_IPGRE: return IfTypeTunnel;
    default: return IfTypeOther;
    }
}

OperationalStatus StatusOf(std::uint8_t state, unsigned flags) {
    switch (state) {
    case IF_OPER_UP: return OperationalStatus::Operational;
    case IF_OPER_DORMANT:
    case IF_OPER_TESTING: return OperationalStatus::Connecting;
    case IF_OPER_DOWN:
    case IF_OPER_LOWERLAYERDOWN: return OperationalStatus::Disconnected;
    case IF_OPER_UNKNOWN: // drivers that do not tell, tun and loopback among them
        return (flags & IFF_RUNNING) != 0 ? OperationalStatus::Operational : OperationalStatus::Disconnected;
    default: return OperationalStatus::NonOperational;
    }
}

// The attributes of a link message that are used, each null when missing or too short.
struct LinkAttributes {
    const nlattr* Name = nullptr;
    const nlattr* State = nullptr;
    const nlattr* Counters64 = nullptr;
    const nlattr* Counters32 = nullptr;
};

LinkAttributes Attributes(const nlmsghdr& message) {
    LinkAttributes found;
    const auto* attribute = static_cast<const nlattr*>(mnl_nlmsg_get_payload_offset(&message, sizeof(ifinfomsg)));
    const auto* end = static_cast<const char*>(mnl_nlmsg_get_payload_tail(&message));
    for (; mnl_attr_ok(attribute, static_cast<int>(end - reinterpret_cast<const char*>(attribute)));
         attribute = mnl_attr_next(attribute)) {
        const std::size_t length = mnl_attr_get_payload_len(attribute);
        switch (mnl_attr_get_type(attribute)) {
        case IFLA_IFNAME: found.Name = attribute; break;
        case IFLA_OPERSTATE: found.State = length >= 1 ? attribute : nullptr; break;
        // Only the first counters are read, so older kernels' shorter records serve as well.
        case IFLA_STATS64: found.Counters64 = length >= 4 * sizeof(std::uint64_t) ? attribute : nullptr; break;
        case IFLA_STATS: found.Counters32 = length >= 4 * sizeof(std::uint32_t) ? attribute : nullptr; break;
        default: break;
        }
    }
    return found;
}

// Packets received, packets sent, bytes received, bytes sent: how both records of if_link.h begin. The attribute is
// aligned to 4 bytes only, so it is copied.
template <typename Counter>
void ReadCounters(const nlattr* attribute, InterfaceRow& row) {
    std::array<Counter, 4> counters{};
    std::memcpy(counters.data(), mnl_attr_get_payload(attribute), sizeof counters);
    row.InOctets = counters[2];
    row.OutOctets = counters[3];
}

// Fills the row in place: a name that did not change keeps its storage.
void ReadLink(const nlmsghdr& message, InterfaceRow& row) {
    const auto& link = *static_cast<const ifinfomsg*>(mnl_nlmsg_get_payload(&message));
    const LinkAttributes attributes = Attributes(message);
    row.Index = static_cast<std::uint32_t>(link.ifi_index);
    row.Type = TypeOf(link.ifi_type);
    row.OperStatus = StatusOf(attributes.State != nullptr ? mnl_attr_get_u8(attributes.State) : std::uint8_t{IF_OPER_UNKNOWN},
                              link.ifi_flags);
    row.Description = attributes.Name != nullptr ? mnl_attr_get_str(attributes.Name) : "";
    row.Counts64Bits = attributes.Counters64 != nullptr;
    row.InOctets = 0;
    row.OutOctets = 0;
    if (row.Counts64Bits) {
        ReadCounters<std::uint64_t>(attributes.Counters64, row);
    } else if (attributes.Counters32 != nullptr) {
        ReadCounters<std::uint32_t>(attributes.Counters32, row);
    }
}

// The value of a column in a table of /proc/net/snmp: one line with the names, the next with the numbers.
std::uint32_t Column(const std::vector<std::string_view>& names, const std::vector<std::string_view>& values,
                     std::string_view name) {
    const auto at = static_cast<std::size_t>(std::find(names.begin(), names.end(), name) - names.begin());
    if (at >= names.size() || at >= values.size()) return 0;
    return static_cast<std::uint32_t>(std::strtoull(std::string(values[at]).c_str(), nullptr, 10));
}

// "TCP: inuse 12 orphan 0 ..."
std::uint32_t SocketsInUse(const std::filesystem::path& file, std::string_view protocol) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string name;
        std::string field;
        std::uint32_t count = 0;
        if (words >> name >> field >> count && name == protocol && field == "inuse") return count;
    }
    return 0;
}

} // namespace

NetlinkNetworkTables::NetlinkNetworkTables(std::filesystem::path procNet) : procNet_(std::move(procNet)) {}

int NetlinkNetworkTables::GetIfTable(std::vector<InterfaceRow>& rows, bool sorted) {
    std::size_t count = 0;
    const int error = socket_.Dump(
        RTM_GETLINK,
        [](nlmsghdr& message) {
            auto* link = static_cast<ifinfomsg*>(mnl_nlmsg_put_extra_header(&message, sizeof(ifinfomsg)));
            link->ifi_family = AF_UNSPEC;
        },
        [&] { count = 0; },
        [&](const nlmsghdr& message) {
            if (message.nlmsg_type != RTM_NEWLINK) return;
            if (count == rows.size()) rows.emplace_back();
            ReadLink(message, rows[count++]);
        });
    rows.resize(error == 0 ? count : 0);
    const auto byIndex = [](const InterfaceRow& a, const InterfaceRow& b) { return a.Index < b.Index; };
    if (sorted && !std::is_sorted(rows.begin(), rows.end(), byIndex)) std::sort(rows.begin(), rows.end(), byIndex);
    return error;
}

int NetlinkNetworkTables::GetTcpStatistics(TcpStatistics& statistics) {
    statistics = {};
    std::ifstream lines(procNet_ / "snmp");
    if (!lines) return ENOENT;
    std::string names;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("Tcp:")) continue;
        if (names.empty()) {
            names = line;
            continue;
        }
        const auto nameFields = Split(names, ' ', 100);
        const auto valueFields = Split(line, ' ', 100);
        statistics.CurrEstab = Column(nameFields, valueFields, "CurrEstab");
        statistics.InSegs = Column(nameFields, valueFields, "InSegs");
        statistics.OutSegs = Column(nameFields, valueFields, "OutSegs");
        break;
    }
    statistics.NumConns =
        SocketsInUse(procNet_ / "sockstat", "TCP:") + SocketsInUse(procNet_ / "sockstat6", "TCP6:");
    return 0;
}

} // namespace korvalin
