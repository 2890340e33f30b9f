#include "platform/linux/netlink/RouteInternet.h"

#include "platform/linux/files/Descriptor.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <net/if.h>
#include <net/route.h>
#include <optional>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace korvalin {
namespace {

constexpr std::size_t fieldsOfLine = 11;
using Fields = std::array<std::string_view, fieldsOfLine>;

struct RouteFileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

Fields SplitFields(std::string_view line) {
    constexpr std::string_view blanks = " \t\n";
    Fields fields;
    std::size_t end = 0;
    for (std::string_view& field : fields) {
        const std::size_t begin = std::min(line.find_first_not_of(blanks, end), line.size());
        end = std::min(line.find_first_of(blanks, begin), line.size());
        field = line.substr(begin, end - begin);
    }
    return fields;
}

bool IsZero(std::string_view field) {
    return !field.empty() && field.find_first_not_of('0') == std::string_view::npos;
}

// A blackhole, unreachable or prohibited destination is a route that rejects.
bool Carries(std::string_view flagsField) {
    unsigned flags = 0;
    std::from_chars(flagsField.data(), flagsField.data() + flagsField.size(), flags, 16);
    return (flags & RTF_UP) != 0 && (flags & RTF_REJECT) == 0;
}

// The interface of a default route; empty for any other line.
std::string_view DefaultRouteV4(const Fields& fields) {
    // Iface Destination Gateway Flags RefCnt Use Metric Mask ...
    return IsZero(fields[1]) && IsZero(fields[7]) && Carries(fields[3]) ? fields[0] : std::string_view();
}

std::string_view DefaultRouteV6(const Fields& fields) {
    // destination length source length next-hop metric references use flags interface
    const bool isDefault = IsZero(fields[0]) && IsZero(fields[1]) && Carries(fields[8]);
    return isDefault ? fields[9] : std::string_view();
}

bool FindRoute(const std::filesystem::path& file, std::string_view (*defaultRoute)(const Fields&),
               const std::function<bool(const std::string&)>& linkIsUp) {
    // Line by line up to the first hit: a router's table has a million of them, its default usually at the
    // top.
    const std::unique_ptr<std::FILE, RouteFileCloser> routes(std::fopen(file.c_str(), "re"));
    if (!routes) return false;
    std::array<char, 512> line;
    while (std::fgets(line.data(), static_cast<int>(line.size()), routes.get()) != nullptr) {
        const std::string_view interface = defaultRoute(SplitFields(line.data()));
        if (!interface.empty() && interface != "lo" && interface != "*" && linkIsUp(std::string(interface)))
            return true;
    }
    return false;
}

bool HasProxy() {
    for (const char* variable : {"http_proxy", "https_proxy", "HTTP_PROXY", "HTTPS_PROXY"}) {
        const char* proxy = std::getenv(variable);
        if (proxy != nullptr && *proxy != 0) return true;
    }
    return false;
}

} // namespace

bool IsLinkRunning(const std::string& interfaceName) {
    const Descriptor probe(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq request{};
    if (!probe || interfaceName.size() >= sizeof request.ifr_name) return false;
    std::memcpy(request.ifr_name, interfaceName.data(), interfaceName.size());
    if (ioctl(probe.Get(), SIOCGIFFLAGS, &request) != 0) return false;
    return (request.ifr_flags & IFF_UP) != 0 && (request.ifr_flags & IFF_RUNNING) != 0;
}

RouteInternet::RouteInternet(std::filesystem::path procNet, std::function<bool(const std::string&)> linkIsUp)
    : procNet_(std::move(procNet)), linkIsUp_(std::move(linkIsUp)) {}

bool RouteInternet::HasDefaultRoute() const {
    return FindRoute(procNet_ / "route", DefaultRouteV4, linkIsUp_) ||
           FindRoute(procNet_ / "ipv6_route", DefaultRouteV6, linkIsUp_);
}

ConnectedState RouteInternet::GetConnectedState() const {
    if (!HasDefaultRoute()) return {};
    const std::uint32_t proxy = HasProxy() ? InternetConnectionProxy : 0;
    return {true, InternetConnectionLan | InternetConnectionConfigured | proxy};
}

} // namespace korvalin
