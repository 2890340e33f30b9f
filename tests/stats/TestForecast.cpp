#include "StatsFixture.h"

#include <random>

using namespace korvalin;

namespace {

class Forecasts : public StatsFixture {
  protected:
    Forecasts() { settings.SetReg("eth0_Up1MB", false); }

    AliasUse Use() {
        monthSums.CalcStatsThisMonth(records, 0);
        return monthSums.UseOf(aliases.AliasIndex("eth0"));
    }
};

// Random days against sums that are made record by record.
TEST_F(Forecasts, AreWhatIsUsedAndTheMeanOfTheLastDaysForThoseThatAreLeft) {
    settings.SetReg("eth0_FreeVolume", 100);
    settings.SetReg("eth0_FreeHours", 40);
    std::minstd_rand random(7);
    const Date today = DayOf(clock.Now());
    for (const int history : {0, 1, 5, 28, 60}) {
        records = StatRecords();
        double used = 0, usedToday = 0, before = 0, hours = 0;
        for (int back = history; back >= 0; --back) {
            // A day without use counts too, but the first one begins with some.
            if (back != history && back != 0 && random() % 3 == 0) continue;
            const auto bytes = static_cast<double>(1 + random() % 2'000'000);
            Add("eth0", today - back + 0.25, 1.0 / 24, bytes);
            if (today - back >= DateSerial(2024, 3, 1)) used += bytes, hours += 1;
            if (back == 0) usedToday = bytes;
            if (back >= 1 && back <= 28) before += bytes;
        }
        const int days = std::min(history, 28);
        const double mean = days > 0 ? before / days : 0;
        const AliasUse use = Use();
        EXPECT_NEAR(use.Volume.Used, used, 1e-3) << history;
        EXPECT_NEAR(use.Volume.Today, usedToday, 1e-3) << history;
        EXPECT_EQ(use.Volume.HasForecast, days > 0) << history;
        EXPECT_NEAR(use.Volume.MeanPerDay, mean, 1e-3) << history;
        EXPECT_NEAR(use.Volume.Forecast(), used + mean * 16.5, 1e-2) << "noon of the 15th of 31 days";
        EXPECT_NEAR(use.Volume.LeftPerDay(), (100e6 - used) / 17, 1e-3) << history;
        EXPECT_NEAR(use.Online.Used * 24, hours, 1e-6) << history;
        EXPECT_NEAR(use.Online.Percent(), hours / 40 * 100, 1e-6) << history;
    }
}

TEST_F(Forecasts, WhatIsOpenCountsToday) {
    LineRecord& line = lines.LineTable(1);
    line.EntryName = "eth0";
    line.LogIn = At("2024-03-15 11:00:00");
    line.Duration = 1.0 / 24;
    line.BytesReceived = 5e6;
    line.Connected = true;
    const AliasUse use = Use();
    EXPECT_EQ(use.Volume.Used, 5e6);
    EXPECT_EQ(use.Volume.Today, 5e6);
    EXPECT_NEAR(use.Online.Today * 24, 1, 1e-6);
    EXPECT_FALSE(use.Volume.HasAllowance());
    EXPECT_EQ(use.Volume.Percent(), 0);
}

TEST_F(Forecasts, TheProvidersFigureHoldsForItsPeriodAndTouchesNoRecord) {
    Add("eth0", At("2024-03-14"), At("01:00:00"), 5e6);
    Use();
    const std::size_t alias = aliases.AliasIndex("eth0");
    for (const auto& [more, used] : {std::pair(7, 12e6), std::pair(-2, 3e6), std::pair(-9, 0.0)}) {
        aliases.Correct(alias, more);
        EXPECT_EQ(Use().Volume.Used, used);
        EXPECT_EQ(monthSums.UseOf("eth0").UsedBytes, used);
        EXPECT_EQ(monthSums.Sum(alias).VolumeRounded, 5e6);
    }
    clock.SetWallClock(At("2024-04-01 00:00:01"));
    EXPECT_EQ(monthSums.UseOf(alias).Correction, 0);
    clock.SetWallClock(At("2024-03-31 00:00:01"));
    EXPECT_EQ(Use().Correction, -9e6);
    aliases.Correct(alias, 0);
    EXPECT_EQ(Use().Volume.Used, 5e6);
}

} // namespace
