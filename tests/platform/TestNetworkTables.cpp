#include "fakes/TemporaryFolder.h"
#include "platform/linux/netlink/LinkHardware.h"
#include "platform/linux/netlink/LinkMessage.h"
#include "platform/linux/netlink/NetlinkNetworkTables.h"

#include <fmt/format.h>
#include <linux/if.h>
#include <linux/if_arp.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>

#include <cstring>
#include <sys/socket.h>

using namespace korvalin;

namespace {

// A link's message as an older kernel, or none at all, would send it.
class LinkMessage {
  public:
    explicit LinkMessage(std::uint16_t hardwareType, unsigned flags = 0) {
        const ifinfomsg record{AF_UNSPEC, 0, hardwareType, 7, flags, 0};
        bytes_.resize(NLMSG_SPACE(sizeof record));
        std::memcpy(NLMSG_DATA(Header()), &record, sizeof record);
        Header()->nlmsg_type = RTM_NEWLINK;
    }
    LinkMessage& Add(std::uint16_t type, const void* data, std::size_t size) {
        rtattr attribute{static_cast<std::uint16_t>(RTA_LENGTH(size)), type};
        const std::size_t begin = bytes_.size();
        bytes_.resize(begin + RTA_SPACE(size));
        std::memcpy(bytes_.data() + begin, &attribute, sizeof attribute);
        std::memcpy(bytes_.data() + begin + RTA_LENGTH(0), data, size);
        return *this;
    }
    const nlmsghdr& Get() {
        Header()->nlmsg_len = static_cast<std::uint32_t>(bytes_.size());
        return *Header();
    }
    InterfaceRow Read() {
        InterfaceRow row;
        EXPECT_TRUE(ReadLinkMessage(Get(), row, Details));
        return row;
    }
    InterfaceEntry ReadEntry() {
        InterfaceEntry entry;
        EXPECT_TRUE(ReadLinkEntry(Get(), entry, Details));
        return entry;
    }
    LinkDetails Details;

