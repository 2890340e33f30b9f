#include "platform/linux/dialup/NetworkManagerRas.h"

#include "platform/linux/dialup/DialProfiles.h"
#include "platform/linux/dialup/NetworkManagerLines.h"

#include <NetworkManager.h>

namespace korvalin {

NetworkManagerRas::NetworkManagerRas(NetworkManagerClient& client, NetworkManagerLines& lines)
    : client_(client), lines_(lines) {}

std::vector<RasConnection> NetworkManagerRas::EnumConnections() {
    lines_.Refresh();
    std::vector<RasConnection> connections;
    for (const NetworkManagerLine* line : lines_.Up())
        connections.push_back(line->Told);
    return connections;
}

RasStatistics NetworkManagerRas::GetConnectionStatistics(std::int32_t handle) {
    const NetworkManagerLine* line = lines_.Find(handle);
    return line != nullptr && line->IsThere ? line->Statistics : RasStatistics();
}

std::uint32_t NetworkManagerRas::GetConnectStatus(std::int32_t handle) {
    const NetworkManagerLine* line = lines_.Find(handle);
    return line != nullptr && line->IsThere ? RascsConnected : 0;
}

PhoneBookNames NetworkManagerRas::EnumEntries() {
    PhoneBookNames names;
    for (DialProfile& profile : ReadDialProfiles(client_.Running()))
        names.Names.push_back(std::move(profile.Name));
    return names;
}

std::optional<PhoneEntry> NetworkManagerRas::GetEntryProperties(const std::string& entryName) {
    NMRemoteConnection* profile = FindProfile(client_.Running(), entryName);
    if (profile == nullptr) return std::nullopt;
    return DescribeProfile(NM_CONNECTION(profile));
}

void NetworkManagerRas::HangUp(std::int32_t handle) {
    if (client_.Running() != nullptr) lines_.HangUp(handle);
}

} // namespace korvalin
