#include "platform/linux/dialup/NetworkManagerLines.h"

#include "base/Text.h"
#include "platform/Clock.h"
#include "platform/linux/dialup/DialProfiles.h"
#include "platform/linux/netlink/AddressAge.h"

#include <NetworkManager.h>
#include <algorithm>
#include <limits>
#include <net/if.h>

namespace korvalin {
namespace {

constexpr double secondsBetweenLineAndNetwork = 30;

// The name of each interface that others set up stands as one more connection in the picture: external.
bool IsDialUpConnection(NMActiveConnection* connection) {
    if ((nm_active_connection_get_state_flags(connection) & NM_ACTIVATION_STATE_FLAG_EXTERNAL) != 0)
        return false;
    NMRemoteConnection* profile = nm_active_connection_get_connection(connection);
    return profile != nullptr && IsDialUp(NM_CONNECTION(profile));
}

NMDevice* DeviceOf(NMActiveConnection* connection) {
    const GPtrArray* devices = nm_active_connection_get_devices(connection);
    return devices->len > 0 ? static_cast<NMDevice*>(devices->pdata[0]) : nullptr;
}

bool SharesAddresses(NMDevice* device, NMActiveConnection* connection) {
    NMIPConfig* ip4 = nm_active_connection_get_ip4_config(connection);
    NMIPConfig* ip6 = nm_active_connection_get_ip6_config(connection);
    return (ip4 != nullptr && nm_device_get_ip4_config(device) == ip4) ||
           (ip6 != nullptr && nm_device_get_ip6_config(device) == ip6);
}

// A VPN's own device is the one it runs over; its tunnel is the device that has the same addresses.
NMDevice* TunnelOf(NMClient* client, NMActiveConnection* connection) {
    const GPtrArray* devices = nm_client_get_devices(client);
    for (guint i = 0; i < devices->len; ++i) {
        auto* device = static_cast<NMDevice*>(devices->pdata[i]);
        if (device != DeviceOf(connection) && SharesAddresses(device, connection)) return device;
    }
    return nullptr;
}

NMDevice* TrafficDevice(NMClient* client, NMActiveConnection* connection) {
    return nm_active_connection_get_vpn(connection) ? TunnelOf(client, connection) : DeviceOf(connection);
}

// A link that others use too cannot be the line: before PPP is up over an adapter, and when it has just gone,
// the adapter's own name stands in its place.
bool RunsOver(NMDevice* device, NMActiveConnection* connection) {
    return nm_active_connection_get_connection_type(connection) ==
               std::string(NM_SETTING_PPPOE_SETTING_NAME) &&
           nm_device_get_device_type(device) != NM_DEVICE_TYPE_PPP &&
           g_strcmp0(nm_device_get_ip_iface(device), nm_device_get_iface(device)) == 0;
}

std::string TrafficInterface(NMClient* client, NMActiveConnection* connection) {
    NMDevice* device = TrafficDevice(client, connection);
    if (device == nullptr || RunsOver(device, connection)) return "";
    const char* name = nm_device_get_ip_iface(device);
    return name != nullptr ? name : "";
}

std::string DeviceName(NMActiveConnection* connection) {
    NMDevice* device = DeviceOf(connection);
    const char* name = device != nullptr ? nm_device_get_iface(device) : nullptr;
    return name != nullptr ? name : "";
}

std::string EntryName(NMClient* client, NMActiveConnection* connection) {
    const NMRemoteConnection* profile = nm_active_connection_get_connection(connection);
    for (DialProfile& entry : ReadDialProfiles(client)) {
        if (entry.Profile == profile) return std::move(entry.Name);
    }
    return std::string(Trim(nm_active_connection_get_id(connection)));
}

std::vector<NMActiveConnection*> DialUpConnections(NMClient* client) {
    std::vector<NMActiveConnection*> found;
    if (client == nullptr) return found;
    const GPtrArray* connections = nm_client_get_active_connections(client);
    for (guint i = 0; i < connections->len; ++i) {
        auto* connection = static_cast<NMActiveConnection*>(connections->pdata[i]);
        if (IsDialUpConnection(connection)) found.push_back(connection);
    }
    return found;
}

bool IsUp(NMActiveConnection* connection) {
    return nm_active_connection_get_state(connection) == NM_ACTIVE_CONNECTION_STATE_ACTIVATED;
}

bool IsComingUp(NMActiveConnection* connection) {
    return nm_active_connection_get_state(connection) == NM_ACTIVE_CONNECTION_STATE_ACTIVATING;
}

// Whether the service itself has connected the interface to a network.
bool BelongsToNetwork(NMClient* client, const std::string& name) {
    NMDevice* device = nm_client_get_device_by_iface(client, name.c_str());
    NMActiveConnection* connection = device != nullptr ? nm_device_get_active_connection(device) : nullptr;
    return connection != nullptr && IsUp(connection) && !IsDialUpConnection(connection) &&
           (nm_active_connection_get_state_flags(connection) & NM_ACTIVATION_STATE_FLAG_EXTERNAL) == 0;
}

} // namespace

NetworkManagerLines::NetworkManagerLines(NetworkManagerClient& client, Clock& clock,
                                         std::filesystem::path netFolder)
    : client_(client), clock_(clock), netFolder_(std::move(netFolder)) {}

void NetworkManagerLines::Refresh() {
    NMClient* client = client_.Running();
    std::vector<NMActiveConnection*> up = DialUpConnections(client);
    std::erase_if(up, [](NMActiveConnection* connection) { return !IsUp(connection); });
    EndMissing(up);
    // Connections that came up before the program keep what was counted for them.
    if (client != nullptr && !firstPictureSeen_) earlier_.NoteAll(netFolder_);
    for (NMActiveConnection* connection : up) {
        if (HandleOf(connection) == 0) Add(client, connection);
    }
    if (client != nullptr) firstPictureSeen_ = true;
    for (NetworkManagerLine& line : lines_)
        Follow(client, line);
}

void NetworkManagerLines::EndMissing(const std::vector<NMActiveConnection*>& up) {
    std::erase_if(lines_, [&](const NetworkManagerLine& line) {
        if (std::find(up.begin(), up.end(), line.Connection.get()) != up.end()) return false;
        if (line.Counters.Index() != 0) earlier_.Note(line.Counters.Index(), line.Raw);
        return true;
    });
}

void NetworkManagerLines::Add(NMClient* client, NMActiveConnection* connection) {
    NetworkManagerLine& line = lines_.emplace_back();
    line.Connection = ShareGObject(connection);
    line.Told.EntryName = EntryName(client, connection);
    line.Told.DeviceName = DeviceName(connection);
    line.Statistics.Counts64Bits = true;
    OpenInterface(line, TrafficInterface(client, connection));
    if (!firstPictureSeen_) earlier_.Forget(line.Counters.Index());
    Begin(line);
}

void NetworkManagerLines::OpenInterface(NetworkManagerLine& line, const std::string& name) {
    line.Interface = name;
    line.Counters = name.empty() ? InterfaceCounters() : InterfaceCounters(netFolder_ / name);
    line.Statistics.InterfaceIndex = line.Counters.Index();
}

// The service tells no time that would do: the profile's time stamp moves on while the connection is up.
void NetworkManagerLines::Begin(NetworkManagerLine& line) {
    line.Told.Handle = lastHandle_ =
        lastHandle_ == std::numeric_limits<std::int32_t>::max() ? 1 : lastHandle_ + 1;
    const double age = OldestAddressAge(addresses_, line.Counters.Index(), clock_.AwakeSeconds()).value_or(0);
    line.UpSince = clock_.BootSeconds() - age;
}

// nullopt when the line's interface has gone. A VPN may have none, and nothing is counted.
std::optional<InterfaceBytes> NetworkManagerLines::ReadCounters(NMClient* client, NetworkManagerLine& line) {
    if (auto bytes = line.Counters.Read()) return bytes;
    const std::string name = TrafficInterface(client, line.Connection.get());
    const bool hadInterface = !line.Interface.empty();
    if (name.empty()) return hadInterface ? std::nullopt : std::optional(InterfaceBytes{});
    OpenInterface(line, name);
    const auto bytes = line.Counters.Read();
    if (hadInterface && bytes) Begin(line); // the connection was renewed over another interface: another line
    return bytes;
}

void NetworkManagerLines::Follow(NMClient* client, NetworkManagerLine& line) {
    const auto raw = ReadCounters(client, line);
    line.IsThere = raw.has_value();
    if (!raw) return;
    lastAsLine_[line.Counters.Index()] = clock_.AwakeSeconds();
    line.Raw = *raw;
    const InterfaceBytes own = earlier_.Without(line.Counters.Index(), line.Raw);
    line.Statistics.BytesReceived = own.Received;
    line.Statistics.BytesTransmitted = own.Transmitted;
    line.Statistics.RawReceived = raw->Received;
    line.Statistics.RawTransmitted = raw->Transmitted;
    const double seconds = std::max(clock_.BootSeconds() - line.UpSince, 0.0);
    line.Statistics.ConnectDurationMilliseconds = static_cast<std::uint64_t>(seconds * 1000);
}

std::vector<const NetworkManagerLine*> NetworkManagerLines::Up() const {
    std::vector<const NetworkManagerLine*> up;
    for (const NetworkManagerLine& line : lines_) {
        if (line.IsThere && !line.IsHangingUp) up.push_back(&line);
    }
    return up;
}

NetworkManagerLine* NetworkManagerLines::FindLine(std::int32_t handle) {
    const auto found = std::find_if(lines_.begin(), lines_.end(), [&](const NetworkManagerLine& line) {
        return line.Told.Handle == handle;
    });
    return found != lines_.end() ? &*found : nullptr;
}

const NetworkManagerLine* NetworkManagerLines::Find(std::int32_t handle) const {
    return const_cast<NetworkManagerLines*>(this)->FindLine(handle);
}

bool NetworkManagerLines::HangUp(std::int32_t handle) {
    NetworkManagerLine* line = FindLine(handle);
    if (line == nullptr) return false;
    line->IsHangingUp = true;
    client_.Deactivate(line->Connection.get(), [this, handle] {
        if (NetworkManagerLine* refused = FindLine(handle)) refused->IsHangingUp = false;
    });
    return true;
}

std::int32_t NetworkManagerLines::HandleOf(const NMActiveConnection* connection) const {
    const auto found = std::find_if(lines_.begin(), lines_.end(), [&](const NetworkManagerLine& line) {
        return line.Connection.get() == connection;
    });
    return found != lines_.end() ? found->Told.Handle : 0;
}

std::int32_t NetworkManagerLines::HandleOfProfile(const NMRemoteConnection* profile) {
    Refresh();
    for (const NetworkManagerLine* line : Up()) {
        if (nm_active_connection_get_connection(line->Connection.get()) == profile) return line->Told.Handle;
    }
    return 0;
}

bool NetworkManagerLines::WasLineJustNow(const std::string& name) const {
    const auto found = lastAsLine_.find(if_nametoindex(name.c_str()));
    return found != lastAsLine_.end() && clock_.AwakeSeconds() - found->second < secondsBetweenLineAndNetwork;
}

// The kernel routes over a link before the service says whose it is, and a moment longer than the line is up.
bool NetworkManagerLines::OwnsInterface(const std::string& name) {
    if (WasLineJustNow(name)) return true;
    NMClient* client = client_.Running();
    const std::vector<NMActiveConnection*> connections = DialUpConnections(client);
    return std::any_of(connections.begin(), connections.end(), [&](NMActiveConnection* connection) {
        return TrafficInterface(client, connection) == name ||
               (IsComingUp(connection) && !BelongsToNetwork(client, name));
    });
}

} // namespace korvalin
