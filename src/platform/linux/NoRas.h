#pragma once

#include "platform/Ras.h"

namespace korvalin {

/// The back end of systems without remote access: there is never a connection, and no handle is known.
class NoRas : public Ras {
  public:
    int EnumConnections(std::vector<RasConnection>& connections, std::uint32_t& count) override;
    int GetConnectionStatistics(std::int32_t handle, RasStatistics& statistics) override;
    int GetConnectStatus(std::int32_t handle, std::uint32_t& state) override;
    int EnumEntries(std::vector<std::string>& names, std::uint32_t& count) override;
    int GetEntryProperties(const std::string& entryName, PhoneEntry& entry) override;
    int HangUp(std::int32_t handle) override;
};

} // namespace korvalin
