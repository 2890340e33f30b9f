#pragma once

#include "platform/NetworkTables.h"

#include <string>

namespace korvalin {

/// Adapters that count on, without the kernel.
class ManyAdapters : public NetworkTables {
  public:
    explicit ManyAdapters(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            rows_.push_back({static_cast<std::uint32_t>(i + 1), IfTypeEthernet,
                             OperationalStatus::Operational, 1000, 1000, true, "veth" + std::to_string(i),
                             ""});
        }
    }
    std::optional<std::vector<InterfaceRow>> GetIfTable() override {
        for (InterfaceRow& row : rows_)
            row.InOctets += 1234;
        return rows_;
    }
    std::vector<InterfaceRow> TakeRemoved() override { return {}; }
    std::optional<std::vector<InterfaceEntry>> GetIfTable2() override {
        std::vector<InterfaceEntry> entries;
        for (const InterfaceRow& row : rows_) {
            InterfaceEntry& entry = entries.emplace_back();
            static_cast<InterfaceRow&>(entry) = row;
            entry.Mtu = 1500;
            entry.Speed = 10'000'000'000;
            entry.PhysAddr = {{2, 252, 0, 0, 0, 1}, 6};
            entry.AdminStatus = AdministrativeStatus::Enabled;
            entry.InUcastPkts = entry.OutUcastPkts = 5'000'000'000;
        }
        return entries;
    }
    std::optional<std::vector<IpAddressRow>> GetIpAddrTable() override { return std::nullopt; }
    std::optional<std::vector<UnicastIpAddressRow>> GetUnicastIpAddressTable() override {
        return std::nullopt;
    }
    TcpStatistics GetTcpStatistics() override { return {}; }

  private:
    std::vector<InterfaceRow> rows_;
};

} // namespace korvalin
