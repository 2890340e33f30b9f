#pragma once

#include "settingsdlg/TextTable.h"

namespace korvalin {

class NetworkTables;

/// The IP addresses that the system has now: a row for each IPv4 address, below them one for each IPv6
/// address, whose mask is the length of its prefix ("/64") and which lacks what only IPv4 has. When the
/// system cannot tell, the columns alone.
TextTable BuildAddressTable(NetworkTables& network);

} // namespace korvalin
