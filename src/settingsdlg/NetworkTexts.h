#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace korvalin {

class Language;
class NetworkTables;
struct Locale;

/// A table of texts for a list, a page or a terminal. Every column has a cell in each row.
struct TextTable {
    struct Column {
        std::string Caption;
        std::vector<std::string> Cells;
    };

    std::vector<Column> Columns;

    std::size_t RowCount() const { return Columns.empty() ? 0 : Columns.front().Cells.size(); }
};

/// Width of the adapter table's first column in twips.
inline constexpr int AdapterCaptionColumnTwips = 2500;

/// What the system tells of its network adapters now: a row for each field, the first column with the fields'
/// captions, then a column for each adapter. When the system cannot tell, the captions alone.
TextTable BuildAdapterTable(NetworkTables& network, Language& language, const Locale& locale);

/// The IP addresses that the system has now: a row for each IPv4 address, below them one for each IPv6
/// address, whose mask is the length of its prefix ("/64") and which lacks what only IPv4 has. When the
/// system cannot tell, the columns alone.
TextTable BuildAddressTable(NetworkTables& network);

/// The TCP figures of the whole machine in one line; empty when the system does not tell.
std::string TcpText(NetworkTables& network, Language& language, const Locale& locale);

} // namespace korvalin