  private:
    nlmsghdr* Header() { return reinterpret_cast<nlmsghdr*>(bytes_.data()); }
    std::vector<char> bytes_;
};

TEST(NetworkTables, TakesTheWideCountersWhereThereAreAny) {
    rtnl_link_stats64 wide{};
    wide.rx_bytes = 5'000'000'000;
    wide.tx_bytes = 6'000'000'000;
    rtnl_link_stats narrow{};
    narrow.rx_bytes = 705'032'704;
    for (const bool wideFirst : {false, true}) {
        LinkMessage message(ARPHRD_ETHER);
        if (wideFirst) message.Add(IFLA_STATS64, &wide, sizeof wide);
        message.Add(IFLA_STATS, &narrow, sizeof narrow);
        EXPECT_EQ(message.Read().Counts64Bits, wideFirst);
        EXPECT_EQ(message.Read().InOctets, wideFirst ? wide.rx_bytes : narrow.rx_bytes);
        EXPECT_EQ(message.Add(IFLA_STATS64, &wide, sizeof wide).Read().OutOctets, wide.tx_bytes);
    }
}

std::string Attribute(std::uint16_t type, const std::string& text) {
    const rtattr head{static_cast<std::uint16_t>(RTA_LENGTH(text.size())), type};
    std::string bytes(reinterpret_cast<const char*>(&head), sizeof head);
    bytes += text;
    bytes.resize(RTA_ALIGN(bytes.size()));
    return bytes;
}

TEST(NetworkTables, ALinksMessageTellsItsTypeItsStatusItsDeviceAndWhosePortItIs) {
    constexpr unsigned up = IFF_UP, running = IFF_UP | IFF_RUNNING; // decide where no state is told
    constexpr auto operational = OperationalStatus::Operational;
    constexpr auto disconnected = OperationalStatus::Disconnected;
    constexpr std::uint32_t master = 9;
    struct {
        std::uint16_t HardwareType;
        unsigned Flags;
        const char *Kind, *PortKind, *Device;
        std::uint32_t Type;
        OperationalStatus Status;
        bool HasHardware, IsPort;
    } const rows[] = {
        {ARPHRD_ETHER, running, "", "", "0000:00:03.0", IfTypeEthernet, operational, true, false},
        {ARPHRD_PPP, running, "wwan", "", "wwan0", IfTypePpp, operational, true, false},
        {ARPHRD_PPP, up, "", "", "", IfTypePpp, disconnected, false, false},
        {ARPHRD_SIT, 0, "bond", "", "", IfTypeTunnel, disconnected, false, false},
        {ARPHRD_ETHER, running, "", "bond", "1-2:1.0", IfTypeEthernet, operational, true, true},
        {ARPHRD_FDDI, running, "veth", "team", "", IfTypeFddi, operational, false, true},
        {ARPHRD_SLIP, running, "", "bridge", "virtio2", IfTypeSlip, operational, true, false},
        {ARPHRD_IEEE802_TR, running, "", "bonding", "", IfTypeTokenRing, operational, false, false}};
    for (const auto& row : rows) {
        std::string info = Attribute(IFLA_INFO_KIND, row.Kind);
        LinkMessage message(row.HardwareType, row.Flags);
        if (*row.PortKind != 0) {
            info += Attribute(IFLA_INFO_SLAVE_KIND, row.PortKind);
            message.Add(IFLA_MASTER, &master, sizeof master);
        }
        message.Add(IFLA_LINKINFO, info.data(), info.size()).Add(IFLA_IFNAME, "line7", 6);
        if (*row.Device != 0) message.Add(IFLA_PARENT_DEV_NAME, row.Device, std::strlen(row.Device) + 1);
        const InterfaceRow read = message.Read();
        SCOPED_TRACE(fmt::format("{} of {} {}", &row - rows, row.Kind, row.PortKind));
        EXPECT_EQ(read.Description, "line7");
        EXPECT_EQ(read.Type, row.Type);
        EXPECT_EQ(read.OperStatus, row.Status);
        EXPECT_EQ(read.HasHardware, row.HasHardware);
        EXPECT_EQ(read.IsPort, row.IsPort);
        EXPECT_EQ(message.Details.Master, *row.PortKind != 0 ? master : 0);
    }
}

TEST(NetworkTables, NothingIsReadBeyondTheEndOfAnAttribute) {
    rtnl_link_stats64 wide{};
    wide.rx_bytes = wide.rx_packets = 100;
    wide.multicast = 130;
    const std::string info = Attribute(IFLA_INFO_SLAVE_KIND, "bond");
    LinkMessage message(ARPHRD_ETHER);
    const InterfaceEntry entry = message.Add(IFLA_STATS64, &wide, 24)
                                     .Add(IFLA_LINKINFO, info.data(), 6)
                                     .Add(IFLA_MASTER, &wide, 2)
                                     .Add(IFLA_MTU, &wide, 2)
                                     .Add(IFLA_ADDRESS, "\1\2\3\4\5\6\7\10\11\12", 10)
                                     .ReadEntry();
    EXPECT_TRUE(entry.InOctets == 0 && entry.Mtu == 0 && !entry.IsPort && message.Details.Master == 0);
    EXPECT_EQ(entry.PhysAddr.Bytes, (std::array<std::uint8_t, 8>{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(LinkMessage(ARPHRD_ETHER).Add(IFLA_STATS64, &wide, sizeof wide).ReadEntry().InUcastPkts, 0U)
        << "no more multicasts than packets";
}

TEST(LinkHardware, IsBehindABondWhenOneOfItsPortsHasIt) {
    const TemporaryFolder net;
    for (const char* name : {"lo", "eth0", "eth1"})
        std::filesystem::create_directories(net.Path() / name / "device");
    struct Link {
        const char* Name;
        std::uint32_t BondIndex;
        bool IsNamed; ///< the message names the device
        bool HasHardware;
    };
    const std::vector<Link> looks[] = {
        // an older kernel
        {{"lo", 0, false, false},
         {"bond0", 0, false, true},
         {"eth0", 2, false, true},
         {"veth0", 2, false, false}},
        // one that names every device: nothing is looked up
        {{"veth0", 3, false, false},
         {"eth1", 0, false, false},
         {"bond0", 0, false, false},
         {"eth0", 5, true, true},
         {"bond1", 0, false, true}},
        // a bond in another network
        {{"eth0", 9, false, true}},
    };
    LinkHardware hardware(net.Path());
    for (const auto& links : looks) {
        std::vector<InterfaceRow> rows;
        hardware.BeginLook();
        for (const auto& [name, bond, isNamed, expected] : links) {
            const auto type = std::string_view(name) == "lo" ? IfTypeSoftwareLoopback : IfTypeEthernet;
            rows.push_back({static_cast<std::uint32_t>(rows.size() + 1), type, OperationalStatus::Operational,
                            0, 0, true, name, "", isNamed, bond != 0});
            hardware.Note(rows.back(), {0, bond});
        }
        hardware.Complete(rows);
        for (std::size_t i = 0; i < rows.size(); ++i)
            EXPECT_EQ(rows[i].HasHardware, links[i].HasHardware) << rows[i].Description;
    }
}

TEST(TcpStatistics, AreFoundByTheNamesOfTheirColumns) {
    const TemporaryFolder proc;
    NetlinkNetworkTables tables(proc.Path());
    EXPECT_EQ(tables.GetTcpStatistics().NumConns, 0U);
    proc.Write("snmp", "Tcp: CurrEstab\n");
    proc.Write("snmp", "Tcp: OutSegs NewOne CurrEstab\nTcp: 5 6 7\nUdp: InSegs\nUdp: 1\n");
    proc.Write("sockstat", "sockets: used 310\nTCP: inuse 5 orphan 0 tw 2\nUDP: inuse 99\n");
    proc.Write("sockstat6", "TCP6: inuse 3\nUDP6: inuse 99\n");
    const TcpStatistics tcp = tables.GetTcpStatistics();
    EXPECT_TRUE(tcp.CurrEstab == 7 && tcp.InSegs == 0 && tcp.OutSegs == 5 && tcp.NumConns == 8);
}

} // namespace
