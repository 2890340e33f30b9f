#include "inet/UpdateFixture.h"
#include "inet/UpdateSchedule.h"

using namespace korvalin;

namespace {

class UpdateScheduleTest : public UpdateFixture<FakeWeb> {
  protected:
    UpdateScheduleTest() {
        aboutIsOpen = false;
        UseSite("https://maker.example/", files, signatures);
        schedule.emplace(*check, settings, errors, clock);
        schedule->Plug({.CallAgain = [this](double seconds) { callAgain = seconds; }});
        Offer("2.3.12");
    }
    void Offer(const std::string& version) {
        http.Answers["https://maker.example/update_general.html"].Body =
            http.Answers["https://maker.example/update2312.html"].Body =
                "Newest Release: x<Upgradable Ax" + version + "-new.exe Vx" + version + "-new.exe";
        http.Answers["https://maker.example/new.exe"].Body = std::string(ShortestProgram, 'n');
        http.Answers["https://maker.example/Korvalin.lng"].Body = newTexts;
    }
    // As the timer does: after the time that it was told.
    bool Call() {
        clock.Advance(std::exchange(callAgain, 0));
        return schedule->AutoUpdateCheck(true);
    }
    bool Asked() { return !http.TakeAddresses().empty(); }

    std::optional<UpdateSchedule> schedule;
    double callAgain = 0;
};

TEST_F(UpdateScheduleTest, ChecksOnceWhenDue) {
    EXPECT_FALSE(Call());
    EXPECT_EQ(callAgain, 68) << "the first call only arms";
    EXPECT_FALSE(Asked());
    EXPECT_FALSE(Call());
    EXPECT_TRUE(Asked());
    EXPECT_EQ(settings.Get(Keys::UpdateCheckLast), DayOf(clock.Now()));
    EXPECT_EQ(callAgain, 0) << "done for this run";
    schedule->Arm();
    EXPECT_EQ(callAgain, 0);
    clock.Advance(30 * SecondsPerDay);
    EXPECT_FALSE(Call());
    EXPECT_FALSE(Asked());
    EXPECT_EQ(Log(), "");
}

TEST_F(UpdateScheduleTest, KnowsWhenACheckIsDue) {
    const Date today = DayOf(clock.Now());
    struct {
        int Weeks;
        Date Last;
        bool Due;
    } const rows[] = {{1, 0, true},         {1, today - 8, true},   {1, today - 7, false},
                      {1, today, false},    {4, today - 28, false}, {4, today - 29, true},
                      {1, today + 1, true}, {4, today + 400, true}};
    for (const auto& row : rows) {
        settings.SetReg("UpdateInterval", row.Weeks);
        settings.SetReg("UpdateCheckLast", row.Last);
        schedule.emplace(*check, settings, errors, clock);
        EXPECT_FALSE(Call());
        EXPECT_FALSE(Call());
        EXPECT_EQ(Asked(), row.Due) << row.Weeks << " weeks, " << row.Last - today;
    }
}

TEST_F(UpdateScheduleTest, TriesAgainAfterAnHourAndSaysSo) {
    http.Answers.clear();
    EXPECT_FALSE(Call());
    EXPECT_FALSE(Call());
    EXPECT_TRUE(Asked());
    EXPECT_NE(Log().find("\tAutoUpdate\tReturn 2\r\n"), std::string::npos) << Log();
    EXPECT_EQ(callAgain, 3600);
    schedule->Arm(); // online again
    EXPECT_EQ(callAgain, 68);
    EXPECT_FALSE(Call());
    EXPECT_FALSE(Asked()) << "not within the hour";
    EXPECT_EQ(callAgain, 3532);
    Offer("2.4.0");
    EXPECT_TRUE(Call());
    EXPECT_EQ(shell.Started.size(), 1U);
    EXPECT_EQ(settings.Get(Keys::UpdateCheckLast), 0) << "the new version looks for itself";
}

TEST_F(UpdateScheduleTest, IsOverWithoutInternet) {
    settings.SetReg("NoInet", true);
    EXPECT_FALSE(Call());
    EXPECT_FALSE(Call());
    settings.SetReg("NoInet", false);
    EXPECT_EQ(callAgain, 0);
    EXPECT_FALSE(Call());
    EXPECT_FALSE(Asked());
}

TEST_F(UpdateScheduleTest, WaitsForACheckOnDemand) {
    OnStatus = [&](const std::string&) {
        OnStatus = [](const std::string&) {};
        EXPECT_FALSE(Call());
        EXPECT_FALSE(Call());
        EXPECT_GT(callAgain, 0);
    };
    EXPECT_EQ(OnDemand(), 8);
}

} // namespace
