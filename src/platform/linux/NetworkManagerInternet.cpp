#include "platform/linux/NetworkManagerInternet.h"

#include "platform/linux/NetworkManagerClient.h"
#include "platform/linux/NetworkManagerLines.h"

namespace korvalin {

NetworkManagerInternet::NetworkManagerInternet(const DialerParts& parts)
    : parts_(parts), dialer_(parts), route_("/proc/net", [this](const std::string& name) {
          return IsLinkRunning(name) && !parts_.Lines.OwnsInterface(name);
      }) {}

ConnectedState NetworkManagerInternet::GetConnectedState() {
    ConnectedState state = route_.GetConnectedState();
    parts_.Lines.Refresh();
    if (parts_.Client.Running() != nullptr) state.Flags |= InternetRasInstalled;
    if (!parts_.Lines.Up().empty()) {
        state.Online = true;
        state.Flags |= InternetConnectionModem | InternetConnectionConfigured;
    }
    return state;
}

int NetworkManagerInternet::Dial(const std::string& entryName, std::uint32_t flags,
                                 std::int32_t& connection) {
    return dialer_.Dial(entryName, flags, connection);
}

} // namespace korvalin
