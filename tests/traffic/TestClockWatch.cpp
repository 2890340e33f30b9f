#include "fakes/FakeClock.h"
#include "traffic/ClockWatch.h"

using namespace korvalin;

TEST(ClockWatch, TellsAClockThatWasSetFromTimeThatPassed) {
    FakeClock clock;
    ClockWatch watch(clock);
    clock.Advance(86400);
    clock.Suspend(3600);
    EXPECT_EQ(watch.TakeStep(), 0) << "asleep is time that passed";
    for (const Date step : {1.0 / 24, -30 * OneSecond}) {
        clock.SetWallClock(clock.Now() + step);
        EXPECT_NEAR(watch.TakeStep(), step, 1e-9);
        EXPECT_EQ(watch.TakeStep(), 0) << "a step is reported once";
    }
    Date moved = 0;
    for (int second = 0; second < 10; ++second) {
        clock.SetWallClock(clock.Now() + 0.2 * OneSecond);
        moved += watch.TakeStep();
    }
    EXPECT_NEAR(moved, 2 * OneSecond, 0.5 * OneSecond) << "slow corrections add up to a step";
    clock.SetWallClock(clock.Now() + 2);
    watch.Restart();
    EXPECT_EQ(watch.TakeStep(), 0) << "before a restart";
}
