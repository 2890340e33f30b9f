#pragma once

#include "platform/Internet.h"
#include "platform/NetworkTables.h"
#include "platform/Networks.h"
#include "platform/Ras.h"

#include <functional>
#include <map>
#include <stdexcept>
#include <utility>

namespace korvalin {

class FakeNetworkTables : public NetworkTables {
  public:
    std::vector<InterfaceRow> Rows;
    std::vector<InterfaceRow> Removed; ///< adapters that went since the last look, with their last counters
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
    std::vector<InterfaceRow> TakeRemoved() override { return std::exchange(Removed, {}); }
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
                        OperationalStatus::Operational, in, out, true, description, "", true});
        return Rows.back();
    }

  private:
    template <typename Row>
    int Give(const std::vector<Row>& table, std::vector<Row>& rows) const {
        rows = Result == 0 ? table : std::vector<Row>{};
        return Result;
    }
};

/// Networks of wireless adapters, by the adapter's name.
class FakeNetworks : public Networks {
  public:
    std::map<std::string, std::string> Names;
    std::string NetworkOf(const std::string& adapter) override {
        const auto found = Names.find(adapter);
        return found == Names.end() ? "" : found->second;
    }
};

class FakeInternet : public Internet {
  public:
    ConnectedState State{true, InternetConnectionLan};

    /// Results of the coming dials, in order; 0 once they are used up.
    std::vector<int> DialResults;
    std::vector<std::pair<std::string, std::uint32_t>> Dials;
    /// Runs while an entry is dialed.
    std::function<void(const std::string& entryName)> OnDial = [](const std::string&) {};
    /// The handle that a successful dial gives.
    std::int32_t Connection = 1;

    ConnectedState GetConnectedState() override { return State; }
    int Dial(const std::string& entryName, std::uint32_t flags, std::int32_t& connection) override {
        const std::size_t dial = Dials.size();
        Dials.emplace_back(entryName, flags);
        OnDial(entryName);
        const int result = dial < DialResults.size() ? DialResults[dial] : 0;
        connection = result == 0 ? Connection : 0;
        return result;
    }
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
    struct Entry {
        std::string Name;
        PhoneEntry Properties;
    };
    std::vector<Entry> Entries;
    /// The result of the sizing call when it is neither 0 nor ErrorBufferTooSmall.
    int EnumEntriesResult = 0;
    int FillEntriesResult = 0;
    std::vector<std::int32_t> HungUp;
    bool Stubborn = false; ///< connections stay up although they are hung up

    int EnumEntries(std::vector<std::string>& names, std::uint32_t& count) override {
        if (EnumEntriesResult != 0) return EnumEntriesResult;
        count = static_cast<std::uint32_t>(Entries.size());
        if (Entries.size() > names.size()) return ErrorBufferTooSmall;
        if (FillEntriesResult != 0) return FillEntriesResult;
        for (std::size_t i = 0; i < Entries.size(); ++i)
            names[i] = Entries[i].Name;
        return 0;
    }
    int GetEntryProperties(const std::string& entryName, PhoneEntry& entry) override {
        entry = {};
        for (const Entry& known : Entries) {
            if (known.Name != entryName) continue;
            entry = known.Properties;
            return 0;
        }
        return ErrorCannotFindPhonebookEntry;
    }
    int HangUp(std::int32_t handle) override {
        HungUp.push_back(handle);
        if (!Stubborn)
            std::erase_if(Lines, [&](const Line& line) { return line.Connection.Handle == handle; });
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
