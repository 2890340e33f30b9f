// The network stack's tables, in the shape of the IP Helper calls (iphlpapi.h).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace korvalin {

/// Interface types (ifdef.h, IANA ifType).
inline constexpr std::uint32_t IfTypeOther = 1;
inline constexpr std::uint32_t IfTypeEthernet = 6;
inline constexpr std::uint32_t IfTypeTokenRing = 9;
inline constexpr std::uint32_t IfTypeFddi = 15;
inline constexpr std::uint32_t IfTypePpp = 23;
inline constexpr std::uint32_t IfTypeSoftwareLoopback = 24;
inline constexpr std::uint32_t IfTypeSlip = 28;
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
    /// Bytes leave the machine here: a device stands behind the adapter, or behind a port of this bond or
    /// team.
    bool HasHardware = false;
    /// A port of a bond or team, whose bytes are counted there.
    bool IsPort = false;
};

/// What the administrator wants of an adapter (ifAdminStatus of RFC 2863).
enum class AdministrativeStatus : std::uint32_t { Enabled = 1, Disabled = 2, Testing = 3 };

/// The hardware address of an adapter (bPhysAddr of MIB_IFROW, which has room for 8 bytes).
struct PhysicalAddress {
    std::array<std::uint8_t, 8> Bytes{};
    std::size_t Length = 0; ///< bytes in use; of a longer address the first 8
};

/// Everything that is known of an adapter (a whole MIB_IFROW; the counters are as wide as the system's).
struct InterfaceEntry : InterfaceRow {
    std::uint32_t Mtu = 0;              ///< dwMtu: largest packet in bytes
    std::uint64_t Speed = 0;            ///< dwSpeed: bits per second; 0 when unknown
    PhysicalAddress PhysAddr;           ///< bPhysAddr
    AdministrativeStatus AdminStatus{}; ///< dwAdminStatus
    /// dwLastChange: when the adapter entered its operational status, in hundredths of a second of the
    /// system's uptime, modulo 2^32. 0 when that was before the program looked for the first time.
    std::uint32_t LastChange = 0;
    std::uint64_t InUcastPkts = 0;     ///< dwInUcastPkts: packets received for one station
    std::uint64_t InNUcastPkts = 0;    ///< dwInNUcastPkts: packets received for many (multicast)
    std::uint64_t InDiscards = 0;      ///< dwInDiscards: received without a fault and thrown away
    std::uint64_t InErrors = 0;        ///< dwInErrors: received with a fault
    std::uint64_t InUnknownProtos = 0; ///< dwInUnknownProtos: received for a protocol that nobody speaks
    std::uint64_t OutUcastPkts = 0;    ///< dwOutUcastPkts: packets sent to one station
    std::uint64_t OutNUcastPkts = 0;   ///< dwOutNUcastPkts: packets sent to many
    std::uint64_t OutDiscards = 0;     ///< dwOutDiscards: thrown away before they were sent, without a fault
    std::uint64_t OutErrors = 0;       ///< dwOutErrors: not sent because of a fault
    std::uint64_t OutQLen = 0;         ///< dwOutQLen: packets that wait to be sent
};

/// The octets of an IPv4 address in the order in which they are written.
using Ip4Address = std::array<std::uint8_t, 4>;

/// The octets of an IPv6 address in the order in which they are written.
using Ip6Address = std::array<std::uint8_t, 16>;

/// Bits of IpAddressRow::Type (wType of MIB_IPADDRROW).
inline constexpr std::uint16_t IpAddressPrimary = 0x0001;
inline constexpr std::uint16_t IpAddressDynamic = 0x0004;

/// An IPv4 address of an adapter (MIB_IPADDRROW, ipAddrEntry of RFC 1213).
struct IpAddressRow {
    Ip4Address Address{};        ///< dwAddr
    std::uint32_t Index = 0;     ///< dwIndex: the adapter's
    Ip4Address Mask{};           ///< dwMask
    Ip4Address Broadcast{};      ///< dwBCastAddr: the broadcast address itself; 0.0.0.0 when there is none
    std::uint32_t ReasmSize = 0; ///< dwReasmSize: largest datagram that is put together, in bytes
    std::uint16_t Reserved = 0;  ///< unused1
    std::uint16_t Type = 0;      ///< unused2, later named wType: IpAddressPrimary, IpAddressDynamic
};

/// An IPv6 address of an adapter (MIB_UNICASTIPADDRESS_ROW).
struct UnicastIpAddressRow {
    Ip6Address Address{};                ///< Address
    std::string Text;                    ///< the address as RFC 5952 writes it
    std::uint32_t Index = 0;             ///< InterfaceIndex: the adapter's
    std::uint8_t OnLinkPrefixLength = 0; ///< OnLinkPrefixLength: bits of the network's part, 0 to 128
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

    // A table that cannot be read is nullopt.

    /// All adapters, in ascending order of their index.
    [[nodiscard]] virtual std::optional<std::vector<InterfaceRow>> GetIfTable() = 0;

    /// The adapters that went since the last call, up to the last GetIfTable, with their last counters: also
    /// those that no table has ever shown. In the order in which they went.
    [[nodiscard]] virtual std::vector<InterfaceRow> TakeRemoved() = 0;

    /// Everything about all adapters, in ascending order of their index: for people to look at, not for every
    /// second.
    [[nodiscard]] virtual std::optional<std::vector<InterfaceEntry>> GetIfTable2() = 0;

    /// All IPv4 addresses in ascending order.
    [[nodiscard]] virtual std::optional<std::vector<IpAddressRow>> GetIpAddrTable() = 0;

    /// All IPv6 addresses in ascending order; none on a system without IPv6.
    [[nodiscard]] virtual std::optional<std::vector<UnicastIpAddressRow>> GetUnicastIpAddressTable() = 0;

    /// All zero when the system does not tell.
    [[nodiscard]] virtual TcpStatistics GetTcpStatistics() = 0;
};

} // namespace korvalin
