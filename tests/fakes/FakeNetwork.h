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
    TcpStatistics Tcp;
    int Result = 0;
    bool Throws = false;

    int GetIfTable(std::vector<InterfaceRow>& rows, bool) override {
        if (Throws) throw std::runtime_error("the interface table is gone");
        rows = Result == 0 ? Rows : std::vector<InterfaceRow>{};
        return Result;
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
