#pragma once

#include "platform/Internet.h"
#include "platform/linux/dialup/NetworkManagerDialer.h"
#include "platform/linux/netlink/RouteInternet.h"

namespace korvalin {

/// How the machine is connected: over its network, by the kernel's routes, and over lines of NetworkManager.
class NetworkManagerInternet : public Internet {
  public:
    /// Dials with `parts`.
    explicit NetworkManagerInternet(const DialerParts& parts);

    /// Takes the window and the event loop that a dial works with.
    NetworkManagerDialer& Dialer() { return dialer_; }

    /// Remote access counts as installed where NetworkManager answers, or may do so later.
    ConnectedState GetConnectedState() override;
    bool IsMetered() override;
    DialResult Dial(const std::string& entryName, std::uint32_t flags) override;

  private:
    DialerParts parts_;
    NetworkManagerDialer dialer_;
    RouteInternet route_;
};

} // namespace korvalin
