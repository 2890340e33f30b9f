#pragma once

#include "platform/NetworkTables.h"
#include "platform/linux/LinkWatch.h"
#include "platform/linux/NetlinkSocket.h"
#include "platform/linux/TcpFigures.h"

#include <filesystem>

namespace korvalin {

/// The kernel's adapters by one dump per call: of the counters alone as long as no link is announced to have
/// changed, a fifth of the cost of the whole link table. TCP figures come from /proc/net.
class NetlinkNetworkTables : public NetworkTables {
  public:
    explicit NetlinkNetworkTables(const std::filesystem::path& procNet = "/proc/net");

    int GetIfTable(std::vector<InterfaceRow>& rows, bool sorted) override;
    int GetTcpStatistics(TcpStatistics& statistics) override;

  private:
    int ReadLinks();
    void ReadAddresses();
    bool ReadCounters();

    NetlinkSocket socket_;
    LinkWatch watch_;
    std::vector<InterfaceRow> links_; // by ascending index
    bool countersAlone_ = true;       // the kernel dumps counters without the rest
    TcpFigures tcp_;
};

} // namespace korvalin
