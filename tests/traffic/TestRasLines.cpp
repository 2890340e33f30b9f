#include "TrafficFixture.h"

using namespace korvalin;

namespace {

class RasLines : public TrafficFixture {
  protected:
    RasLines() { internet.State = {true, InternetConnectionModem | InternetRasInstalled}; }

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
        const char* Expected;
    } const rows[] = {{InternetConnectionModem | InternetRasInstalled, "RAS"},
                      {InternetConnectionModem, "unknown"},
                      {InternetConnectionLan, "LAN"},
                      {0, ""}};
    for (const auto& row : rows) {
        internet.State = {row.Flags != 0, row.Flags};
        LineState state;
        LineMonitor fresh{state, book, rasReader, lanReader, options, internet, user, errors};
        fresh.Get_Bytes_Transmitted();
        EXPECT_EQ(state.MonitoredLineType, row.Expected) << row.Flags;
    }
}

TEST_F(RasLines, AnotherConnectionInSlotOneClosesEveryLine) {
    Dial(7, "One");
    Pass();
    Pass();
    ras.Lines.clear();
    Dial(9, "Other");
    Pass();
    ASSERT_EQ(closed.size(), 1U);
    EXPECT_EQ(closed[0].EntryName, "One");
    EXPECT_EQ(lines.LineCount, 0U);
    Pass();
    EXPECT_EQ(lines.LineCount, 1U);
    EXPECT_EQ(lines.LineTable(1).EntryName, "Other");
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
