// Dial-up connections, after the Remote Access Service (ras.h).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace korvalin {

/// RAS error numbers (raserror.h).
inline constexpr int ErrorCannotFindPhonebookEntry = 623;
inline constexpr int ErrorNoCarrier = 678;
inline constexpr int ErrorNoDialtone = 680;
inline constexpr int ErrorAuthenticationFailure = 691;

/// RASCONNSTATE of a connection that is up.
inline constexpr std::uint32_t RascsConnected = 0x2000;

struct RasConnection {
    std::int32_t Handle = 0;
    std::string EntryName;
    std::string DeviceName;
};

struct RasStatistics {
    std::uint64_t BytesTransmitted = 0;
    std::uint64_t BytesReceived = 0;
    /// Line speed in bits per second.
    std::uint32_t Bps = 0;
    std::uint64_t ConnectDurationMilliseconds = 0;
    /// The counters never wrap; see InterfaceRow::Counts64Bits.
    bool Counts64Bits = false;
    /// The kernel's number of the interface that carries the connection; 0 when there is none.
    std::uint32_t InterfaceIndex = 0;
    /// That interface's own counters; what it had counted before the connection came up is in them.
    std::uint64_t RawReceived = 0;
    std::uint64_t RawTransmitted = 0;
};

/// What the phonebook tells about an entry (the fields of RASENTRY that this program reads).
struct PhoneEntry {
    std::string AreaCode;
    std::string LocalPhoneNumber;
    /// "modem", "PPPoE", "vpn", ...
    std::string DeviceType;
};

struct PhoneBookNames {
    int Error = 0; ///< a RAS error number; there are no names then
    std::vector<std::string> Names;
};

class Ras {
  public:
    virtual ~Ras() = default;

    /// The active connections; none when the system does not tell.
    [[nodiscard]] virtual std::vector<RasConnection> EnumConnections() = 0;

    /// All zero for a connection that is gone.
    [[nodiscard]] virtual RasStatistics GetConnectionStatistics(std::int32_t handle) = 0;

    /// The RASCONNSTATE; 0 for a connection that is gone.
    [[nodiscard]] virtual std::uint32_t GetConnectStatus(std::int32_t handle) = 0;

    /// The entries of the default phonebook, in no particular order, each once.
    [[nodiscard]] virtual PhoneBookNames EnumEntries() = 0;

    /// nullopt for an entry that cannot be read.
    [[nodiscard]] virtual std::optional<PhoneEntry> GetEntryProperties(const std::string& entryName) = 0;

    /// Asks the system to end a connection and returns at once; whether it does shows at the next look.
    virtual void HangUp(std::int32_t handle) = 0;
};

} // namespace korvalin
