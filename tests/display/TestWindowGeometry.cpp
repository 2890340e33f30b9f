#include "display/Fade.h"
#include "display/WindowGeometry.h"
#include "fakes/CoreFixture.h"

using namespace korvalin;

struct WindowGeometryTest : CoreFixture {
    WindowGeometry geometry{settings, screen};
};

TEST_F(WindowGeometryTest, WhatIsStoredDescribesTheWindowWithItsCaptionUnlessOnlyThatIsLeft) {
    geometry.Save({1000, 2300, 4000, 1200}, 300, false);
    EXPECT_EQ(geometry.Restore(300), (TwipsRect{1000, 2300, 4000, 1200}));
    EXPECT_EQ(geometry.Restore(0), (TwipsRect{1000, 2000, 4000, 1500}));
    geometry.Save({1100, 2100, 4100, 800}, 0, true);
    EXPECT_EQ(geometry.Restore(0), (TwipsRect{1100, 2100, 4100, 1500})) << "the height is the chart's";
}

TEST_F(WindowGeometryTest, EveryResolutionHasItsOwnPlace) {
    geometry.Save({1000, 2000, 4000, 1500}, 0, false);
    screen.Size = screen.Mode = ScreenSize{800, 600};
    geometry.Save({500, 600, 4000, 1500}, 0, false);
    EXPECT_EQ(geometry.Restore(0).Left, 500);
    screen.Size = screen.Mode = ScreenSize{1280, 1024};
    EXPECT_EQ(geometry.Restore(0).Left, 1000);
}

TEST(Fade, ReachesItsEndInStepsOfATwentieth) {
    Fade fade;
    fade.Start();
    for (int ticks = 1; ticks < 16; ++ticks)
        EXPECT_FALSE(fade.Next(200).Finished);
    const Fade::Tick last = fade.Next(200);
    EXPECT_TRUE(last.Finished && last.Alpha == 200);
}
