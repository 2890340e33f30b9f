#include "fakes/TemporaryFolder.h"
#include "platform/linux/netlink/RouteInternet.h"

#include <fmt/format.h>

#include <cstdlib>

using namespace korvalin;

namespace {

constexpr std::uint32_t lan = InternetConnectionLan | InternetConnectionConfigured;

// Lines as the kernel writes them: interface, destination, flags and mask; destination, next hop and link.
std::string Route(const char* link, const char* flags, const char* destination = "00000000",
                  const char* mask = "00000000") {
    return fmt::format("{}\t{}\t010200C0\t{}\t0\t0\t0\t{}\t0\t0\t0          \n", link, destination, flags,
                       mask);
}
std::string Route6(const char* flags, const char* link,
                   const std::string& destination = std::string(32, '0') + " 00") {
    return fmt::format("{0} {1:032} 00 {1:032} 00000400 00000002 00000000 {2} {3:>8}\n", destination, 0,
                       flags, link);
}

TEST(RouteInternet, IsConnectedByADefaultRouteOverALinkThatIsUp) {
    const TemporaryFolder proc;
    RouteInternet internet(proc.Path(), [](const std::string& name) { return name != "wlan0"; });
    for (const char* name : {"http_proxy", "https_proxy", "HTTP_PROXY", "HTTPS_PROXY"})
        unsetenv(name);
    EXPECT_FALSE(internet.GetConnectedState().Online); // no such files
    const std::string heading = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\n";
    const std::string viaEth0 = Route("eth0", "0003");
    const std::string notWays = heading + Route("*", "0201") + Route("eth0", "0002") + Route("wlan0", "0003");
    const std::string local = Route("eth0", "0001", "000200C0", "00FFFFFF");
    const std::string halfOfAll = Route("tun0", "0001", "00000000", "00000080");
    const std::string subnet6 = Route6("00000001", "eth0", "fd" + std::string(30, '0') + " 40");
    const std::string reject6 = Route6("00200200", "lo");
    struct {
        const char* What;
        std::string Routes, Routes6;
        bool Online;
    } const rows[] = {
        {"default after others", heading + local + halfOfAll + viaEth0, reject6, true},
        {"local network and half of all", heading + local + halfOfAll, subnet6 + reject6, false},
        {"only IPv6", heading + local, subnet6 + Route6("00000003", "eth0") + reject6, true},
        {"IPv6 via loopback", heading, Route6("00000001", "lo"), false},
        {"neither up, nor with a carrier, nor a way", notWays, "", false},
        {"second link has carrier", notWays + viaEth0, "", true},
        {"cut short", heading + "eth0\t00000000\t0102", "0000000", false},
    };
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

} // namespace
