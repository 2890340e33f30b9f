#pragma once

#include "platform/Ras.h"

namespace korvalin {

/// The back end of systems without remote access: there is never a connection, and no handle is known.
class NoRas : public Ras {
  public:
    int EnumConnections(std::vector<RasConnection>& connections, std::uint32_t& count) override;
    int GetConnectionStatistics(std::int32_t handle, RasStatistics& statistics) override;
    int GetConnectStatus(std::int32_t handle, std::uint32_t& state) override;
};

} // namespace korvalin
