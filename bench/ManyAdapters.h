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
    int GetIfTable(std::vector<InterfaceRow>& rows, bool) override {
        for (InterfaceRow& row : rows_)
            row.InOctets += 1234;
        rows = rows_;
        return 0;
    }
    std::vector<InterfaceRow> TakeRemoved() override { return {}; }
    int GetIfTable2(std::vector<InterfaceEntry>& entries) override {
        entries.clear();
        for (const InterfaceRow& row : rows_) {
            InterfaceEntry& entry = entries.emplace_back();
            static_cast<InterfaceRow&>(entry) = row;
            entry.Mtu = 1500;
            entry.Speed = 10'000'000'000;
            entry.PhysAddr = {{2, 252, 0, 0, 0, 1}, 6};
            entry.AdminStatus = AdministrativeStatus::Enabled;
            entry.InUcastPkts = entry.OutUcastPkts = 5'000'000'000;
        }
        return 0;
    }
    int GetIpAddrTable(std::vector<IpAddressRow>& rows) override {
        rows.clear();
        return 0;
    }
    int GetUnicastIpAddressTable(std::vector<UnicastIpAddressRow>& rows) override {
        rows.clear();
        return 0;
    }
    int GetTcpStatistics(TcpStatistics&) override { return 0; }

  private:
    std::vector<InterfaceRow> rows_;
};

} // namespace korvalin
