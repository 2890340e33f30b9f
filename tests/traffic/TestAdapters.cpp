#include "TrafficFixture.h"

#include <fmt/format.h>

using namespace korvalin;

namespace {

using Adapters = TrafficFixture;

TEST_F(Adapters, ThoseAboveTheThresholdArePackedFromLineOne) {
    network.Add("eth0", 101, 50);
    network.Add("wlan0", 100, 50); // equal to the threshold: not active
    network.Add("  tun0 ", 5000, 60);
    network.Add("lo", 9000, 9000).Type = IfTypeSoftwareLoopback;
    Pass();
    ASSERT_EQ(lines.LineCount, 2U);
    EXPECT_EQ(lines.LineTable(1).EntryName, "eth0");
    EXPECT_EQ(lines.LineTable(2).EntryName, "tun0");
    EXPECT_EQ(lines.LineTable(2).LineName, "<tun0>");
    EXPECT_EQ(historyResizes, 1) << "line 1 has room from the beginning";
}

TEST_F(Adapters, CountersContinueBeyond32BitsWhereTheSystemCountsIn32) {
    struct {
        bool Counts64Bits;
        std::uint64_t Before, After;
        double Expected;
        bool Logged;
    } const rows[] = {{false, 4294967000, 1000, 4294967296.0 + 1000, false},
                      {false, 3000000, 1000000, 1000000, true},
                      {true, 4294967000, 1000, 4294967000.0 + 1000, true},
                      {false, 2147483648 + 500, 499, 4294967296.0 + 499, false},
                      {false, 2147483648 + 500, 500, 500, true}};
    for (const auto& row : rows) {
        std::filesystem::remove(folder / "Korvalin_ErrorLog.txt");
        LineRecord line;
        line.EntryName = "eth0";
        line.Counts64Bits = row.Counts64Bits;
        for (const auto raw : {row.Before, row.After}) {
            line.BytesReceived = static_cast<double>(raw);
            book.CheckVolume(line);
            clock.Advance(1);
        }
        EXPECT_EQ(line.BytesReceived, row.Expected);
        EXPECT_EQ(Log().find("RAS_EntryName: eth0") != std::string::npos, row.Logged);
    }
}

TEST_F(Adapters, OnlyTheOneThatHasEndedIsRecordedWithItsLastCounters) {
    using Rows = std::vector<InterfaceRow>;
    const auto disconnected = OperationalStatus::Disconnected;
    struct {
        const char* Case;
        std::function<void(Rows&)> Change;
        std::string Ended, Open;
    } const rows[] = {
        {"the first drops out, the others move up", [](Rows& r) { r.erase(r.begin()); }, "a5000", "bc"},
        {"the last drops out", [](Rows& r) { r.pop_back(); }, "c5000", "ab"},
        {"the middle one loses its carrier",
         [&](Rows& r) {
             r[1].OperStatus = disconnected;
             r[1].InOctets += 7;
         },
         "b5007", "ac"},
        {"one is taken out and told with its last counters",
         [&](Rows& r) {
             network.Removed = {r[0]};
             network.Removed[0].InOctets += 9;
             r.erase(r.begin());
         },
         "a5009", "bc"},
        {"one is made anew",
         [&](Rows& r) {
             network.Removed = {r[2]};
             r[2].Index += 10;
             r[2].InOctets = 300;
         },
         "c5000", "abc"},
        {"one comes and goes between two looks",
         [&](Rows& r) {
             network.Removed = {r[0]};
             network.Removed[0].Index = 99;
             network.Removed[0].Description = "d";
         },
         "d5000", "abc"},
        {"one is renamed", [](Rows& r) { r[1].Description = "x"; }, "b5000", "axc"},
        {"hardware comes up where there was none",
         [](Rows& r) {
             for (InterfaceRow& row : r)
                 row.HasHardware = row.Description == "b";
         },
         "a5000c5000", "b"},
        {"one becomes a port of a bond", [](Rows& r) { r[0].IsPort = true; }, "a5000", "bc"},
        {"the table cannot be read", [&](Rows&) { network.IsUnreadable = true; }, "a5000b5000c5000", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Case);
        ledger.Begin({true, false, {}});
        network.Rows.clear();
        for (const char* name : {"a", "b", "c"})
            network.Add(name, 5000, 0).HasHardware = false;
        Pass();
        Pass();
        closed.clear();
        row.Change(network.Rows);
        Pass();
        std::string recorded;
        for (const Closed& line : closed)
            recorded += fmt::format("{}{:.0f}", line.EntryName, line.BytesReceived);
        EXPECT_EQ(recorded, row.Ended);
        std::string open;
        for (const LineRecord& line : lines.LineTable)
            open += line.EntryName;
        EXPECT_EQ(open, row.Open);
        network.Rows.clear();
        network.IsUnreadable = false;
        Pass();
        EXPECT_FALSE(lines.AnyLineConnected);
    }
}

TEST_F(Adapters, AWirelessLineIsNamedAfterItsNetwork) {
    ras.Entries = {{"Phone", {}}};
    network.Add("wlan0", 5000, 0);
    network.Add("eth0", 5000, 0);
    struct {
        std::string Network;
        bool ByNetwork;
        std::string Expected;
    } const rows[] = {{"Home", true, "Home"},         {"", true, "Home"},
                      {"ETH0", true, "ETH0 (wlan0)"}, {"phone", true, "phone (wlan0)"},
                      {"Home", false, "wlan0"},       {"Home", true, "Home"}};
    for (const auto& row : rows) {
        networks.Names["wlan0"] = row.Network;
        options.LanByNetwork = row.ByNetwork;
        Pass();
        EXPECT_EQ(lines.LineTable(1).EntryName, row.Expected);
        EXPECT_EQ(lines.LineTable(1).DeviceName, "wlan0");
        EXPECT_EQ(lines.LineTable(2).EntryName, "eth0");
    }
    network.Rows[0].OperStatus = OperationalStatus::Disconnected;
    Pass();
    network.Rows[0].OperStatus = OperationalStatus::Operational;
    networks.Names["wlan0"] = "";
    Pass();
    EXPECT_EQ(lines.LineTable(1).EntryName, "wlan0")
        << "what it was on does not outlast the adapter's going down";
}

TEST_F(Adapters, AConnectionCountsFromWhereNobodyHasCountedYet) {
    network.Add("eth0", 5000, 70);
    const JournalFound never;
    JournalFound known{true, true, {}};
    known.Picture.Entries = {{1, "eth0", 4000, 60, 0, {}}};
    JournalFound booted = known;
    booted.SameBoot = false;
    JournalFound ahead = known;
    ahead.Picture.Entries[0].Received = 6000;
    const std::tuple<JournalFound, double, double> rows[] = {
        {never, 0, 0}, {known, 1000, 10}, {booted, 5000, 70}, {ahead, 5000, 10}};
    for (const auto& [found, received, transmitted] : rows) {
        ledger.Begin(found);
        book.ForgetLines();
        Pass();
        EXPECT_EQ(lines.LineTable(1).BytesReceived, received);
        EXPECT_EQ(lines.LineTable(1).BytesTransmitted, transmitted);
    }
}

TEST_F(Adapters, AnotherOneUnderTheNameIsAnotherSourceOfCounters) {
    network.Add("eth0", 1000, 0);
    Pass();
    const std::uint32_t before = lines.LineTable(1).CounterSource;
    network.Rows[0].Description = "lan0";
    Pass();
    EXPECT_EQ(lines.LineTable(1).CounterSource, before) << "a new name, the same counters";
    network.Rows[0] = {7, IfTypeEthernet, OperationalStatus::Operational, 900, 40, true, "lan0", ""};
    Pass();
    EXPECT_NE(lines.LineTable(1).CounterSource, before);
    EXPECT_EQ(Log(), "") << "a smaller counter of another adapter is no drop";
    network.Throws = true;
    Pass();
    EXPECT_NE(boxes.Take().Text.find("Get_Bytes_Transmitted_LAN - interne Fehlernummer: 1\n"),
              std::string::npos);
}

TEST_F(Adapters, LogInMovesWithAWallClockThatIsSet) {
    network.Add("eth0", 1000, 0);
    Pass(10);
    const Date logIn = lines.LineTable(1).LogIn;
    clock.SetWallClock(clock.Now() + 1.0 / 24);
    monitor.ShiftMoments(1.0 / 24);
    Pass(1);
    EXPECT_NEAR(lines.LineTable(1).Duration, 11 * OneSecond, 1e-9);
    EXPECT_NEAR(lines.LineTable(1).LogIn, logIn + 1.0 / 24, 1e-9);
}

} // namespace
