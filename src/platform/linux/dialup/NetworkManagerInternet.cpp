#include "platform/linux/dialup/NetworkManagerInternet.h"

#include "platform/linux/dialup/NetworkManagerClient.h"
#include "platform/linux/dialup/NetworkManagerLines.h"

#include <NetworkManager.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace korvalin {
namespace {

// Without one of these the bus would not let NetworkManager take its name.
constexpr const char* busPolicies[] = {"/usr/share/dbus-1/system.d/org.freedesktop.NetworkManager.conf",
                                       "/etc/dbus-1/system.d/org.freedesktop.NetworkManager.conf"};

// Also where it does not run yet, as while a desktop starts: who asks does so once for a whole run.
bool IsNetworkManagerInstalled() {
    return std::any_of(std::begin(busPolicies), std::end(busPolicies), [](const char* policy) {
        std::error_code ignored;
        return std::filesystem::exists(policy, ignored);
    });
}

} // namespace

NetworkManagerInternet::NetworkManagerInternet(const DialerParts& parts)
    : parts_(parts), dialer_(parts), route_("/proc/net", [this](const std::string& name) {
          return IsLinkRunning(name) && !parts_.Lines.OwnsInterface(name);
      }) {}

ConnectedState NetworkManagerInternet::GetConnectedState() {
    ConnectedState state = route_.GetConnectedState();
    parts_.Lines.Refresh();
    if (parts_.Client.Running() != nullptr || IsNetworkManagerInstalled())
        state.Flags |= InternetRasInstalled;
    if (!parts_.Lines.Up().empty()) {
        state.Online = true;
        state.Flags |= InternetConnectionModem | InternetConnectionConfigured;
    }
    return state;
}

// A guess, as for a telephone that shares its line, counts.
bool NetworkManagerInternet::IsMetered() {
    NMClient* const client = parts_.Client.Running();
    const NMMetered metered = client != nullptr ? nm_client_get_metered(client) : NM_METERED_UNKNOWN;
    return metered == NM_METERED_YES || metered == NM_METERED_GUESS_YES;
}

DialResult NetworkManagerInternet::Dial(const std::string& entryName, std::uint32_t flags) {
    return dialer_.Dial(entryName, flags);
}

} // namespace korvalin
