#pragma once

#include "platform/Internet.h" // ConnectedState

#include <filesystem>
#include <functional>
#include <string>

namespace korvalin {

/// Whether the kernel says that an interface is up and has its carrier.
bool IsLinkRunning(const std::string& interfaceName);

/// The machine is connected over its network when it has a default route, IPv4 or IPv6, over a link that is
/// up.
class RouteInternet {
  public:
    /// `procNet` holds the kernel's route and ipv6_route.
    explicit RouteInternet(std::filesystem::path procNet = "/proc/net",
                           std::function<bool(const std::string& interfaceName)> linkIsUp = IsLinkRunning);

    /// Offline with no flags when there is no such route.
    [[nodiscard]] ConnectedState GetConnectedState() const;

  private:
    bool HasDefaultRoute() const;

    std::filesystem::path procNet_;
    std::function<bool(const std::string&)> linkIsUp_;
};

} // namespace korvalin
