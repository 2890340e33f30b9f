#pragma once

namespace korvalin {

/// More of the RAS error numbers (raserror.h), those that a dial of this system can end with.
inline constexpr int ErrorDeviceDoesNotExist = 608;
inline constexpr int ErrorRouteNotAvailable = 611;
inline constexpr int ErrorRemoteDisconnection = 629;
inline constexpr int ErrorUserDisconnection = 631;
inline constexpr int ErrorPortNotAvailable = 633;
inline constexpr int ErrorUnknown = 635;
inline constexpr int ErrorInternalAuthentication = 645;
inline constexpr int ErrorNoDialinPermission = 649;
inline constexpr int ErrorFromDevice = 651;
inline constexpr int ErrorConnectionDropped = 668;
inline constexpr int ErrorLineBusy = 676;
inline constexpr int ErrorPppNoProtocolsConfigured = 720;
inline constexpr int ErrorDialAlreadyInProgress = 756;

} // namespace korvalin
