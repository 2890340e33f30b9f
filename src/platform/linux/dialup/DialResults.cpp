#include "platform/linux/dialup/DialResults.h"

#include "platform/Internet.h"
#include "platform/Ras.h"
#include "platform/linux/dialup/RasErrors.h"

namespace korvalin {
namespace {

// An answer of the other side's PPP is waited for half a minute, a login is refused within a few seconds.
constexpr double secondsOfRefusal = 20;

} // namespace

int ResultOfDeviceFailure(NMDeviceStateReason reason, bool pppBegan, double secondsAwake) {
    switch (reason) {
    case NM_DEVICE_STATE_REASON_NO_SECRETS: return ErrorAuthenticationFailure;
    case NM_DEVICE_STATE_REASON_PPP_DISCONNECT:
    case NM_DEVICE_STATE_REASON_PPP_FAILED:
        return pppBegan && secondsAwake < secondsOfRefusal ? ErrorAuthenticationFailure : ErrorNoCarrier;
    case NM_DEVICE_STATE_REASON_MODEM_NO_DIAL_TONE:
    case NM_DEVICE_STATE_REASON_GSM_REGISTRATION_NOT_SEARCHING:
    case NM_DEVICE_STATE_REASON_GSM_REGISTRATION_TIMEOUT: return ErrorNoDialtone;
    case NM_DEVICE_STATE_REASON_MODEM_NO_CARRIER:
    case NM_DEVICE_STATE_REASON_MODEM_DIAL_TIMEOUT:
    case NM_DEVICE_STATE_REASON_CARRIER:
    case NM_DEVICE_STATE_REASON_BT_FAILED: return ErrorNoCarrier;
    case NM_DEVICE_STATE_REASON_MODEM_BUSY: return ErrorLineBusy;
    case NM_DEVICE_STATE_REASON_MODEM_DIAL_FAILED:
    case NM_DEVICE_STATE_REASON_MODEM_INIT_FAILED:
    case NM_DEVICE_STATE_REASON_GSM_APN_FAILED: return ErrorFromDevice;
    case NM_DEVICE_STATE_REASON_GSM_REGISTRATION_DENIED:
    case NM_DEVICE_STATE_REASON_GSM_REGISTRATION_FAILED: return ErrorNoDialinPermission;
    case NM_DEVICE_STATE_REASON_GSM_PIN_CHECK_FAILED:
    case NM_DEVICE_STATE_REASON_GSM_SIM_PIN_REQUIRED:
    case NM_DEVICE_STATE_REASON_GSM_SIM_PUK_REQUIRED:
    case NM_DEVICE_STATE_REASON_SIM_PIN_INCORRECT: return ErrorInternalAuthentication;
    case NM_DEVICE_STATE_REASON_REMOVED:
    case NM_DEVICE_STATE_REASON_MODEM_NOT_FOUND:
    case NM_DEVICE_STATE_REASON_GSM_SIM_NOT_INSERTED:
    case NM_DEVICE_STATE_REASON_MODEM_MANAGER_UNAVAILABLE:
    case NM_DEVICE_STATE_REASON_MODEM_FAILED: return ErrorDeviceDoesNotExist;
    case NM_DEVICE_STATE_REASON_PPP_START_FAILED: return ErrorPortNotAvailable;
    case NM_DEVICE_STATE_REASON_IP_CONFIG_UNAVAILABLE:
    case NM_DEVICE_STATE_REASON_DHCP_START_FAILED:
    case NM_DEVICE_STATE_REASON_DHCP_ERROR:
    case NM_DEVICE_STATE_REASON_DHCP_FAILED: return ErrorPppNoProtocolsConfigured;
    case NM_DEVICE_STATE_REASON_USER_REQUESTED: return ErrorUserDisconnection;
    case NM_DEVICE_STATE_REASON_SLEEPING:
    case NM_DEVICE_STATE_REASON_DEPENDENCY_FAILED: return ErrorConnectionDropped;
    default: return ErrorUnknown;
    }
}

int ResultOfConnectionEnd(NMActiveConnectionStateReason reason) {
    switch (reason) {
    case NM_ACTIVE_CONNECTION_STATE_REASON_NO_SECRETS:
    case NM_ACTIVE_CONNECTION_STATE_REASON_LOGIN_FAILED: return ErrorAuthenticationFailure;
    case NM_ACTIVE_CONNECTION_STATE_REASON_CONNECT_TIMEOUT: return ErrorNoCarrier;
    case NM_ACTIVE_CONNECTION_STATE_REASON_USER_DISCONNECTED: return ErrorUserDisconnection;
    case NM_ACTIVE_CONNECTION_STATE_REASON_SERVICE_STOPPED: return ErrorRemoteDisconnection;
    case NM_ACTIVE_CONNECTION_STATE_REASON_IP_CONFIG_INVALID: return ErrorPppNoProtocolsConfigured;
    case NM_ACTIVE_CONNECTION_STATE_REASON_SERVICE_START_TIMEOUT:
    case NM_ACTIVE_CONNECTION_STATE_REASON_SERVICE_START_FAILED: return ErrorPortNotAvailable;
    case NM_ACTIVE_CONNECTION_STATE_REASON_CONNECTION_REMOVED: return ErrorCannotFindPhonebookEntry;
    case NM_ACTIVE_CONNECTION_STATE_REASON_DEVICE_REALIZE_FAILED:
    case NM_ACTIVE_CONNECTION_STATE_REASON_DEVICE_REMOVED: return ErrorDeviceDoesNotExist;
    case NM_ACTIVE_CONNECTION_STATE_REASON_DEVICE_DISCONNECTED:
    case NM_ACTIVE_CONNECTION_STATE_REASON_DEPENDENCY_FAILED: return ErrorConnectionDropped;
    default: return ErrorUnknown;
    }
}

bool AreNoSecrets(const GError& error) {
    return error.domain == NM_AGENT_MANAGER_ERROR;
}

int ResultOfRefusal(const GError& error) {
    if (error.domain == NM_SETTINGS_ERROR)
        return error.code == NM_SETTINGS_ERROR_PERMISSION_DENIED ? ErrorAccessDenied : ErrorUnknown;
    if (error.domain != NM_MANAGER_ERROR) return ErrorUnknown;
    switch (error.code) {
    case NM_MANAGER_ERROR_PERMISSION_DENIED: return ErrorAccessDenied;
    // The profile itself was there a moment ago: a VPN misses the connection that it runs over.
    case NM_MANAGER_ERROR_UNKNOWN_CONNECTION:
    case NM_MANAGER_ERROR_CONNECTION_NOT_ACTIVE: return ErrorRouteNotAvailable;
    case NM_MANAGER_ERROR_UNKNOWN_DEVICE: return ErrorDeviceDoesNotExist;
    case NM_MANAGER_ERROR_CONNECTION_NOT_AVAILABLE:
    case NM_MANAGER_ERROR_MISSING_PLUGIN: return ErrorPortNotAvailable;
    default: return ErrorUnknown;
    }
}

} // namespace korvalin
