// The kernel's links in a network of their own, made by iproute2.
#include "fakes/TemporaryFolder.h"
#include "platform/linux/files/Descriptor.h"
#include "platform/linux/netlink/NetlinkNetworkTables.h"

#include <fmt/format.h>
#include <linux/if_packet.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <net/if.h>
#include <sched.h>
#include <set>
#include <sys/socket.h>
#include <thread>

using namespace korvalin;

namespace {

using Names = std::set<std::string>;

constexpr int frames = 5;
constexpr std::size_t frameBytes = 1000;

bool Shell(const std::string& commands) {
    return std::system(("exec >/dev/null 2>&1; set -e; " + commands).c_str()) == 0;
}

// Where IPv6 sends nothing by itself.
void InOwnNetwork(const std::function<void()>& test) {
    bool possible = false;
    std::thread([&] {
        possible = unshare(CLONE_NEWNET) == 0 && Shell("ip link set lo up");
        if (!possible) return;
        std::ofstream("/proc/sys/net/ipv6/conf/default/disable_ipv6") << 1;
        test();
    }).join();
    if (!possible) GTEST_SKIP() << "no network of its own here";
}

bool IsUp(NetlinkNetworkTables& tables, const std::string& link) {
    const std::vector<InterfaceRow> rows = tables.GetIfTable().value();
    return std::any_of(rows.begin(), rows.end(), [&](const InterfaceRow& row) {
        return row.Description == link && row.OperStatus == OperationalStatus::Operational;
    });
}

// Frames of a protocol that nobody answers. A link that is just coming up would lose them.
void Send(NetlinkNetworkTables& tables, const char* link) {
    while (!IsUp(tables, link))
        std::this_thread::yield();
    const Descriptor out(socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0));
    sockaddr_ll address{};
    address.sll_family = AF_PACKET;
    address.sll_ifindex = static_cast<int>(if_nametoindex(link));
    std::array<unsigned char, frameBytes> frame{2, 0, 0, 0, 0, 1, 2, 0, 0, 0, 0, 2, 0x88, 0xb5};
    for (int i = 0; i < frames; ++i) {
        EXPECT_EQ(sendto(out.Get(), frame.data(), frame.size(), 0,
                         reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  frameBytes);
    }
}

Names NamesOf(const std::vector<InterfaceRow>& rows) {
    Names names;
    for (const InterfaceRow& row : rows)
        names.insert(row.Description);
    return names;
}

std::string Told(const InterfaceRow& row) {
    return fmt::format("{} {} {}", row.Description, row.InOctets, row.OutOctets);
}

TEST(RealLinks, TellTheirLastCountersWhenTheyGo) {
    InOwnNetwork([] {
        // Another network, which only this descriptor keeps.
        const Descriptor other(open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC));
        ASSERT_EQ(unshare(CLONE_NEWNET), 0);
        std::ofstream("/proc/sys/net/ipv6/conf/default/disable_ipv6") << 1;
        const std::string moving = fmt::format("ip link set v0 netns /proc/{}/fd/{}", getpid(), other.Get());
        const std::string pair =
            "ip link add v0 type veth peer name v1; ip link set v0 up; ip link set v1 up";
        const std::string samePair = "ip link add v0 index 70 type veth peer name v1 index 71";
        // One that receives from a peer which goes with it has told what it had received when it was seen
        // last.
        const Names both = {"v0 0 10000", "v1 5000 0"};
        const Names pairLeft = {"v0", "v1"};
        const std::string bridge =
            pair + "; ip link add t0 up type bridge mcast_snooping 0; ip link set v0 master t0";
        const std::string pairUp = samePair + "; ip link set v0 up; ip link set v1 up";
        const std::string shortLived = "ip link add t0 type veth peer name t1; ip link delete t0";
        const std::string renamed = "ip link set v0 down name w0; ip link delete w0";
        struct {
            std::string Before;
            const char* Sender;
            std::string Then;
            Names Removed, Left;
        } const rows[] = {
            {pair, "v0", "ip link delete v0", both, {}},
            {pair, "v0", "ip link delete v0; " + pair, both, pairLeft},
            {pairUp, "v0", "ip link delete v0; " + samePair, both, pairLeft},
            {pair, "v0", renamed, {"w0 0 10000", "v1 5000 0"}, {}},
            {pair, "v0", moving, {"v0 0 10000"}, {"v1"}},
            {pair, "v1", moving, {"v0 10000 0"}, {"v1"}},
            {pair, "v0", "ip link set v0 down; ip link set v0 up", {}, pairLeft},
            {pair, "v0", shortLived, {"t0 0 0", "t1 0 0"}, pairLeft},
            {bridge, "t0", "ip link set v0 nomaster; ip link delete t0", {"t0 0 10000"}, pairLeft},
            {"ip link add t0 up type ifb", "t0", "ip link delete t0", {"t0 10000 0"}, {}},
        };
        for (const auto& row : rows) {
            NetlinkNetworkTables tables;
            ASSERT_TRUE(tables.GetIfTable());
            ASSERT_TRUE(Shell(row.Before)) << row.Before;
            Send(tables, row.Sender);
            ASSERT_TRUE(tables.GetIfTable());
            EXPECT_TRUE(tables.TakeRemoved().empty());
            Send(tables, row.Sender);
            ASSERT_TRUE(Shell(row.Then)) << row.Then;
            const std::vector<InterfaceRow> links = tables.GetIfTable().value();
            Names removed;
            for (const InterfaceRow& link : tables.TakeRemoved())
                removed.insert(Told(link));
            EXPECT_EQ(removed, row.Removed) << row.Then;
            Names left = row.Left;
            left.insert("lo");
            EXPECT_EQ(NamesOf(links), left) << row.Then;
            Shell("ip link delete v0 || ip link delete v1");
        }
    });
}

