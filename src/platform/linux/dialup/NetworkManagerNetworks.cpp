#include "platform/linux/dialup/NetworkManagerNetworks.h"

#include "platform/linux/dialup/NetworkManagerClient.h"

#include <NetworkManager.h>

namespace korvalin {
namespace {

// The service also makes up connections for what others have set up: their names are no network's.
bool IsUsed(NMActiveConnection* connection) {
    const NMActiveConnectionState state = nm_active_connection_get_state(connection);
    return state != NM_ACTIVE_CONNECTION_STATE_DEACTIVATING &&
           state != NM_ACTIVE_CONNECTION_STATE_DEACTIVATED &&
           (nm_active_connection_get_state_flags(connection) & NM_ACTIVATION_STATE_FLAG_EXTERNAL) == 0;
}

} // namespace

std::string NetworkManagerNetworks::NetworkOf(const std::string& adapter) {
    NMClient* client = client_.Running();
    NMDevice* device = client != nullptr ? nm_client_get_device_by_iface(client, adapter.c_str()) : nullptr;
    if (device == nullptr || nm_device_get_device_type(device) != NM_DEVICE_TYPE_WIFI) return "";
    NMActiveConnection* connection = nm_device_get_active_connection(device);
    const char* name =
        connection != nullptr && IsUsed(connection) ? nm_active_connection_get_id(connection) : nullptr;
    return name != nullptr ? name : "";
}

} // namespace korvalin
