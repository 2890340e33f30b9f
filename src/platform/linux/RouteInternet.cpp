#include "platform/linux/RouteInternet.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include <linux/route.h>

namespace korvalin {
namespace {

bool Serves(const std::string& link, unsigned long flags) {
    return link != "lo" && (flags & RTF_UP) != 0 && (flags & RTF_REJECT) == 0;
}

// Columns: Iface Destination Gateway Flags RefCnt Use Metric Mask ..., numbers in hexadecimal.
bool HasDefaultRoute4(const std::filesystem::path& file) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string link, destination, gateway, flags, references, use, metric, mask;
        if (!(words >> link >> destination >> gateway >> flags >> references >> use >> metric >> mask)) continue;
        const bool everywhere = destination == "00000000" && mask == "00000000";
        if (everywhere && Serves(link, std::strtoul(flags.c_str(), nullptr, 16))) return true;
    }
    return false;
}

// Columns: destination, its prefix length, source, its prefix length, next hop, metric, references, use, flags, link.
bool HasDefaultRoute6(const std::filesystem::path& file) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string destination, length, source, sourceLength, hop, metric, references, use, flags, link;
        if (!(words >> destination >> length >> source >> sourceLength >> hop >> metric >> references >> use >> flags >>
              link)) {
            continue;
        }
        if (length == "00" && Serves(link, std::strtoul(flags.c_str(), nullptr, 16))) return true;
    }
    return false;
}

bool IsSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != 0;
}

} // namespace

RouteInternet::RouteInternet(std::filesystem::path procNet) : procNet_(std::move(procNet)) {}

ConnectedState RouteInternet::GetConnectedState() {
    ConnectedState state;
    state.Online = HasDefaultRoute4(procNet_ / "route") || HasDefaultRoute6(procNet_ / "ipv6_route");
    if (state.Online) state.Flags = InternetConnectionLan | InternetConnectionConfigured;
    if (state.Online && (IsSet("https_proxy") || IsSet("http_proxy"))) state.Flags |= InternetConnectionProxy;
    return state;
}

} // namespace korvalin
