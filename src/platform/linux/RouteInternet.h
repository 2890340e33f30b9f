#pragma once

#include "platform/Internet.h"

#include <filesystem>
#include <functional>
#include <string>

namespace korvalin {

/// Whether the kernel says that an interface is up and has its carrier.
bool IsLinkRunning(const std::string& interfaceName);

/// The machine is connected over its network when it has a default route, IPv4 or IPv6, over a link that is
/// up.
class RouteInternet : public Internet {
  public:
    /// `procNet` holds the kernel's route and ipv6_route.
    explicit RouteInternet(std::filesystem::path procNet = "/proc/net",
                           std::function<bool(const std::string& interfaceName)> linkIsUp = IsLinkRunning);

    ConnectedState GetConnectedState() override;
    int Dial(const std::string& entryName, std::uint32_t flags, std::int32_t& connection) override;

  private:
    bool HasDefaultRoute() const;

    std::filesystem::path procNet_;
    std::function<bool(const std::string&)> linkIsUp_;
};

} // namespace korvalin
