// Whether and how the machine is connected, in the shape of InternetGetConnectedState (wininet.h).
#pragma once

#include <cstdint>

namespace korvalin {

/// Flags of the connected state.
inline constexpr std::uint32_t InternetConnectionModem = 0x01;
inline constexpr std::uint32_t InternetConnectionLan = 0x02;
inline constexpr std::uint32_t InternetConnectionProxy = 0x04;
inline constexpr std::uint32_t InternetConnectionModemBusy = 0x08;
inline constexpr std::uint32_t InternetRasInstalled = 0x10;
inline constexpr std::uint32_t InternetConnectionOffline = 0x20;
inline constexpr std::uint32_t InternetConnectionConfigured = 0x40;

struct ConnectedState {
    bool Online = false;
    std::uint32_t Flags = 0;
};

class Internet {
  public:
    virtual ~Internet() = default;

    /// Offline with no flags when the system does not tell.
    [[nodiscard]] virtual ConnectedState GetConnectedState() = 0;
};

} // namespace korvalin
