#include "TrafficFixture.h"

using namespace korvalin;

namespace {

class RasLines : public TrafficFixture {
  protected:
    RasLines() { internet.State = {true, InternetConnectionModem | InternetRasInstalled}; }

    void Dial(std::int32_t handle, const std::string& entry, std::uint32_t state = RascsConnected) {
        FakeRas::Line line{{handle, entry, "Modem"}, {}, state};
        line.Statistics.BytesReceived = 100;
        ras.Lines.push_back(line);
    }
};

TEST_F(RasLines, TheTypeFollowsTheFlags) {
    struct {
        bool RasInstalled;
        std::uint32_t Flags;
        LineType Expected;
    } const rows[] = {{true, InternetConnectionModem, LineType::Ras},
                      {false, InternetConnectionModem, LineType::Unknown},
                      {true, InternetConnectionLan, LineType::Lan},
                      {true, 0, LineType::Undecided}};
    Pass();
    for (const auto& row : rows) {
        lines = LineState();
        lines.RasInstalled = row.RasInstalled;
        internet.State.Flags = row.Flags;
        Pass();
        EXPECT_EQ(lines.MonitoredLineType, row.Expected) << row.Flags;
    }
}

TEST_F(RasLines, AConnectionThatEndsIsRecordedOnceAndTheOthersGoOn) {
    using Connections = std::vector<FakeRas::Line>;
    constexpr std::uint32_t dialing = 3;
    struct {
        const char* Case;
        std::function<void(Connections&)> Change;
        std::string Ended, Open;
    } const rows[] = {
        {"the first of three", [](Connections& c) { c.erase(c.begin()); }, "A", "BC"},
        {"the second", [](Connections& c) { c.erase(c.begin() + 1); }, "B", "AC"},
        {"the last", [](Connections& c) { c.pop_back(); }, "C", "AB"},
        {"another in its slot",
         [](Connections& c) {
             c[0].Connection = {9, "D", "Modem"};
         },
         "A", "DBC"},
        {"beside one that is still being dialed",
         [&](Connections& c) {
             c.erase(c.begin());
             c[0].State = dialing;
         },
         "AB", "C"},
        {"the next is still being dialed",
         [&](Connections& c) {
             c = {{{9, "A", "Modem"}, {}, dialing}};
         },
         "ABC", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Case);
        lines = LineState();
        lines.RasInstalled = true;
        ras.Lines.clear();
        for (const char name : {'A', 'B', 'C'})
            Dial(name, {name});
        Pass();
        Pass();
        closed.clear();
        row.Change(ras.Lines);
        Pass();
        Pass();
        std::string recorded, open;
        for (const Closed& line : closed) {
            recorded += line.EntryName;
            EXPECT_EQ(line.BytesReceived, 100);
        }
        for (const LineRecord& line : lines.LineTable)
            open += line.Connected ? line.EntryName : "";
        EXPECT_EQ(recorded, row.Ended);
        EXPECT_EQ(open, row.Open);
    }
    EXPECT_NE(Log().find("Leitung 1 disconnected"), std::string::npos);
}

TEST_F(RasLines, LogInAndDurationFollowWhatRasReports) {
    Dial(7, "One");
    ras.Lines[0].Statistics.ConnectDurationMilliseconds = 90'900;
    Pass();
    // It was up before: the whole seconds that RAS reports, and five for good measure.
    EXPECT_NEAR(lines.LineTable(1).LogIn, clock.Now() - 95 * OneSecond, OneSecond / 100);
    EXPECT_NEAR(lines.LineTable(1).Duration, 90 * OneSecond, OneSecond / 100);
    ras.Lines[0].Statistics.ConnectDurationMilliseconds = 91'900;
    Pass();
    EXPECT_NEAR(lines.LineTable(1).Duration, 96 * OneSecond, OneSecond / 100);
    EXPECT_EQ(lines.LogInShift, 0);
    settings.SetReg("test", true);
    Pass(20); // RAS has stood still
    EXPECT_NEAR(lines.LineTable(1).Duration, 116 * OneSecond, OneSecond / 100);
    EXPECT_NE(Log().find("LogIn-Zeit verschoben: "), std::string::npos);
    Pass();
    EXPECT_NEAR(lines.LogInShift, 25 * OneSecond, OneSecond / 100) << "once";
}

TEST_F(RasLines, AFailureSwitchesTheReaderOffForTheRun) {
    ras.Throws = true;
    Pass();
    EXPECT_NE(boxes.Take().Text.find("Get_Bytes_Transmitted_RAS"), std::string::npos);
    ras.Throws = false;
    Dial(7, "One");
    Pass();
    EXPECT_EQ(lines.LineCount, 0U);
}

} // namespace
