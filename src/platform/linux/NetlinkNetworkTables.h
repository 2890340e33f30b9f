#pragma once

#include "platform/NetworkTables.h"
#include "platform/linux/NetlinkSocket.h"

#include <filesystem>

namespace korvalin {

/// Adapters from the kernel's link table, one dump a call, with 64-bit counters; TCP figures from /proc/net.
class NetlinkNetworkTables : public NetworkTables {
  public:
    /// `procNet` is the folder that holds snmp, sockstat and sockstat6.
    explicit NetlinkNetworkTables(std::filesystem::path procNet = "/proc/net");

    int GetIfTable(std::vector<InterfaceRow>& rows, bool sorted) override;
    int GetTcpStatistics(TcpStatistics& statistics) override;

  private:
    NetlinkSocket socket_;
    std::filesystem::path procNet_;
};

} // namespace korvalin
