#pragma once

#include "platform/Internet.h"
#include "platform/NetworkTables.h"
#include "platform/Ras.h"

#include <map>
#include <stdexcept>

namespace korvalin {

class FakeNetworkTables : public NetworkTables {
  public:
    std::vector<InterfaceRow> Rows;
    std::vector<InterfaceEntry> Entries;
    std::vector<IpAddressRow> Addresses;
    std::vector<UnicastIpAddressRow> Addresses6;
    TcpStatistics Tcp;
    int Result = 0; ///< of every table of adapters and addresses
    bool Throws = false;

    int GetIfTable(std::vector<InterfaceRow>& rows, bool) override {
        if (Throws) throw std::runtime_error("the interface table is gone");
        return Give(Rows, rows);
    }
    int GetIfTable2(std::vector<InterfaceEntry>& entries) override { return Give(Entries, entries); }
    int GetIpAddrTable(std::vector<IpAddressRow>& rows) override { return Give(Addresses, rows); }
    int GetUnicastIpAddressTable(std::vector<UnicastIpAddressRow>& rows) override {
        return Give(Addresses6, rows);
    }
    int GetTcpStatistics(TcpStatistics& statistics) override {
        statistics = Tcp;
        return 0;
    }

    /// Adds an Ethernet adapter that counts in 64 bits.
    InterfaceRow& Add(const std::string& description, std::uint64_t in, std::uint64_t out) {
        Rows.push_back({static_cast<std::uint32_t>(Rows.size() + 1), IfTypeEthernet,
                        OperationalStatus::Operational, in, out, true, description, ""});
        return Rows.back();
    }

  private:
    template <typename Row>
    int Give(const std::vector<Row>& table, std::vector<Row>& rows) const {
        rows = Result == 0 ? table : std::vector<Row>{};
        return Result;
    }
};

class FakeInternet : public Internet {
  public:
    ConnectedState State{true, InternetConnectionLan};

    ConnectedState GetConnectedState() override { return State; }
};

class FakeRas : public Ras {
  public:
    struct Line {
        RasConnection Connection;
        RasStatistics Statistics;
        std::uint32_t State = RascsConnected;
    };
    std::vector<Line> Lines;
    bool Throws = false;

    int EnumConnections(std::vector<RasConnection>& connections, std::uint32_t& count) override {
        if (Throws) throw std::runtime_error("the remote access service is gone");
        count = static_cast<std::uint32_t>(Lines.size());
        if (Lines.size() > connections.size()) return ErrorBufferTooSmall;
        for (std::size_t i = 0; i < Lines.size(); ++i)
            connections[i] = Lines[i].Connection;
        return 0;
    }
    int GetConnectionStatistics(std::int32_t handle, RasStatistics& statistics) override {
        statistics = Find(handle).Statistics;
        return 0;
    }
    int GetConnectStatus(std::int32_t handle, std::uint32_t& state) override {
        state = Find(handle).State;
        return 0;
    }

  private:
    Line& Find(std::int32_t handle) {
        for (Line& line : Lines) {
            if (line.Connection.Handle == handle) return line;
        }
        throw std::logic_error("unknown handle");
    }
};

} // namespace korvalin
