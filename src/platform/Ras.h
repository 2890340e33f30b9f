// Dial-up connections, in the shape of the Remote Access Service calls (ras.h), typed instead of byte
// records.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace korvalin {

/// RAS error numbers (raserror.h).
inline constexpr int ErrorBufferTooSmall = 603;

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
};

} // namespace korvalin
