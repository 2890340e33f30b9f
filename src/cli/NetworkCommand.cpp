#include "base/Text.h"
#include "cli/Commands.h"
#include "settingsdlg/NetworkTexts.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace korvalin {
namespace {

using Json = nlohmann::ordered_json;

// An object for each column but the first, which holds the names of the fields. The first field's name
// depends on the user's language; a program that reads this does not.
Json AdaptersAsJson(const TextTable& table) {
    Json adapters = Json::array();
    const std::vector<std::string>& names = table.Columns.front().Cells;
    for (std::size_t column = 1; column < table.Columns.size(); ++column) {
        const std::vector<std::string>& cells = table.Columns[column].Cells;
        Json adapter = {{"description", cells.front()}};
        for (std::size_t row = 1; row < names.size(); ++row)
            adapter[names[row]] = cells[row];
        adapters.push_back(std::move(adapter));
    }
    return adapters;
}

Json AddressesAsJson(const TextTable& table) {
    Json addresses = Json::array();
    for (std::size_t row = 0; row < table.RowCount(); ++row) {
        Json address;
        for (const TextTable::Column& column : table.Columns)
            address[column.Caption] = column.Cells[row];
        addresses.push_back(std::move(address));
    }
    return addresses;
}

std::size_t WidthOf(const TextTable::Column& column) {
    std::size_t width = CharacterCount(column.Caption);
    for (const std::string& cell : column.Cells)
        width = std::max(width, CharacterCount(EscapeControls(cell)));
    return width;
}

void Append(std::string& line, const std::string& text, std::size_t width) {
    line += text + std::string(width - CharacterCount(text) + 2, ' ');
}

void PrintTable(const TextTable& table) {
    std::vector<std::string> lines(1 + table.RowCount());
    for (const TextTable::Column& column : table.Columns) {
        const std::size_t width = WidthOf(column);
        Append(lines[0], column.Caption, width);
        for (std::size_t row = 0; row < column.Cells.size(); ++row)
            Append(lines[1 + row], EscapeControls(column.Cells[row]), width);
    }
    for (const std::string& line : lines)
        fmt::print("{}\n", line.substr(0, line.find_last_not_of(' ') + 1));
}

} // namespace

void PrintNetwork(NetworkTables& network, Language& language, const Locale& locale, bool asJson) {
    const TextTable adapters = BuildAdapterTable(network, language, locale);
    const TextTable addresses = BuildAddressTable(network);
    if (asJson) {
        const Json document = {{"adapters", AdaptersAsJson(adapters)},
                               {"addresses", AddressesAsJson(addresses)}};
        // A name may hold any bytes; one that is no UTF-8 must not end the output.
        fmt::print("{}\n", document.dump(1, ' ', false, Json::error_handler_t::replace));
    } else {
        PrintTable(adapters);
        fmt::print("\n");
        PrintTable(addresses);
    }
}

} // namespace korvalin
