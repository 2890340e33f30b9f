#pragma once

#include "platform/NetworkTables.h"
#include "platform/linux/netlink/LinkHardware.h"
#include "platform/linux/netlink/LinkHistory.h"
#include "platform/linux/netlink/LinkSpeeds.h"
#include "platform/linux/netlink/LinkWatch.h"
#include "platform/linux/netlink/NetlinkSocket.h"
#include "platform/linux/netlink/TcpFigures.h"

#include <filesystem>

namespace korvalin {

/// The kernel's adapters by one dump per call: of the counters alone as long as no link is announced to have
/// changed, a fifth of the cost of the whole link table. TCP figures come from /proc/net. When a link changed
/// its status is known to the second while GetIfTable is called every second, otherwise to the next call.
/// The kernel announces a link's end with its last counters: they are whole unless more is announced between
/// two calls than a socket holds.
class NetlinkNetworkTables : public NetworkTables {
  public:
    /// `netFolder` holds the kernel's folders of the interfaces.
    explicit NetlinkNetworkTables(const std::filesystem::path& procNet = "/proc/net",
                                  std::filesystem::path netFolder = "/sys/class/net");

    std::optional<std::vector<InterfaceRow>> GetIfTable() override;
    std::vector<InterfaceRow> TakeRemoved() override;
    std::optional<std::vector<InterfaceEntry>> GetIfTable2() override;
    std::optional<std::vector<IpAddressRow>> GetIpAddrTable() override;
    std::optional<std::vector<UnicastIpAddressRow>> GetUnicastIpAddressTable() override;
    TcpStatistics GetTcpStatistics() override;

  private:
    void Listen();
    void NoteRemoved(InterfaceRow removed);
    int ReadLinks();
    void BeginLook();
    void NoteLink(const InterfaceRow& row, const LinkDetails& details);
    template <typename Row>
    void ReadAddresses(std::vector<Row>& rows);
    bool ReadCounters();
    int ReadEntries(std::vector<InterfaceEntry>& entries);
    template <typename Row>
    std::optional<std::vector<Row>> ReadAddressTable(std::uint8_t family);
    void ReadQueues(std::vector<InterfaceEntry>& entries);

    NetlinkSocket socket_;
    LinkWatch watch_;
    LinkHistory history_;
    LinkHardware hardware_;
    LinkSpeeds speeds_;
    std::vector<InterfaceRow> links_;    // by ascending index
    std::vector<InterfaceRow> previous_; // links_ of the look before
    std::vector<InterfaceRow> removed_;  // in the order in which they went
    bool changed_ = false;               // a link, since the last look began
    bool countersAlone_ = true;          // the kernel dumps counters without the rest
    TcpFigures tcp_;
};

} // namespace korvalin