// Each link that is no longer shown has been told to have gone, as it was known, and none that is still
// shown.
TEST(RealLinks, NeverGoUnnoticed) {
    InOwnNetwork([] {
        const TemporaryFolder net;
        for (int i = 1; i <= 40; ++i)
            std::filesystem::create_directories(net.Path() / fmt::format("card{}/device", i));
        NetlinkNetworkTables tables("/proc/net", net.Path());
        std::atomic<bool> done = false;
        std::thread maker([&done] {
            EXPECT_TRUE(Shell("for i in $(seq 40); do ip link add card$i type veth peer name v$i; "
                              "ip link delete v$i; done"));
            done = true;
        });
        Names before;
        while (!done) {
            const Names now = NamesOf(tables.GetIfTable().value());
            for (const InterfaceRow& link : tables.TakeRemoved()) {
                EXPECT_FALSE(now.contains(link.Description)) << link.Description;
                if (before.erase(link.Description) > 0) {
                    EXPECT_EQ(link.HasHardware, link.Description.starts_with("card")) << link.Description;
                }
            }
            EXPECT_TRUE(std::includes(now.begin(), now.end(), before.begin(), before.end()));
            before = now;
        }
        maker.join();
    });
}

TEST(RealLinks, TellSinceWhenTheyAreInTheirStatus) {
    InOwnNetwork([] {
        NetlinkNetworkTables tables;
        const auto now = [] {
            timespec time{};
            clock_gettime(CLOCK_BOOTTIME, &time);
            return static_cast<std::uint32_t>(time.tv_sec * 100 + time.tv_nsec / 10'000'000);
        };
        const auto lastChange = [&] {
            const std::vector<InterfaceEntry> entries = tables.GetIfTable2().value();
            const auto v0 = std::ranges::find(entries, "v0", &InterfaceEntry::Description);
            return v0 != entries.end() ? v0->LastChange : 1;
        };
        const std::string pair = "ip link add v0 type veth peer name v1; ip link set v1 up";
        ASSERT_TRUE(Shell(pair));
        EXPECT_EQ(lastChange(), 0U) << "the first look";
        for (const std::string& change :
             {std::string("ip link set v0 up"), std::string("ip link set v0 down"),
              std::string("ip link set v0 up; ip link set v0 down"), "ip link delete v0; " + pair}) {
            const std::uint32_t before = now() + 1;
            while (now() < before)
                std::this_thread::yield();
            ASSERT_TRUE(Shell(change));
            while (change.ends_with("v0 up") && !IsUp(tables, "v0"))
                std::this_thread::yield();
            const std::uint32_t told = lastChange();
            EXPECT_TRUE(before <= told && told <= now()) << change;
            EXPECT_EQ(lastChange(), told) << change;
        }
    });
}

} // namespace
