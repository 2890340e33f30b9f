// Dial-up connections, in the shape of the Remote Access Service calls (ras.h), typed instead of byte
// records.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace korvalin {

/// RAS error numbers (raserror.h).
inline constexpr int ErrorBufferTooSmall = 603;
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

class Ras {
  public:
    virtual ~Ras() = default;

    /// Fills `connections`, whose size is the room the caller offers, and sets `count` to the number of
    /// active connections. ErrorBufferTooSmall when there is not enough room; otherwise 0 or a RAS error
    /// number.
    [[nodiscard]] virtual int EnumConnections(std::vector<RasConnection>& connections,
                                              std::uint32_t& count) = 0;

    /// 0, or a RAS error number with `statistics` zeroed.
    [[nodiscard]] virtual int GetConnectionStatistics(std::int32_t handle, RasStatistics& statistics) = 0;

    /// 0 with `state` the RASCONNSTATE, or a RAS error number with `state` 0.
    [[nodiscard]] virtual int GetConnectStatus(std::int32_t handle, std::uint32_t& state) = 0;

    /// Fills `names`, whose size is the room the caller offers, with the entries of the default phonebook, in
    /// no particular order, and sets `count` to their number. Every name is there once.
    /// ErrorBufferTooSmall when there is not enough room; otherwise 0 or a RAS error number.
    [[nodiscard]] virtual int EnumEntries(std::vector<std::string>& names, std::uint32_t& count) = 0;

    /// 0 with `entry` filled, or a RAS error number with `entry` empty.
    [[nodiscard]] virtual int GetEntryProperties(const std::string& entryName, PhoneEntry& entry) = 0;

    /// Asks the system to end a connection and returns at once. 0, or a RAS error number.
    [[nodiscard]] virtual int HangUp(std::int32_t handle) = 0;
};

} // namespace korvalin
