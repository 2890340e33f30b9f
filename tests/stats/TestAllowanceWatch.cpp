#include "StatsFixture.h"
#include "platform/Notifier.h"
#include "stats/AllowanceWatch.h"

using namespace korvalin;

namespace {

class FakeNotifier : public Notifier {
  public:
    Lines Shown;

    void Notify(const std::string& title, const std::string& text) override {
        Shown.push_back(title + ": " + text);
    }
};

class Warnings : public StatsFixture {
  protected:
    Warnings() {
        WriteTexts("ENG\tmodStats\t9\tused\r\nENG\tmodStats\t10\ttoo fast\r\n");
        settings.SetReg("Language", "ENG");
        EXPECT_TRUE(language.InitProgramTexts());
        settings.SetReg("eth0_Up1MB", false);
        settings.SetReg("eth0_FreeVolume", 100);
        // Long ago, so that a quiet line has a forecast of nothing more.
        Add("eth0", At("2023-01-01"), At("01:00:00"), 1);
    }
    /// What is told by a program that starts now, a second look included.
    Lines Start() {
        FakeNotifier notifier;
        AllowanceWatch watch({.Settings = settings,
                              .Aliases = aliases,
                              .MonthSums = monthSums,
                              .Language = language,
                              .Errors = errors,
                              .Clock = clock});
        watch.Plug(notifier);
        monthSums.CalcStatsThisMonth(records, 0);
        watch.PassEnded();
        watch.Check();
        return notifier.Shown;
    }
    Lines Use(const char* day, double megabytes) {
        clock.SetWallClock(At(day) + 0.5);
        Add("eth0", At(day) + 0.25, 0, megabytes * 1e6);
        return Start();
    }
};

TEST_F(Warnings, EachComesOnceAPeriodOverRestartsToo) {
    const struct {
        const char* Day;
        double Megabytes;
        Lines Told;
    } rows[] = {{"2024-03-30", 79.9, {}},
                {"2024-03-30", 0.1, {"eth0: 80 % used"}},
                {"2024-03-30", 1, {}},
                {"2024-03-31", 17, {"eth0: 95 % used"}},
                {"2024-03-31", 5, {"eth0: 100 % used"}},
                {"2024-03-31", 500, {}},
                {"2024-04-01", 1, {"eth0: too fast"}},
                {"2024-04-01", 200, {"eth0: 100 % used"}},
                {"2024-04-02", 1, {}}};
    for (const auto& row : rows)
        EXPECT_EQ(Use(row.Day, row.Megabytes), row.Told) << row.Day << " " << row.Megabytes;
}

TEST_F(Warnings, AForecastOfTheFirstHoursIsNone) {
    records = StatRecords();
    EXPECT_EQ(Use("2024-03-04", 40), Lines());
    EXPECT_EQ(Use("2024-03-05", 1), Lines{"eth0: too fast"});
}

TEST_F(Warnings, PercentagesAreTheAliassOwn) {
    settings.SetReg("eth0_WarnAt", std::string("50, x 0 -3"));
    EXPECT_EQ(Use("2024-03-31", 49), Lines());
    EXPECT_EQ(Use("2024-03-31", 1), Lines{"eth0: 50 % used"});
    EXPECT_EQ(Use("2024-03-31", 45), Lines());
}

TEST_F(Warnings, WithoutAnAllowanceThereAreNone) {
    settings.SetReg("eth0_FreeVolume", 0);
    EXPECT_EQ(Use("2024-03-30", 5000), Lines());
    EXPECT_TRUE(settings.Get(Keys::Warned("eth0")).empty());
    settings.SetReg("eth0_FreeHours", 1);
    Add("eth0", At("2024-03-30 10:00:00"), At("00:58:00"), 1);
    EXPECT_EQ(Start(), Lines{"eth0: 95 % used"}) << "hours are an allowance too";
}

} // namespace
