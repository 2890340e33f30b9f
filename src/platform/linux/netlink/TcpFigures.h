#pragma once

#include "platform/NetworkTables.h"
#include "platform/linux/files/KernelFile.h"

#include <filesystem>

namespace korvalin {

/// The figures of snmp and of sockstat and sockstat6 (the sockets in use, IPv4 and IPv6) in the kernel's
/// folder `procNet`.
class TcpFigures {
  public:
    explicit TcpFigures(const std::filesystem::path& procNet);

    /// All zero when snmp cannot be read.
    [[nodiscard]] TcpStatistics Read();

  private:
    KernelFile snmp_;
    KernelFile sockets_;
    KernelFile socketsVersion6_;
};

} // namespace korvalin
