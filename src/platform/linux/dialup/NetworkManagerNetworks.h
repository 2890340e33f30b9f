#pragma once

#include "platform/Networks.h"

namespace korvalin {

class NetworkManagerClient;

/// The networks of wireless adapters, named as NetworkManager's connections are.
class NetworkManagerNetworks : public Networks {
  public:
    explicit NetworkManagerNetworks(NetworkManagerClient& client) : client_(client) {}

    std::string NetworkOf(const std::string& adapter) override;

  private:
    NetworkManagerClient& client_;
};

} // namespace korvalin
