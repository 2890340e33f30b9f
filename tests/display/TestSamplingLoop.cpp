#include "display/SamplingLoop.h"
#include "traffic/TrafficFixture.h"

using namespace korvalin;

namespace {

// Notes what the loop asks of the window.
class FakeWindow : public MonitorWindow {
  public:
    Lines Calls;
    int ChartDrawings = 0, CaptionsShown = 0, Left = 150;
    std::function<void()> OnDraw = [] {};

    void DrawChart(bool) override {
        ++ChartDrawings;
        OnDraw();
    }
    void IconDraw() override {}
    void ShowCaption() override { ++CaptionsShown; }
    void ShowMainWindow(bool show) override { Calls.emplace_back(show ? "show" : "hide"); }
    bool HangUpItemVisible() override { return false; }
    void RefreshDialMenus() override {}
    void RefreshLinesMenu() override {}
    void RestoreGeometry() override { Calls.emplace_back("restore"); }
    void SaveGeometry() override { Calls.emplace_back("save"); }
    WindowPosition Position() override { return {Left, 0}; }
    void SetTopmost(bool) override {}
    void SetOpacity(int) override {}
    void ShowFixedTrayIcon() override {}
};

class Sampling : public TrafficFixture {
  protected:
    Sampling() {
        texts.LineDLShow[0] = true;
        history = RateHistory(240, 1);
        book.Plug({[](const std::string& entry) { return entry; }, [](CloseReason, std::size_t) {},
                   [this] { loop.ResizeRateHistory(); }, [] {}});
        loop.Attach(&window);
        network.Add("eth0", 1000, 500);
    }

    // Lets time pass in steps of 50 ms, as the fast timer would, while 1000 bytes a second arrive.
    void Run(double seconds) {
        for (int tick = 0; tick < seconds * 20 - 0.5; ++tick) {
            clock.Advance(0.05);
            received += 50;
            network.Rows[0].InOctets = 1000 + received;
            loop.TimerMain_Timer();
        }
    }
    const HistorySample& Newest() const { return history.At(history.Samples(), 1); }
    void ExpectSteadyRates() const {
        for (const float rate : Newest().RateDL)
            EXPECT_NEAR(rate, 1000, 1.5);
    }

    RateHistory history;
    InfoTexts texts;
    SamplingLoop loop{{.Clock = clock,
                       .Screen = screen,
                       .Settings = settings,
                       .LineState = lines,
                       .LineMonitor = monitor,
                       .RateHistory = history,
                       .InfoTexts = texts,
                       .Errors = errors}};
    FakeWindow window;
    std::uint64_t received = 0;
};

TEST_F(Sampling, TheTimerNeedNotFireBeforeTheNextStep) {
    Run(5);
    for (int i = 0; i < 20; ++i) {
        clock.Advance(loop.MillisecondsToNextStep() / 1000.0);
        const int before = window.ChartDrawings;
        loop.TimerMain_Timer();
        EXPECT_EQ(window.ChartDrawings, before + 1) << "woken too early";
        EXPECT_GT(loop.MillisecondsToNextStep(), 900);
    }
}

TEST_F(Sampling, ABlockedProgramMakesOneUpdateAndNoBurst) {
    Run(10);
    const int before = window.ChartDrawings;
    clock.Advance(5);
    received += 5000;
    Run(1);
    EXPECT_LE(window.ChartDrawings - before, 2);
    ExpectSteadyRates();
}

TEST_F(Sampling, MidnightASuspendAndAClockThatIsSetLeaveNoTraceInTheRates) {
    struct {
        const char* What;
        Date Start, Step;
        double Asleep;
    } const rows[] = {
        {"midnight", DateSerial(2024, 3, 15) + TimeSerial(23, 59, 55), 0, 0},
        {"summer time begins", DateSerial(2024, 3, 31) + TimeSerial(1, 59, 55), 1.0 / 24, 0},
        {"set back a year", DateSerial(2024, 3, 15) + TimeSerial(12, 0, 0), -365, 0},
        {"back over midnight", DateSerial(2024, 3, 15) + TimeSerial(0, 0, 10), -OneSecond * 30, 0},
        {"asleep over midnight", DateSerial(2024, 3, 15) + TimeSerial(20, 0, 0), 0, 8 * 3600}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.What);
        clock.SetWallClock(row.Start);
        Run(5);
        const int before = window.ChartDrawings;
        const double newestTime = Newest().T;
        const Date logIn = lines.LineTable(1).LogIn;
        clock.SetWallClock(clock.Now() + row.Step);
        clock.Suspend(row.Asleep);
        for (int second = 0; second < 10; ++second) {
            Run(1);
            ExpectSteadyRates();
        }
        EXPECT_EQ(window.ChartDrawings - before, 10);
        EXPECT_NEAR(Newest().T - newestTime, 10, 0.001);
        EXPECT_NEAR(lines.LineTable(1).Duration, clock.Now() - lines.ProgramStart, OneSecond);
        EXPECT_NEAR(lines.LineTable(1).LogIn, logIn + row.Step, OneSecond);
    }
}

