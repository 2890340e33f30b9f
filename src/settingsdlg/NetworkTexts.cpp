#include "settingsdlg/NetworkTexts.h"

#include "base/Numbers.h"
#include "lang/Language.h"
#include "platform/NetworkTables.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace korvalin {
namespace {

using FieldText = std::string (*)(const InterfaceEntry& entry, const Locale& locale);

struct Field {
    std::string_view Caption;
    FieldText Text;
};

template <auto Counter>
std::string Grouped(const InterfaceEntry& entry, const Locale& locale) {
    return FormatWhole(entry.*Counter, locale);
}

std::string Numbered(std::uint32_t number, std::string_view name) {
    return fmt::format("{} {}", number, name);
}

std::string_view TypeName(std::uint32_t type) {
    switch (type) {
    case IfTypeOther: return "Other";
    case IfTypeEthernet: return "Ethernet";
    case IfTypeTokenRing: return "TokenRing";
    case IfTypeFddi: return "FDDI";
    case IfTypePpp: return "Point-to-Point";
    case IfTypeSoftwareLoopback: return "Loopback";
    case IfTypeSlip: return "Slip";
    default: return "";
    }
}

std::string_view AdministrativeName(AdministrativeStatus status) {
    switch (status) {
    case AdministrativeStatus::Enabled: return "Enabled";
    case AdministrativeStatus::Disabled: return "Disabled";
    case AdministrativeStatus::Testing: return "Testing";
    }
    return "";
}

std::string_view OperationalName(OperationalStatus status) {
    switch (status) {
    case OperationalStatus::NonOperational: return "Non-operational";
    case OperationalStatus::Unreachable: return "Unreachable";
    case OperationalStatus::Disconnected: return "Disconnected";
    case OperationalStatus::Connecting: return "Connecting";
    case OperationalStatus::Connected: return "Connected";
    case OperationalStatus::Operational: return "Operational";
    }
    return "";
}

std::string AddressBytes(const PhysicalAddress& address, fmt::format_string<const std::uint8_t&> pattern) {
    std::string text;
    for (std::size_t i = 0; i < std::min(address.Length, address.Bytes.size()); ++i)
        text += fmt::format(pattern, address.Bytes[i]);
    return text;
}

std::string Index(const InterfaceEntry& entry, const Locale&) {
    return std::to_string(entry.Index);
}
std::string Type(const InterfaceEntry& entry, const Locale&) {
    return Numbered(entry.Type, TypeName(entry.Type));
}
std::string Mtu(const InterfaceEntry& entry, const Locale&) {
    return std::to_string(entry.Mtu);
}
std::string AddressDecimal(const InterfaceEntry& entry, const Locale&) {
    return AddressBytes(entry.PhysAddr, "{} ");
}
std::string AddressHexadecimal(const InterfaceEntry& entry, const Locale&) {
    return AddressBytes(entry.PhysAddr, "{:X} ");
}
std::string Administrative(const InterfaceEntry& entry, const Locale&) {
    return Numbered(static_cast<std::uint32_t>(entry.AdminStatus), AdministrativeName(entry.AdminStatus));
}
std::string Operational(const InterfaceEntry& entry, const Locale&) {
    return Numbered(static_cast<std::uint32_t>(entry.OperStatus), OperationalName(entry.OperStatus));
}
std::string LastChange(const InterfaceEntry& entry, const Locale&) {
    return std::to_string(entry.LastChange);
}

// Below the description. The captions are the MIB's and the same in every language.
constexpr std::array<Field, 21> fields = {{
    {"interface index", Index},
    {"interface type", Type},
    {"Maximum Transmission Unit", Mtu},
    {"interface speed (bps)", Grouped<&InterfaceEntry::Speed>},
    {"physical address (decimal)", AddressDecimal},
    {"physical address (hex)", AddressHexadecimal},
    {"admin enabled or disabled", Administrative},
    {"interface operational status", Operational},
    {"last time op status changed", LastChange},
    {"data received (octets)", Grouped<&InterfaceEntry::InOctets>},
    {"packets received (unicast)", Grouped<&InterfaceEntry::InUcastPkts>},
    {"packets received (non-unicast)", Grouped<&InterfaceEntry::InNUcastPkts>},
    {"packets discarded", Grouped<&InterfaceEntry::InDiscards>},
    {"discarded with errors", Grouped<&InterfaceEntry::InErrors>},
    {"discarded, unknown protocol", Grouped<&InterfaceEntry::InUnknownProtos>},
    {"data sent (octets)", Grouped<&InterfaceEntry::OutOctets>},
    {"packets sent (unicast)", Grouped<&InterfaceEntry::OutUcastPkts>},
    {"packets sent (non-unicast)", Grouped<&InterfaceEntry::OutNUcastPkts>},
    {"packets discarded, no errors", Grouped<&InterfaceEntry::OutDiscards>},
    {"packets discarded with errors", Grouped<&InterfaceEntry::OutErrors>},
    {"output queue length", Grouped<&InterfaceEntry::OutQLen>},
}};

TextTable::Column CaptionColumn(Language& language) {
    TextTable::Column column{language.Lng("frmEinstellungen", 21), {language.Lng("frmEinstellungen", 23)}};
    for (const Field& field : fields)
        column.Cells.emplace_back(field.Caption);
    return column;
}

TextTable::Column AdapterColumn(std::size_t number, const InterfaceEntry& entry, const Locale& locale) {
    TextTable::Column column{fmt::format("Adapter {}", number), {}};
    column.Cells.reserve(1 + fields.size());
    column.Cells.push_back(entry.Description);
    for (const Field& field : fields)
        column.Cells.push_back(field.Text(entry, locale));
    return column;
}

constexpr std::array<std::string_view, 7> captions = {
    "Interface Index", "IP Address", "Subnet Mask", "Broadcast Addr", "Reassembly", "unused1", "unused2"};

using Row = std::array<std::string, captions.size()>;

std::string DottedQuad(const Ip4Address& address) {
    return fmt::format("{}.{}.{}.{}", address[0], address[1], address[2], address[3]);
}

std::string Signed(std::uint16_t field) {
    return std::to_string(static_cast<std::int16_t>(field));
}

Row RowOf(const IpAddressRow& row) {
    return {std::to_string(row.Index), DottedQuad(row.Address),       DottedQuad(row.Mask),
            DottedQuad(row.Broadcast), std::to_string(row.ReasmSize), Signed(row.Reserved),
            Signed(row.Type)};
}

Row RowOf(const UnicastIpAddressRow& row) {
    return {std::to_string(row.Index), row.Text, fmt::format("/{}", row.OnLinkPrefixLength)};
}

template <typename AddressRow>
void AddRows(const std::vector<AddressRow>& rows, TextTable& table) {
    for (const AddressRow& row : rows) {
        Row cells = RowOf(row);
        for (std::size_t i = 0; i < cells.size(); ++i)
            table.Columns[i].Cells.push_back(std::move(cells[i]));
    }
}

} // namespace

