#include "TrafficFixture.h"

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
    EXPECT_EQ(lines.LineTable(2).BytesReceived, 5000);
    EXPECT_EQ(lines.LineTable(2).StartTransmitted, 60);
    EXPECT_TRUE(lines.AnyLineConnected);
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
                      {true, 4294967000, 1000, 1000, true},
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

TEST_F(Adapters, OneThatGoesTogetherWithTheLastRouteIsRecorded) {
    network.Add("eth0", 1000, 0);
    Pass();
    Pass();
    network.Add("eth1", 2000, 0);
    Pass();
    EXPECT_EQ(lines.MonitoredLineType, "") << "grown: the type is decided again at the next pass";
    network.Rows.clear();
    internet.State = {false, 0};
    Pass();
    ASSERT_EQ(closed.size(), 2U);
    EXPECT_EQ(closed[1].EntryName, "eth1");
    EXPECT_EQ(lines.LineCount, 0U);
    Pass();
    EXPECT_EQ(closed.size(), 2U) << "once";
}

TEST_F(Adapters, OnlyTheOneThatHasEndedIsRecordedWithItsLastState) {
    const auto disconnected = OperationalStatus::Disconnected;
    struct {
        const char* Case;
        std::function<void(std::vector<InterfaceRow>&)> Change;
        std::string Ended, Open;
    } const rows[] = {
        {"the first drops out, the others move up", [](auto& r) { r.erase(r.begin()); }, "a", "bc"},
        {"the last drops out", [](auto& r) { r.pop_back(); }, "c", "ab"},
        {"the middle one loses its carrier", [&](auto& r) { r[1].OperStatus = disconnected; }, "b", "ac"},
        {"one is replaced by another", [](auto& r) { r[2].Description = "d"; }, "c", "ab"},
        {"a new one comes before them", [](auto& r) { r.insert(r.begin(), r[0])->Description = "n"; }, "",
         "abc"},
        {"the table cannot be read", [&](auto&) { network.Result = 5; }, "abc", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Case);
        network.Rows.clear();
        for (const char* name : {"a", "b", "c"})
            network.Add(name, 5000, 0);
        Pass();
        Pass();
        closed.clear();
        row.Change(network.Rows);
        Pass();
        std::string names;
        for (const Closed& line : closed) {
            names += line.EntryName;
            EXPECT_EQ(line.BytesReceived, 5000);
        }
        EXPECT_EQ(names, row.Ended);
        std::string open; // should the program end now
        for (const LineRecord& line : lines.PreviousLineTable)
            open += line.EntryName;
        EXPECT_EQ(open, row.Open);
        network.Rows.clear();
        network.Result = 0;
        Pass();
        EXPECT_FALSE(lines.AnyLineConnected);
    }
}

TEST_F(Adapters, AFailingReaderNamesItsProgress) {
    network.Throws = true;
    Pass();
    EXPECT_NE(boxes.Take().Text.find("Get_Bytes_Transmitted_LAN - interne Fehlernummer: 1\n"),
              std::string::npos);
}

TEST_F(Adapters, TheSlotOfARenamedOrReplacedAdapterCountsAsAnotherSource) {
    network.Add("eth0", 1000, 0);
    Pass();
    const std::uint32_t before = lines.LineTable(1).CounterSource;
    Pass();
    EXPECT_EQ(lines.LineTable(1).CounterSource, before);
    network.Rows[0] = {7, IfTypeEthernet, OperationalStatus::Operational, 99'000, 40, true, "lan0", ""};
    Pass();
    EXPECT_NE(lines.LineTable(1).CounterSource, before);
    EXPECT_EQ(lines.LineTable(1).StartReceived, 99'000) << "averages count from here";
    EXPECT_EQ(lines.LineTable(1).WrapsReceived, 0);
    EXPECT_EQ(Log(), "") << "a smaller counter of another adapter is no drop";
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
    EXPECT_NEAR(lines.PreviousLineTable(1).LogIn, logIn + 1.0 / 24, 1e-9);
}

} // namespace
