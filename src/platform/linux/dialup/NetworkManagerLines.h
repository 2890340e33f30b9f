#pragma once

#include "platform/Ras.h"
#include "platform/linux/dialup/GObjectPointer.h"
#include "platform/linux/dialup/NetworkManagerClient.h"
#include "platform/linux/netlink/InterfaceCounters.h"
#include "platform/linux/netlink/NetlinkSocket.h"

#include <filesystem>
#include <list>
#include <map>
#include <vector>

using NMRemoteConnection = struct _NMRemoteConnection;
using NMActiveConnection = struct _NMActiveConnection;

namespace korvalin {

class Clock;

/// A dial-up connection that is up.
struct NetworkManagerLine {
    GObjectPointer<NMActiveConnection> Connection;
    RasConnection Told;
    std::string Interface; ///< empty for a VPN without one
    InterfaceCounters Counters;
    InterfaceBytes Raw; ///< as the kernel counts
    RasStatistics Statistics;
    double UpSince = 0; ///< seconds since the system's start
    bool IsThere = false;
    bool IsHangingUp = false;
};

/// The dial-up connections that are up, each with a handle that it keeps and its counters of this moment.
class NetworkManagerLines {
  public:
    /// `netFolder` holds the kernel's folders of the interfaces.
    NetworkManagerLines(NetworkManagerClient& client, Clock& clock,
                        std::filesystem::path netFolder = "/sys/class/net");

    /// Looks at what has come, gone and been counted since.
    void Refresh();

    /// In the order in which they came up; those that are being hung up, or whose interface has gone, are
    /// left out.
    [[nodiscard]] std::vector<const NetworkManagerLine*> Up() const;

    /// Asks for a connection's end without waiting for it. It no longer counts as up, until the request is
    /// refused. False when no connection has the handle.
    bool HangUp(std::int32_t handle);

    /// Null when no connection has the handle.
    [[nodiscard]] const NetworkManagerLine* Find(std::int32_t handle) const;

    /// 0 for a connection that is not up.
    [[nodiscard]] std::int32_t HandleOf(const NMActiveConnection* connection) const;

    /// The same for a profile of NetworkManager.
    [[nodiscard]] std::int32_t HandleOfProfile(const NMRemoteConnection* profile);

    /// Whether an interface belongs to a dial-up connection that is up, comes up or has ended within the last
    /// half minute. So a restart of NetworkManager does not make a network of a line that outlives it.
    [[nodiscard]] bool OwnsInterface(const std::string& name);

  private:
    NetworkManagerLine* FindLine(std::int32_t handle);
    [[nodiscard]] bool WasLineJustNow(const std::string& name) const;
    void EndMissing(const std::vector<NMActiveConnection*>& up);
    void Add(NMClient* client, NMActiveConnection* connection);
    void OpenInterface(NetworkManagerLine& line, const std::string& name);
    void Begin(NetworkManagerLine& line);
    std::optional<InterfaceBytes> ReadCounters(NMClient* client, NetworkManagerLine& line);
    void Follow(NMClient* client, NetworkManagerLine& line);

    NetworkManagerClient& client_;
    Clock& clock_;
    std::filesystem::path netFolder_;
    NetlinkSocket addresses_;
    EarlierBytes earlier_;
    std::map<std::uint32_t, double> lastAsLine_; ///< for each link, seconds awake when it was last a line
    std::list<NetworkManagerLine> lines_;
    std::int32_t lastHandle_ = 0;
    bool firstPictureSeen_ = false;
};

} // namespace korvalin
