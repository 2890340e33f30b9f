#pragma once

#include "platform/Ras.h"

namespace korvalin {

class NetworkManagerClient;
class NetworkManagerLines;

/// Remote access by NetworkManager: its profiles for modems, DSL and VPN are the phonebook, those that are up
/// the connections. Everything is empty while NetworkManager does not answer.
class NetworkManagerRas : public Ras {
  public:
    NetworkManagerRas(NetworkManagerClient& client, NetworkManagerLines& lines);

    std::vector<RasConnection> EnumConnections() override;
    /// As of the last EnumConnections.
    RasStatistics GetConnectionStatistics(std::int32_t handle) override;
    std::uint32_t GetConnectStatus(std::int32_t handle) override;
    PhoneBookNames EnumEntries() override;
    std::optional<PhoneEntry> GetEntryProperties(const std::string& entryName) override;
    void HangUp(std::int32_t handle) override;

  private:
    NetworkManagerClient& client_;
    NetworkManagerLines& lines_;
};

} // namespace korvalin
