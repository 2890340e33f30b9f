#include "fakes/TemporaryFolder.h"
#include "platform/linux/files/Descriptor.h"
#include "platform/linux/netlink/LinkHardware.h"
#include "platform/linux/netlink/LinkHistory.h"
#include "platform/linux/netlink/LinkMessage.h"
#include "platform/linux/netlink/NetlinkNetworkTables.h"

#include <linux/if_arp.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>

#include <cstring>
#include <ctime>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <thread>

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

std::uint32_t Uptime() {
    timespec time{};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return static_cast<std::uint32_t>(time.tv_sec * 100 + time.tv_nsec / 10'000'000);
}

void SwitchOn(const char* link) {
    const Descriptor out(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq request{};
    std::strcpy(request.ifr_name, link);
    request.ifr_flags = IFF_UP;
    EXPECT_EQ(ioctl(out.Get(), SIOCSIFFLAGS, &request), 0);
}

TEST(NetworkTables, TakesTheWideCountersWhereThereAreAny) {
    rtnl_link_stats64 wide{};
    wide.rx_bytes = 5'000'000'000;
    wide.tx_bytes = 6'000'000'000;
    rtnl_link_stats narrow{};
    narrow.rx_bytes = 705'032'704;
    LinkMessage wideFirst(ARPHRD_ETHER);
    LinkMessage narrowFirst(ARPHRD_ETHER);
    wideFirst.Add(IFLA_STATS64, &wide, sizeof wide).Add(IFLA_STATS, &narrow, sizeof narrow);
    narrowFirst.Add(IFLA_STATS, &narrow, sizeof narrow).Add(IFLA_STATS64, &wide, sizeof wide);
    for (LinkMessage* message : {&wideFirst, &narrowFirst}) {
        const InterfaceRow row = message->Read();
        EXPECT_TRUE(row.Counts64Bits);
        EXPECT_TRUE(row.InOctets == wide.rx_bytes && row.OutOctets == wide.tx_bytes);
    }
    const InterfaceRow old = LinkMessage(ARPHRD_ETHER).Add(IFLA_STATS, &narrow, sizeof narrow).Read();
    EXPECT_FALSE(old.Counts64Bits);
    EXPECT_EQ(old.InOctets, narrow.rx_bytes);
    // cut short: no figures, and nothing read beyond the end
    EXPECT_EQ(LinkMessage(ARPHRD_ETHER).Add(IFLA_STATS64, &wide, 24).Read().InOctets, 0U);
}

TEST(NetworkTables, ALineWithoutAStateIsUpWhileItRuns) {
    constexpr unsigned up = 1;
    constexpr unsigned running = 0x40;
    struct {
        std::uint16_t HardwareType;
        unsigned Flags;
        std::uint32_t Type;
        OperationalStatus Status;
    } const rows[] = {{ARPHRD_LOOPBACK, up | running, IfTypeSoftwareLoopback, OperationalStatus::Operational},
                      {ARPHRD_PPP, up | running, IfTypePpp, OperationalStatus::Operational},
                      {ARPHRD_PPP, up, IfTypePpp, OperationalStatus::Disconnected},
                      {ARPHRD_SIT, 0, IfTypeTunnel, OperationalStatus::Disconnected}};
    for (const auto& row : rows) {
        const InterfaceRow read =
            LinkMessage(row.HardwareType, row.Flags).Add(IFLA_IFNAME, "line7", 6).Read();
        EXPECT_EQ(read.Type, row.Type) << row.HardwareType;
        EXPECT_EQ(read.OperStatus, row.Status) << row.HardwareType;
        EXPECT_EQ(read.Description, "line7");
    }
}

std::string Attribute(std::uint16_t type, const std::string& text) {
    const rtattr head{static_cast<std::uint16_t>(RTA_LENGTH(text.size())), type};
    std::string bytes(reinterpret_cast<const char*>(&head), sizeof head);
    bytes += text;
    bytes.resize(RTA_ALIGN(bytes.size()));
    return bytes;
}

TEST(NetworkTables, ALinksMessageTellsItsDeviceAndWhosePortItIs) {
    struct {
        const char* Kind;
        const char* PortKind;
        const char* Device;
        bool HasHardware;
        bool IsPort;
    } const rows[] = {{"", "", "0000:00:03.0", true, false},  {"wwan", "", "wwan0", true, false},
                      {"veth", "", "", false, false},         {"bond", "", "", false, false},
                      {"", "bond", "1-2:1.0", true, true},    {"veth", "team", "", false, true},
                      {"", "bridge", "virtio2", true, false}, {"", "bonding", "virtio2", true, false},
                      {"bond", "bridge", "", false, false}};
    const std::uint32_t master = 9;
    for (const auto& [kind, portKind, device, hasHardware, isPort] : rows) {
        std::string info = Attribute(IFLA_INFO_KIND, kind);
        LinkMessage message(ARPHRD_ETHER);
        if (*portKind != 0) {
            info += Attribute(IFLA_INFO_SLAVE_KIND, portKind);
            message.Add(IFLA_MASTER, &master, sizeof master);
        }
        message.Add(IFLA_LINKINFO, info.data(), info.size());
        if (*device != 0) message.Add(IFLA_PARENT_DEV_NAME, device, std::strlen(device) + 1);
        const InterfaceRow row = message.Read();
        EXPECT_EQ(row.HasHardware, hasHardware) << kind << ", port of " << portKind;
        EXPECT_EQ(row.IsPort, isPort) << kind << ", port of " << portKind;
        EXPECT_EQ(message.Details.Master, *portKind != 0 ? master : 0);
    }
    // cut short: the inner attribute claims more than there is
    const std::string whole = Attribute(IFLA_INFO_SLAVE_KIND, "bond");
    LinkMessage message(ARPHRD_ETHER);
    EXPECT_FALSE(message.Add(IFLA_LINKINFO, whole.data(), 6).Add(IFLA_MASTER, &master, 2).Read().IsPort);
    EXPECT_EQ(message.Details.Master, 0U);
}

TEST(LinkHardware, IsBehindABondWhenOneOfItsPortsHasIt) {
    const TemporaryFolder net;
    for (const char* name : {"lo", "eth0", "eth1"})
        std::filesystem::create_directories(net.Path() / name / "device");
    std::filesystem::create_directories(net.Path() / "veth0");
    struct Link {
        const char* Name;
        std::uint32_t Type;
        bool IsNamed; ///< the message names the device
        std::uint32_t BondIndex;
        bool HasHardware;
    };
    const std::vector<Link> looks[] = {
        // an older kernel
        {{"lo", IfTypeSoftwareLoopback, false, 0, false},
         {"bond0", IfTypeEthernet, false, 0, true},
         {"eth0", IfTypeEthernet, false, 2, true},
         {"veth0", IfTypeEthernet, false, 2, false}},
        // one that names every device: nothing is looked up
        {{"veth0", IfTypeEthernet, false, 3, false},
         {"eth1", IfTypeEthernet, false, 0, false},
         {"bond0", IfTypeEthernet, false, 0, false},
         {"eth0", IfTypeEthernet, true, 5, true},
         {"bond1", IfTypeEthernet, false, 0, true}},
        // a bond in another network
        {{"eth0", IfTypeEthernet, false, 9, true}},
    };
    LinkHardware hardware(net.Path());
    for (const auto& links : looks) {
        std::vector<InterfaceRow> rows;
        hardware.BeginLook();
        for (const Link& link : links) {
            InterfaceRow& row = rows.emplace_back();
            row.Index = static_cast<std::uint32_t>(rows.size());
            row.Type = link.Type;
            row.Description = link.Name;
            row.HasHardware = link.IsNamed;
            row.IsPort = link.BondIndex != 0;
            hardware.Note(row, {0, link.BondIndex});
        }
        hardware.Complete(rows);
        for (std::size_t i = 0; i < rows.size(); ++i)
            EXPECT_EQ(rows[i].HasHardware, links[i].HasHardware) << rows[i].Description;
    }
}

template <typename Record>
Record Packets() {
    Record record{};
    record.rx_packets = 100;
    record.multicast = 30;
    record.rx_dropped = 4;
    record.rx_missed_errors = 5;
    record.rx_errors = 6;
    record.tx_packets = 70;
    record.tx_dropped = 8;
    record.tx_errors = 9;
    return record;
}

TEST(NetworkTables, TheEntryOfALinkHoldsWhatTheMessageTells) {
    auto wide = Packets<rtnl_link_stats64>();
    const auto narrow = Packets<rtnl_link_stats>();
    const std::uint32_t changes = 3;
    const std::uint8_t testing = 4; // IF_OPER_TESTING
    LinkMessage message(ARPHRD_FDDI, 1);
    const InterfaceEntry entry = message.Add(IFLA_STATS64, &wide, sizeof wide)
                                     .Add(IFLA_CARRIER_CHANGES, &changes, sizeof changes)
                                     .Add(IFLA_ADDRESS, "\1\2\3\4\5\6\7\10\11\12", 10)
                                     .ReadEntry();
    LinkMessage olderKernel(ARPHRD_SLIP, 1);
    const InterfaceEntry old =
        olderKernel.Add(IFLA_STATS, &narrow, sizeof narrow).Add(IFLA_OPERSTATE, &testing, 1).ReadEntry();
    EXPECT_EQ(message.Details.CarrierChanges, 3U);
    EXPECT_TRUE(entry.Type == IfTypeFddi && old.Type == IfTypeSlip);
    EXPECT_EQ(entry.AdminStatus, AdministrativeStatus::Enabled);
    EXPECT_EQ(old.AdminStatus, AdministrativeStatus::Testing);
    EXPECT_EQ(entry.PhysAddr.Length, 8U);
    EXPECT_EQ(entry.PhysAddr.Bytes, (std::array<std::uint8_t, 8>{1, 2, 3, 4, 5, 6, 7, 8}));
    for (const InterfaceEntry& told : {entry, old}) {
        EXPECT_TRUE(told.InUcastPkts == 70 && told.InNUcastPkts == 30 && told.InDiscards == 9 &&
                    told.InErrors == 6 && told.OutUcastPkts == 70 && told.OutDiscards == 8 &&
                    told.OutErrors == 9);
    }
    // cut short, and no more multicasts than packets
    wide.rx_packets = 10;
    const InterfaceEntry shortened =
        LinkMessage(ARPHRD_IEEE802_TR).Add(IFLA_STATS64, &wide, 72).Add(IFLA_MTU, &changes, 2).ReadEntry();
    EXPECT_TRUE(shortened.Type == IfTypeTokenRing && shortened.InUcastPkts == 0 && shortened.Mtu == 0);
}

TEST(LinkHistory, TellsSinceWhenALinkIsInItsStatus) {
    constexpr auto up = OperationalStatus::Operational;
    constexpr auto down = OperationalStatus::Disconnected;
    LinkHistory history;
    const auto look = [&history](std::uint32_t now, OperationalStatus first, std::uint32_t changes,
                                 bool second) {
        history.BeginLook(now);
        history.Note(1, first, changes);
        if (second) history.Note(2, up, 0);
        history.EndLook();
    };
    history.BeginLook(50); // broken off: not yet the first look
    history.Note(1, down, 0);
    look(100, up, 0, false);
    EXPECT_EQ(history.LastChange(1), 0U);
    look(200, down, 1, true);
    EXPECT_EQ(history.LastChange(1), 200U);
    EXPECT_EQ(history.LastChange(2), 200U) << "a link that came while the program runs";
    look(300, down, 1, false);
    EXPECT_EQ(history.LastChange(1), 200U);
    EXPECT_EQ(history.LastChange(2), 0U) << "a link that is gone";
    look(400, down, 3, true);
    EXPECT_EQ(history.LastChange(1), 400U) << "there and away again between two looks";
    EXPECT_EQ(history.LastChange(2), 400U);
}

// In a network of its own, whose only link is a loopback that is switched off.
TEST(NetworkTables, NoticesWhenALinkChanges) {
    bool possible = false;
    std::thread([&possible] {
        possible = unshare(CLONE_NEWNET) == 0;
        if (!possible) return;
        NetlinkNetworkTables tables;
        std::vector<InterfaceEntry> entries;
        const auto look = [&] {
            EXPECT_TRUE(tables.GetIfTable());
            const std::uint32_t now = Uptime();
            entries = tables.GetIfTable2().value();
            EXPECT_EQ(entries.size(), 1U);
            return now;
        };
        look();
        EXPECT_EQ(entries[0].OperStatus, OperationalStatus::Disconnected);
        EXPECT_EQ(entries[0].LastChange, 0U);
        const std::uint32_t before = Uptime();
        SwitchOn("lo");
        const std::uint32_t after = look();
        EXPECT_EQ(entries[0].OperStatus, OperationalStatus::Operational);
        EXPECT_TRUE(before <= entries[0].LastChange && entries[0].LastChange <= after)
            << before << " " << entries[0].LastChange << " " << after;
    }).join();
    if (!possible) GTEST_SKIP() << "no network of its own here";
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
