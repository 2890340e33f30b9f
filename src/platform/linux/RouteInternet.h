#pragma once

#include "platform/Internet.h"

#include <filesystem>

namespace korvalin {

/// Connected by adapter when a default route, IPv4 or IPv6, leads over a link other than the loopback. Read from the
/// kernel's routing tables as /proc/net shows them.
class RouteInternet : public Internet {
  public:
    /// `procNet` is the folder that holds route and ipv6_route.
    explicit RouteInternet(std::filesystem::path procNet = "/proc/net");

    ConnectedState GetConnectedState() override;

  private:
    std::filesystem::path procNet_;
};

} // namespace korvalin
