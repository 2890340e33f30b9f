#include "fakes/FakeClock.h"
#include "traffic/ClockWatch.h"

using namespace korvalin;

namespace {

TEST(ClockWatch, TellsAClockThatWasSetFromTimeThatPassed) {
    FakeClock clock;
    ClockWatch watch(clock);
    clock.Advance(86400);
    EXPECT_EQ(watch.TakeStep(), 0);
    clock.Suspend(3600);
    EXPECT_EQ(watch.TakeStep(), 0) << "asleep is time that passed";
    clock.SetWallClock(clock.Now() + 1.0 / 24);
    EXPECT_NEAR(watch.TakeStep(), 1.0 / 24, 1e-9);
    EXPECT_EQ(watch.TakeStep(), 0) << "a step is reported once";
    clock.SetWallClock(clock.Now() - 30 * OneSecond);
    EXPECT_NEAR(watch.TakeStep(), -30 * OneSecond, 1e-9);
    clock.SetWallClock(clock.Now() + 2);
    watch.Restart();
    EXPECT_EQ(watch.TakeStep(), 0) << "before a restart";
}

TEST(ClockWatch, SlowCorrectionsAddUpToAStep) {
    FakeClock clock;
    ClockWatch watch(clock);
    Date moved = 0;
    for (int second = 0; second < 10; ++second) {
        clock.Advance(1);
        clock.SetWallClock(clock.Now() + 0.2 * OneSecond);
        moved += watch.TakeStep();
    }
    EXPECT_NEAR(moved, 2 * OneSecond, 0.5 * OneSecond);
}

} // namespace
