// The network stack's tables, in the shape of the IP Helper calls (iphlpapi.h).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace korvalin {

/// Interface types (ifdef.h, IANA ifType).
inline constexpr std::uint32_t IfTypeOther = 1;
inline constexpr std::uint32_t IfTypeEthernet = 6;
inline constexpr std::uint32_t IfTypePpp = 23;
inline constexpr std::uint32_t IfTypeSoftwareLoopback = 24;
inline constexpr std::uint32_t IfTypeTunnel = 131;

/// Operational status (ipifcons.h).
enum class OperationalStatus : std::uint32_t {
    NonOperational = 0,
    Unreachable = 1,
    Disconnected = 2,
    Connecting = 3,
    Connected = 4,
    Operational = 5
};

/// One adapter (a MIB_IFROW without its byte layout).
struct InterfaceRow {
    std::uint32_t Index = 0;
    std::uint32_t Type = IfTypeOther;
    OperationalStatus OperStatus = OperationalStatus::NonOperational;
    std::uint64_t InOctets = 0;
    std::uint64_t OutOctets = 0;
    /// The system counts in 64 bits: the counters never wrap, and one that falls was reset.
    bool Counts64Bits = false;
    std::string Description;
    /// An IP address of the adapter, version 4 before 6; empty when it has none that is known elsewhere.
    std::string Address;
};

/// The fields of MIB_TCPSTATS that are shown.
struct TcpStatistics {
    std::uint32_t CurrEstab = 0;
    std::uint32_t InSegs = 0;
    std::uint32_t OutSegs = 0;
    std::uint32_t NumConns = 0;
};

class NetworkTables {
  public:
    virtual ~NetworkTables() = default;

    /// All adapters, in ascending order of their index when `sorted`. 0, or the system's error number with
    /// `rows` empty.
    [[nodiscard]] virtual int GetIfTable(std::vector<InterfaceRow>& rows, bool sorted) = 0;

    /// 0, or the system's error number with `statistics` zeroed.
    [[nodiscard]] virtual int GetTcpStatistics(TcpStatistics& statistics) = 0;
};

} // namespace korvalin
