#include "fakes/TemporaryFolder.h"
#include "platform/linux/RouteInternet.h"

#include <cstdlib>

namespace korvalin {
namespace {

constexpr std::uint32_t lan = InternetConnectionLan | InternetConnectionConfigured;

// Lines as the kernel writes them.
const std::string heading =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT   \n";
const std::string viaEth0 = "eth0\t00000000\t010200C0\t0003\t0\t0\t0\t00000000\t0\t0\t0          \n";
const std::string viaWlan0 = "wlan0\t00000000\t010200C0\t0003\t0\t0\t600\t00000000\t0\t0\t0          \n";
const std::string local = "eth0\t000200C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0          \n";
const std::string halfOfAll = "tun0\t00000000\t00000000\t0001\t0\t0\t0\t00000080\t0\t0\t0          \n";
const std::string blackhole = "*\t00000000\t00000000\t0201\t0\t0\t0\t00000000\t0\t0\t0          \n";
const std::string down = "eth0\t00000000\t010200C0\t0002\t0\t0\t0\t00000000\t0\t0\t0          \n";
const std::string viaLoopback = "lo\t00000000\t00000000\t0001\t0\t0\t0\t00000000\t0\t0\t0          \n";

const std::string zero6(32, '0');
const std::string subnet6 = "fd" + std::string(30, '0') + " 40 " + zero6 + " 00 " + zero6 +
                            " 00000100 00000001 00000000 00000001     eth0\n";
const std::string default6 = zero6 + " 00 " + zero6 + " 00 fd" + std::string(29, '0') +
                             "1 00000400 00000002 00000000 00000003     eth0\n";
const std::string reject6 =
    zero6 + " 00 " + zero6 + " 00 " + zero6 + " ffffffff 00000001 00000000 00200200       lo\n";
const std::string loopback6 =
    zero6 + " 00 " + zero6 + " 00 " + zero6 + " 00000400 00000001 00000000 00000001       lo\n";

TEST(RouteInternet, IsConnectedByADefaultRouteOverALinkThatIsUp) {
    const TemporaryFolder proc;
    RouteInternet internet(proc.Path(), [](const std::string& name) { return name != "wlan0"; });
    for (const char* name : {"http_proxy", "https_proxy", "HTTP_PROXY", "HTTPS_PROXY"})
        unsetenv(name);
    EXPECT_FALSE(internet.GetConnectedState().Online); // no such files
    struct {
        const char* What;
        std::string Routes, Routes6;
        bool Online;
    } const rows[] = {{"default via eth0", heading + viaEth0 + local, reject6, true},
                      {"default after others", heading + local + halfOfAll + viaEth0, "", true},
                      {"local network only", heading + local, subnet6 + reject6, false},
                      {"half of all addresses", heading + halfOfAll, "", false},
                      {"only IPv6", heading + local, subnet6 + default6 + reject6, true},
                      {"IPv6 via loopback", heading, loopback6, false},
                      {"blackhole", heading + blackhole, reject6, false},
                      {"not up", heading + down, "", false},
                      {"link without carrier", heading + viaWlan0, "", false},
                      {"second link has carrier", heading + viaWlan0 + viaEth0, "", true},
                      {"via loopback", heading + viaLoopback, "", false},
                      {"cut short", heading + "eth0\t00000000\t0102", "0000000", false},
                      {"empty", "", "", false}};
    for (const auto& row : rows) {
        proc.Write("route", row.Routes);
        proc.Write("ipv6_route", row.Routes6);
        const ConnectedState state = internet.GetConnectedState();
        EXPECT_EQ(state.Online, row.Online) << row.What;
        EXPECT_EQ(state.Flags, row.Online ? lan : 0) << row.What;
    }
    proc.Write("route", heading + viaEth0);
    setenv("https_proxy", "http://proxy:3128", 1);
    EXPECT_EQ(internet.GetConnectedState().Flags, lan | InternetConnectionProxy);
    unsetenv("https_proxy");
}

TEST(RouteInternet, AsksTheKernelForTheLink) {
    EXPECT_FALSE(IsLinkRunning("no-such-link"));
    EXPECT_FALSE(IsLinkRunning(std::string(200, 'x')));
    std::string state;
    std::ifstream("/sys/class/net/lo/operstate") >> state;
    if (state != "unknown") GTEST_SKIP() << "the loopback link is not up here";
    EXPECT_TRUE(IsLinkRunning("lo"));
}

} // namespace
} // namespace korvalin
