#pragma once

#include "platform/Internet.h"
#include "platform/NetworkTables.h"
#include "platform/Networks.h"
#include "platform/Ras.h"

#include <algorithm>
#include <deque>
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
    bool IsUnreadable = false; ///< every table of adapters and addresses
    bool Throws = false;

    std::optional<std::vector<InterfaceRow>> GetIfTable() override {
        if (Throws) throw std::runtime_error("the interface table is gone");
        return Give(Rows);
    }
    std::vector<InterfaceRow> TakeRemoved() override { return std::exchange(Removed, {}); }
    std::optional<std::vector<InterfaceEntry>> GetIfTable2() override { return Give(Entries); }
    std::optional<std::vector<IpAddressRow>> GetIpAddrTable() override { return Give(Addresses); }
    std::optional<std::vector<UnicastIpAddressRow>> GetUnicastIpAddressTable() override {
        return Give(Addresses6);
    }
    TcpStatistics GetTcpStatistics() override { return {}; }

    /// Adds an Ethernet adapter that counts in 64 bits.
    InterfaceRow& Add(const std::string& description, std::uint64_t in, std::uint64_t out) {
        Rows.push_back({static_cast<std::uint32_t>(Rows.size() + 1), IfTypeEthernet,
                        OperationalStatus::Operational, in, out, true, description, "", true});
        return Rows.back();
    }

  private:
    template <typename Row>
    std::optional<std::vector<Row>> Give(const std::vector<Row>& table) const {
        return IsUnreadable ? std::nullopt : std::optional(table);
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

    bool Metered = false;

    ConnectedState GetConnectedState() override { return State; }
    bool IsMetered() override { return Metered; }
    DialResult Dial(const std::string& entryName, std::uint32_t flags) override {
        const std::size_t dial = Dials.size();
        Dials.emplace_back(entryName, flags);
        OnDial(entryName);
        const int error = dial < DialResults.size() ? DialResults[dial] : 0;
        return {error, error == 0 ? Connection : 0};
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

    std::vector<RasConnection> EnumConnections() override {
        if (Throws) throw std::runtime_error("the remote access service is gone");
        std::vector<RasConnection> connections;
        for (const Line& line : Lines)
            connections.push_back(line.Connection);
        return connections;
    }
    RasStatistics GetConnectionStatistics(std::int32_t handle) override { return Find(handle).Statistics; }
    std::uint32_t GetConnectStatus(std::int32_t handle) override { return Find(handle).State; }
    struct Entry {
        std::string Name;
        PhoneEntry Properties;
    };
    std::vector<Entry> Entries;
    /// Errors of the coming looks at the entries, in order; 0 once they are used up.
    std::deque<int> EntriesErrors;
    std::vector<std::int32_t> HungUp;
    bool Stubborn = false; ///< connections stay up although they are hung up

    PhoneBookNames EnumEntries() override {
        PhoneBookNames names;
        if (!EntriesErrors.empty()) {
            names.Error = EntriesErrors.front();
            EntriesErrors.pop_front();
        }
        for (const Entry& entry : Entries)
            if (names.Error == 0) names.Names.push_back(entry.Name);
        return names;
    }
    std::optional<PhoneEntry> GetEntryProperties(const std::string& entryName) override {
        for (const Entry& known : Entries)
            if (known.Name == entryName) return known.Properties;
        return std::nullopt;
    }
    void HangUp(std::int32_t handle) override {
        HungUp.push_back(handle);
        if (!Stubborn)
            std::erase_if(Lines, [&](const Line& line) { return line.Connection.Handle == handle; });
    }

  private:
    Line& Find(std::int32_t handle) {
        const auto found =
            std::ranges::find(Lines, handle, [](Line& line) { return line.Connection.Handle; });
        if (found == Lines.end()) throw std::logic_error("unknown handle");
        return *found;
    }
};

} // namespace korvalin
