#include "platform/linux/dialup/NetworkManagerRas.h"

#include "platform/Registry.h" // ErrorSuccess, ErrorInvalidHandle
#include "platform/linux/dialup/DialProfiles.h"
#include "platform/linux/dialup/NetworkManagerLines.h"

#include <NetworkManager.h>

namespace korvalin {

NetworkManagerRas::NetworkManagerRas(NetworkManagerClient& client, NetworkManagerLines& lines)
    : client_(client), lines_(lines) {}

int NetworkManagerRas::EnumConnections(std::vector<RasConnection>& connections, std::uint32_t& count) {
    lines_.Refresh();
    const std::vector<const NetworkManagerLine*> up = lines_.Up();
    count = static_cast<std::uint32_t>(up.size());
    if (up.size() > connections.size()) return ErrorBufferTooSmall;
    for (std::size_t i = 0; i < up.size(); ++i)
        connections[i] = up[i]->Told;
    return ErrorSuccess;
}

int NetworkManagerRas::GetConnectionStatistics(std::int32_t handle, RasStatistics& statistics) {
    statistics = {};
    const NetworkManagerLine* line = lines_.Find(handle);
    if (line == nullptr || !line->IsThere) return ErrorInvalidHandle;
    statistics = line->Statistics;
    return ErrorSuccess;
}

int NetworkManagerRas::GetConnectStatus(std::int32_t handle, std::uint32_t& state) {
    state = 0;
    const NetworkManagerLine* line = lines_.Find(handle);
    if (line == nullptr || !line->IsThere) return ErrorInvalidHandle;
    state = RascsConnected;
    return ErrorSuccess;
}

int NetworkManagerRas::EnumEntries(std::vector<std::string>& names, std::uint32_t& count) {
    std::vector<DialProfile> entries = ReadDialProfiles(client_.Running());
    count = static_cast<std::uint32_t>(entries.size());
    if (entries.size() > names.size()) return ErrorBufferTooSmall;
    for (std::size_t i = 0; i < entries.size(); ++i)
        names[i] = std::move(entries[i].Name);
    return ErrorSuccess;
}

int NetworkManagerRas::GetEntryProperties(const std::string& entryName, PhoneEntry& entry) {
    entry = {};
    NMRemoteConnection* profile = FindProfile(client_.Running(), entryName);
    if (profile == nullptr) return ErrorCannotFindPhonebookEntry;
    entry = DescribeProfile(NM_CONNECTION(profile));
    return ErrorSuccess;
}

int NetworkManagerRas::HangUp(std::int32_t handle) {
    return client_.Running() != nullptr && lines_.HangUp(handle) ? ErrorSuccess : ErrorInvalidHandle;
}

} // namespace korvalin
