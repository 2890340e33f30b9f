#include "inet/UpdateFixture.h"

using namespace korvalin;

namespace {

class UpdateScheduleTest : public UpdateFixture {
  protected:
    UpdateScheduleTest() {
        aboutIsOpen = false;
        Restart();
        Offer(Program::Version().Numbers());
    }
    void Restart() {
        UseSite(siteAddress);
        program->updateSchedule.Plug({.CallAgain = [this](double seconds) { callAgain = seconds; }});
    }
    void Offer(const std::string& version) {
        PutUpdate("Newest Release: x<Upgradable Ax" + version + "-setup.exe Vx" + version + "-setup.exe");
    }
    // As the timer does: after the time that it was told.
    bool Call() {
        clock.Advance(std::exchange(callAgain, 0));
        return program->updateSchedule.AutoUpdateCheck(true);
    }
    bool HasAsked() { return !Asked().empty(); }

    double callAgain = 0;
};

TEST_F(UpdateScheduleTest, ChecksOnceWhenDue) {
    EXPECT_FALSE(Call());
    EXPECT_EQ(callAgain, 68) << "the first call only arms";
    EXPECT_FALSE(HasAsked());
    EXPECT_FALSE(Call());
    EXPECT_TRUE(HasAsked());
    EXPECT_EQ(settings.Get(Keys::UpdateCheckLast), DayOf(clock.Now()));
    EXPECT_EQ(callAgain, 0) << "done for this run";
    program->updateSchedule.Arm();
    EXPECT_EQ(callAgain, 0);
    clock.Advance(30 * SecondsPerDay);
    EXPECT_FALSE(Call());
    EXPECT_FALSE(HasAsked());
    EXPECT_EQ(Log(), "");
    settings.SetReg("UpdateCheckLast", Date(0));
    Restart();
    settings.SetReg("NoInet", true);
    EXPECT_FALSE(Call());
    EXPECT_FALSE(Call());
    settings.SetReg("NoInet", false);
    EXPECT_EQ(callAgain, 0) << "over without the internet";
    EXPECT_FALSE(Call());
    EXPECT_FALSE(HasAsked());
}

TEST_F(UpdateScheduleTest, KnowsWhenACheckIsDue) {
    const Date today = DayOf(clock.Now());
    struct {
        int Weeks;
        Date Last;
        bool Due, Metered = false;
    } const rows[] = {{1, 0, true},         {1, today - 8, true},   {1, today - 7, false},
                      {1, today, false},    {4, today - 28, false}, {4, today - 29, true},
                      {1, today + 1, true}, {4, today + 400, true}, {1, 0, false, true}};
    for (const auto& row : rows) {
        settings.SetReg("UpdateInterval", row.Weeks);
        settings.SetReg("UpdateCheckLast", row.Last);
        internet.Metered = row.Metered;
        Restart();
        EXPECT_FALSE(Call());
        EXPECT_FALSE(Call());
        EXPECT_EQ(HasAsked(), row.Due) << row.Weeks << " weeks, " << row.Last - today;
    }
}

TEST_F(UpdateScheduleTest, TriesAgainAfterAnHourAndSaysSo) {
    http.Answers.clear();
    EXPECT_FALSE(Call());
    EXPECT_FALSE(Call());
    EXPECT_TRUE(HasAsked());
    EXPECT_NE(Log().find("\tAutoUpdate\tReturn 2\r\n"), std::string::npos) << Log();
    EXPECT_EQ(callAgain, 3600);
    program->updateSchedule.Arm(); // online again
    EXPECT_EQ(callAgain, 68);
    EXPECT_FALSE(Call());
    EXPECT_FALSE(HasAsked()) << "not within the hour";
    EXPECT_EQ(callAgain, 3532);
    Offer("9.4.0");
    EXPECT_TRUE(Call());
    EXPECT_EQ(shell.Started.size(), 1U);
    EXPECT_EQ(settings.Get(Keys::UpdateCheckLast), 0) << "the new version looks for itself";
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
