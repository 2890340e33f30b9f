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

    int EnumConnections(std::vector<RasConnection>& connections, std::uint32_t& count) override;
    /// As of the last EnumConnections.
    int GetConnectionStatistics(std::int32_t handle, RasStatistics& statistics) override;
    int GetConnectStatus(std::int32_t handle, std::uint32_t& state) override;
    int EnumEntries(std::vector<std::string>& names, std::uint32_t& count) override;
    int GetEntryProperties(const std::string& entryName, PhoneEntry& entry) override;
    int HangUp(std::int32_t handle) override;

  private:
    NetworkManagerClient& client_;
    NetworkManagerLines& lines_;
};

} // namespace korvalin
