#include "TrafficFixture.h"

using namespace korvalin;

namespace {

class RasLines : public TrafficFixture {
  protected:
    RasLines() { internet.State = {true, InternetConnectionModem | InternetRasInstalled}; }

    void StartAnew() {
        lines = LineState();
        lines.RasInstalled = true;
        ras.Lines.clear();
    }
    void Dial(std::int32_t handle, const std::string& entry) {
        FakeRas::Line line;
        line.Connection = {handle, entry, "Modem"};
        line.Statistics.BytesReceived = 100;
        ras.Lines.push_back(line);
    }
};

TEST_F(RasLines, TheTypeFollowsTheFlags) {
    struct {
        std::uint32_t Flags;
        LineType Expected;
    } const rows[] = {{InternetConnectionModem | InternetRasInstalled, LineType::Ras},
                      {InternetConnectionModem, LineType::Unknown},
                      {InternetConnectionLan, LineType::Lan},
                      {0, LineType::Undecided}};
    for (const auto& row : rows) {
        internet.State = {row.Flags != 0, row.Flags};
        LineState state;
        LineMonitor fresh{MonitorOf(state)};
        fresh.Get_Bytes_Transmitted();
        EXPECT_EQ(state.MonitoredLineType, row.Expected) << row.Flags;
    }
}

TEST_F(RasLines, AnotherConnectionInSlotOneIsAnotherLine) {
    Dial(7, "One");
    Pass();
    Pass();
    ras.Lines.clear();
    Dial(9, "Other");
    Pass();
    ASSERT_EQ(closed.size(), 1U);
    EXPECT_EQ(closed[0].EntryName, "One");
    EXPECT_EQ(lines.LineCount, 1U);
    EXPECT_EQ(lines.LineTable(1).EntryName, "Other");
    EXPECT_NE(Log().find("Leitung 1 disconnected"), std::string::npos);
}

TEST_F(RasLines, AConnectionThatEndsIsRecordedOnceAndTheOthersGoOn) {
    // Which of three ends; those behind it move up a slot.
    for (const std::size_t gone : {1U, 2U, 3U}) {
        StartAnew();
        closed.clear();
        for (int i = 1; i <= 3; ++i)
            Dial(i, "Line" + std::to_string(i));
        Pass();
        Pass();
        ras.Lines.erase(ras.Lines.begin() + static_cast<std::ptrdiff_t>(gone) - 1);
        Pass();
        Pass();
        ASSERT_EQ(closed.size(), 1U) << gone;
        EXPECT_EQ(closed[0].EntryName, "Line" + std::to_string(gone));
        EXPECT_EQ(lines.LineCount, 2U);
        EXPECT_TRUE(lines.LineTable(2).Connected);
    }
}

TEST_F(RasLines, AConnectionIsRecordedAlsoWhenTheNextOneIsStillBeingDialed) {
    Dial(7, "One");
    Pass();
    Pass();
    ras.Lines.clear();
    Dial(9, "One");
    ras.Lines[0].State = 3;
    Pass();
    ASSERT_EQ(closed.size(), 1U);
    EXPECT_EQ(closed[0].BytesReceived, 100);
    ras.Lines[0].State = RascsConnected;
    Pass();
    Pass();
    EXPECT_EQ(closed.size(), 1U);
    EXPECT_TRUE(lines.LineTable(1).Connected);
}

TEST_F(RasLines, ASecondLineThatEndsIsRecordedWhileTheFirstIsStillBeingDialed) {
    Dial(7, "One");
    ras.Lines[0].State = 3;
    Dial(8, "Two");
    Pass();
    Pass();
    ras.Lines.pop_back();
    Pass();
    ASSERT_EQ(closed.size(), 1U);
    EXPECT_EQ(closed[0].EntryName, "Two");
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
    EXPECT_NEAR(lines.LogInShift, 25 * OneSecond, OneSecond / 100);
    EXPECT_NE(Log().find("LogIn-Zeit verschoben: "), std::string::npos);
    Pass();
    EXPECT_NEAR(lines.LogInShift, 25 * OneSecond, OneSecond / 100) << "once";
}

TEST_F(RasLines, CountersGoOnWhenTheyWrapAndADropIsLogged) {
    struct {
        double Before, After, Expected;
        bool Logged;
    } const rows[] = {{4294967000, 500, 4294967296 + 500.0, false},
                      {3000000, 1000000, 1000000, true},
                      {2147483648, 0, 0, true},
                      {2147483649, 0, 4294967296, false}};
    for (const auto& row : rows) {
        StartAnew();
        std::filesystem::remove(folder / "Korvalin_ErrorLog.txt");
        Dial(7, "One");
        ras.Lines[0].Statistics.BytesReceived = static_cast<std::uint64_t>(row.Before);
        Pass();
        Pass();
        ras.Lines[0].Statistics.BytesReceived = static_cast<std::uint64_t>(row.After);
        Pass();
        EXPECT_EQ(lines.LineTable(1).BytesReceived, row.Expected);
        EXPECT_EQ(Log().find("MaxRcved") != std::string::npos, row.Logged) << row.Before;
    }
}

TEST_F(RasLines, MoreConnectionsThanRoomAreAskedForAgain) {
    for (int i = 1; i <= 5; ++i)
        Dial(i, "Line" + std::to_string(i));
    Pass();
    EXPECT_EQ(lines.LineCount, 5U);
    EXPECT_EQ(lines.LineTable(5).EntryName, "Line5");
    EXPECT_EQ(historyResizes, 1);
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
