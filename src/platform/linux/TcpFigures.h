#pragma once

#include "platform/NetworkTables.h"

#include <filesystem>

namespace korvalin {

/// The figures of snmp and of sockstat and sockstat6 (the sockets in use, IPv4 and IPv6) in the kernel's
/// folder `procNet`. 0, or the system's error number with `statistics` zeroed when snmp cannot be read.
int ReadTcpFigures(const std::filesystem::path& procNet, TcpStatistics& statistics);

} // namespace korvalin
