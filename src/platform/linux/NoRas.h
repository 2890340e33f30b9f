#pragma once

#include "platform/Ras.h"
#include "platform/Registry.h"

namespace korvalin {

/// The back end of systems without dial-up connections.
class NoRas : public Ras {
  public:
    int EnumConnections(std::vector<RasConnection>&, std::uint32_t& count) override {
        count = 0;
        return 0;
    }
    int GetConnectionStatistics(std::int32_t, RasStatistics& statistics) override {
        statistics = {};
        return ErrorInvalidHandle;
    }
    int GetConnectStatus(std::int32_t, std::uint32_t& state) override {
        state = 0;
        return ErrorInvalidHandle;
    }
};

} // namespace korvalin