TEST_F(Sampling, AnUpdateWithinAnUpdateDoesNothing) {
    int inner = 0;
    window.OnDraw = [&] {
        if (++inner < 5) loop.Get_TransferedData();
    };
    for (const int expected : {1, 2}) {
        loop.Get_TransferedData();
        EXPECT_EQ(inner, expected);
    }
}

TEST_F(Sampling, GoingOnlineShowsAndGoingOfflineHidesTheWindow) {
    int scheduled = 0;
    loop.Plug({.Schedule = [&] { ++scheduled; }});
    const InterfaceRow eth0 = network.Rows[0];
    struct {
        bool Online, AutoShow;
        Lines Calls;
    } const rows[] = {{false, true, {"hide"}},
                      {true, true, {"show"}},
                      {false, true, {"hide"}},
                      {true, false, {}},
                      {false, false, {}}};
    for (const auto& row : rows) {
        network.Rows.clear();
        if (row.Online) network.Rows.push_back(eth0);
        texts.AutoShow = row.AutoShow;
        window.Calls.clear();
        clock.Advance(1);
        loop.Get_TransferedData();
        EXPECT_EQ(window.Calls, row.Calls);
    }
    EXPECT_EQ(scheduled, 2);
    EXPECT_EQ(window.CaptionsShown, 5) << "offline too: the old rates must not stay in the title";
}

TEST_F(Sampling, TheUpdateCheckRunsOnceWhenItIsDue) {
    int checks = 0;
    loop.Plug({.Check = [&] { ++checks; }});
    Run(5);
    const std::pair<double, int> rows[] = {{68, 0}, {-86400, 1}}; // seconds until it is due; long ago, as after a suspend
    for (const auto& [due, before] : rows) {
        loop.SetUpdateCheckPending(clock.Now() + due * OneSecond);
        Run(66);
        EXPECT_EQ(checks, before);
        Run(5);
        EXPECT_EQ(checks, before + 1);
    }
}

TEST_F(Sampling, AnotherScreenSizeRestoresAndAMovedWindowIsSaved) {
    Run(2);
    window.Calls.clear();
    Run(2);
    EXPECT_TRUE(window.Calls.empty());
    window.Left = 300;
    Run(1.1);
    EXPECT_EQ(window.Calls, Lines{"save"});
    screen.Size = ScreenSize{800, 600};
    Run(1.1);
    EXPECT_EQ(window.Calls, (Lines{"save", "restore"}));
    Run(2);
    EXPECT_EQ(window.Calls.size(), 2U) << "the place after a restore is only remembered";
}

TEST_F(Sampling, TheChartFollowsItsLineByName) {
    settings.SetReg("ChartLineNo", 2);
    network.Add("eth1", 2000, 0);
    network.Add("eth2", 3000, 0);
    struct {
        const char* Case;
        std::function<void(std::vector<InterfaceRow>&)> Change;
        int Expected;
    } const rows[] = {
        {"the number alone is known", [](auto&) {}, 2},
        {"the one before it goes", [](auto& r) { r.erase(r.begin()); }, 1},
        {"it goes itself", [](auto& r) { r.erase(r.begin()); }, 1},
        {"it comes back behind another",
         [](auto& r) {
             r.push_back(
                 {9, IfTypeEthernet, OperationalStatus::Operational, 2000, 0, true, "eth1", "", true});
         },
         2},
    };
    for (const auto& row : rows) {
        row.Change(network.Rows);
        clock.Advance(1.1);
        loop.TimerMain_Timer();
        EXPECT_EQ(texts.ChartLineNo, row.Expected) << row.Case;
    }
    EXPECT_EQ(texts.ChartLineName, "eth1");
}

} // namespace