TextTable BuildAdapterTable(NetworkTables& network, Language& language, const Locale& locale) {
    TextTable table{{CaptionColumn(language)}};
    const auto entries = network.GetIfTable2();
    if (!entries) return table;
    table.Columns.reserve(1 + entries->size());
    for (std::size_t i = 0; i < entries->size(); ++i)
        table.Columns.push_back(AdapterColumn(i + 1, (*entries)[i], locale));
    return table;
}

TextTable BuildAddressTable(NetworkTables& network) {
    TextTable table;
    for (const std::string_view caption : captions)
        table.Columns.push_back({std::string(caption), {}});
    const auto rows = network.GetIpAddrTable();
    if (!rows) return table;
    AddRows(*rows, table);
    if (const auto rows6 = network.GetUnicastIpAddressTable()) AddRows(*rows6, table);
    return table;
}

std::string TcpText(NetworkTables& network, Language& language, const Locale& locale) {
    const TcpStatistics tcp = network.GetTcpStatistics();
    if (tcp.InSegs == 0 && tcp.OutSegs == 0) return {};
    const auto figure = [&](int number, std::uint32_t value) {
        return language.Lng("frmEinstellungen", number) + " " + FormatNumber(value, "#,##0", locale);
    };
    return "TCP: " + figure(50, tcp.NumConns) + ", " + figure(51, tcp.CurrEstab) + ", " +
           figure(52, tcp.InSegs) + ", " + figure(53, tcp.OutSegs);
}

} // namespace korvalin
