#include "settingsdlg/AddressTable.h"

#include "platform/NetworkTables.h"

#include <fmt/format.h>

#include <array>

namespace korvalin {
namespace {

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

TextTable BuildAddressTable(NetworkTables& network) {
    TextTable table;
    for (const std::string_view caption : captions)
        table.Columns.push_back({std::string(caption), {}});
    std::vector<IpAddressRow> rows;
    if (network.GetIpAddrTable(rows) != 0) return table;
    AddRows(rows, table);
    std::vector<UnicastIpAddressRow> rows6;
    if (network.GetUnicastIpAddressTable(rows6) == 0) AddRows(rows6, table);
    return table;
}

} // namespace korvalin
