#include "fakes/TemporaryFolder.h"
#include "platform/linux/LinkMessage.h"
#include "platform/linux/NetlinkNetworkTables.h"

#include <linux/if_arp.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>

#include <cstring>

using namespace korvalin;

namespace {

// A message of the link table as an older kernel, or none at all, would send it.
class LinkMessage {
  public:
    explicit LinkMessage(std::uint16_t hardwareType, unsigned flags = 0) {
        bytes_.resize(NLMSG_SPACE(sizeof(ifinfomsg)));
        auto* link = static_cast<ifinfomsg*>(NLMSG_DATA(Header()));
        link->ifi_index = 7;
        link->ifi_type = hardwareType;
        link->ifi_flags = flags;
    }
    LinkMessage& Add(std::uint16_t type, const void* data, std::size_t size) {
        rtattr attribute{static_cast<std::uint16_t>(RTA_LENGTH(size)), type};
        const std::size_t begin = bytes_.size();
        bytes_.resize(begin + RTA_SPACE(size));
        std::memcpy(bytes_.data() + begin, &attribute, sizeof attribute);
        std::memcpy(bytes_.data() + begin + RTA_LENGTH(0), data, size);
        return *this;
    }
    InterfaceRow Read() {
        Header()->nlmsg_len = static_cast<std::uint32_t>(bytes_.size());
        Header()->nlmsg_type = RTM_NEWLINK;
        InterfaceRow row;
        EXPECT_TRUE(ReadLinkMessage(*Header(), row));
        return row;
    }

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

TEST(TcpStatistics, AreFoundByTheNamesOfTheirColumns) {
    const TemporaryFolder proc;
    NetlinkNetworkTables tables(proc.Path());
    TcpStatistics tcp{1, 2, 3, 4};
    EXPECT_EQ(tables.GetTcpStatistics(tcp), ENOENT);
    proc.Write("snmp", "Tcp: CurrEstab\n");
    EXPECT_EQ(tables.GetTcpStatistics(tcp), ENOTSUP);
    proc.Write("snmp", "Tcp: OutSegs NewOne CurrEstab\nTcp: 5 6 7\nUdp: InSegs\nUdp: 1\n");
    proc.Write("sockstat", "sockets: used 310\nTCP: inuse 5 orphan 0 tw 2\nUDP: inuse 99\n");
    proc.Write("sockstat6", "TCP6: inuse 3\nUDP6: inuse 99\n");
    EXPECT_EQ(tables.GetTcpStatistics(tcp), 0);
    EXPECT_TRUE(tcp.CurrEstab == 7 && tcp.InSegs == 0 && tcp.OutSegs == 5 && tcp.NumConns == 8);
}

} // namespace
