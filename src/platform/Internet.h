// Whether and how the machine is connected, in the shape of InternetGetConnectedState (wininet.h).
#pragma once

#include <cstdint>
#include <string>

namespace korvalin {

/// Flags of the connected state.
inline constexpr std::uint32_t InternetConnectionModem = 0x01;
inline constexpr std::uint32_t InternetConnectionLan = 0x02;
inline constexpr std::uint32_t InternetConnectionProxy = 0x04;
inline constexpr std::uint32_t InternetConnectionModemBusy = 0x08;
inline constexpr std::uint32_t InternetRasInstalled = 0x10;
inline constexpr std::uint32_t InternetConnectionOffline = 0x20;
inline constexpr std::uint32_t InternetConnectionConfigured = 0x40;

/// Flags of InternetDial.
inline constexpr std::uint32_t InternetDialForcePrompt = 0x2000;
inline constexpr std::uint32_t InternetDialUnattended = 0x8000;

inline constexpr int ErrorSuccess = 0;
/// The dial is not allowed (winerror.h).
inline constexpr int ErrorAccessDenied = 5;
/// The user cancelled (winerror.h).
inline constexpr int ErrorCancelled = 1223;
/// What was asked for has changed meanwhile and may be asked for anew (winerror.h).
inline constexpr int ErrorRetry = 1237;

struct ConnectedState {
    bool Online = false;
    std::uint32_t Flags = 0;
};

struct DialResult {
    int Error = ErrorSuccess;    ///< a RAS or system error number
    std::int32_t Connection = 0; ///< handle of the connection; 0 after an error
};

class Internet {
  public:
    virtual ~Internet() = default;

    /// Offline with no flags when the system does not tell.
    [[nodiscard]] virtual ConnectedState GetConnectedState() = 0;

    /// Whether what is fetched may cost money, as far as the system tells.
    [[nodiscard]] virtual bool IsMetered() { return false; }

    /// Dials a phonebook entry and waits until it is up, has failed, or the user has cancelled; windows stay
    /// alive meanwhile. InternetDialForcePrompt asks for the login first; ErrorRetry, with nothing dialed,
    /// when the entry's telephone number has changed while it was asked for.
    [[nodiscard]] virtual DialResult Dial(const std::string& entryName, std::uint32_t flags) = 0;
};

} // namespace korvalin
