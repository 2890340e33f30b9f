#include "StatsFixture.h"
#include "stats/BillingPeriod.h"

using namespace korvalin;

namespace {

using Tariffs = StatsFixture;

constexpr Date minute = 60 * OneSecond;

TEST_F(Tariffs, ALineIsItsOwnAliasUntilItGetsAnother) {
    settings.SetReg("eth0_Alias", std::string("Home"));
    settings.SetReg("wlan0_Alias", std::string("home"));
    EXPECT_EQ(aliases.GetAlias("ETH0"), "Home");
    EXPECT_EQ(aliases.GetAlias("wlan0"), "home");
    EXPECT_EQ(aliases.GetAlias("Office"), "Office");
    EXPECT_EQ(settings.Get(Keys::Alias("Office")), "Office") << "which is stored";
    settings.SetReg("Office_Alias", std::string("changed"));
    EXPECT_EQ(aliases.GetAlias("office"), "Office") << "known lines are not looked up again";
    EXPECT_EQ(aliases.AliasCount(), 2U) << "one for both lines";
    EXPECT_EQ(aliases.AliasIndex("HOME"), 1U);
    EXPECT_EQ(aliases.AliasIndex("nobody"), 0U);
    EXPECT_THROW(aliases.Alias(0), std::out_of_range);
}

TEST_F(Tariffs, AnAliasHasTheTariffOfItsSettingsWithinTheirLimits) {
    units.SetUnits("KB", "MiB");
    const std::pair<const char*, const char*> stored[] = {{"FreeHours", "40"},     {"FreeVolume", "2000000"},
                                                          {"MonthStartDay", "20"}, {"RoundSeconds", "61"},
                                                          {"Up1MB", "False"},      {"TrayTime", "True"}};
    for (const auto& [name, value] : stored)
        settings.SetReg(std::string("eth0_") + name, std::string(value));
    aliases.GetAlias("eth0");
    const AliasInfo& info = aliases.Alias(1);
    EXPECT_EQ(info.FreeHours, 40);
    EXPECT_EQ(info.FreeVolumeBytes, info.FreeVolume * 1e6) << "whatever the unit";
    EXPECT_TRUE(info.TrayTime && !info.TrayVol && !info.Up1MB && info.RoundSeconds <= 60);
    EXPECT_EQ(info.PeriodBegin, DateSerial(2024, 2, 20));
    EXPECT_EQ(info.PeriodEnd, DateSerial(2024, 3, 19));
    EXPECT_EQ(info.DaysInPeriod, 29);
    EXPECT_EQ(info.DaysElapsed, 25);
    EXPECT_EQ(info.FractionElapsed, 0.8621);
}

// Walks through the days of some years and notes on which of them a period begins.
TEST(BillingPeriod, BeginsOnTheStartDayOrAfterTheMonthThatIsTooShort) {
    constexpr std::pair<int, int> spans[] = {
        {100, 101}, {1899, 1901}, {2023, 2025}, {2099, 2101}, {9997, 9999}};
    for (int startDay = 1; startDay <= 31; ++startDay) {
        for (const auto& [firstYear, lastYear] : spans) {
            Date day = DateSerial(firstYear, 1, 1);
            Date begin = 0; // of the period that holds `day`; 0: it began before the walk
            std::vector<Date> open;
            int lengthBefore = 31;
            for (int month = 0; month < 12 * (lastYear - firstYear + 1); ++month) {
                const int year = firstYear + month / 12;
                const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
                const int lengths[] = {31, leap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
                for (int dayOfMonth = 1; dayOfMonth <= lengths[month % 12]; ++dayOfMonth, ++day) {
                    if (dayOfMonth == startDay || (dayOfMonth == 1 && lengthBefore < startDay)) {
                        for (const Date past : open)
                            ASSERT_EQ(PeriodEndOf(past, startDay), day - 1) << startDay << " " << past;
                        open.clear();
                        begin = day;
                    }
                    open.push_back(day);
                    if (begin == 0) continue;
                    ASSERT_EQ(PeriodBeginOf(day + 0.99, startDay), begin) << startDay << " " << day;
                }
                lengthBefore = lengths[month % 12];
            }
        }
    }
}

TEST(BillingRounding, RoundsUpWithinTheMinuteAndToTheNextUnit) {
    for (int step = 1; step <= 60; ++step) {
        for (int second = 0; second < 60; ++second) {
            int rest = second;
            while (rest > step)
                rest -= step;
            const int added = step > 1 && second > 0 ? step - rest : 0;
            EXPECT_NEAR(RoundDuration(1 + 12 * minute + second * OneSecond, step),
                        1 + 12 * minute + (second + added) * OneSecond, 1e-9)
                << second << " by " << step;
        }
    }
    const std::pair<double, double> volumes[] = {{0, 1e6}, {2'500'000, 3e6}, {2'999'999, 3e6}, {3e6, 4e6}};
    for (const auto& [bytes, rounded] : volumes)
        EXPECT_EQ(RoundVolume(bytes, 1e6), rounded) << bytes;
}

TEST_F(Tariffs, MonthSumsHoldWhatEndedInTheCurrentPeriod) {
    settings.SetReg("eth1_Alias", std::string("ETH0"));
    settings.SetReg("eth0_MonthStartDay", 10);
    settings.SetReg("eth0_RoundSeconds", 60);
    const auto info = [&](StatRecord& record, std::string_view text) {
        record.Info = records.Texts.Store(text);
    };
    Add("eth0", At("2024-03-09 23:00:00"), At("00:59:59"), 1);         // ended a second too early
    Add("eth0", At("2024-03-09 23:00:00"), At("01:00:00"), 2'500'000); // at the first moment
    Add("eth1", At("2024-03-08 00:00:00"), At("2024-03-14") - At("2024-03-08") + 61 * OneSecond, 10);
    Add("wlan0", At("2024-03-01"), At("00:00:01"), 5).BytesTransmitted = 6;
    info(Add("eth0", At("2024-03-14"), At("01:00:00"), 100), "RUNNING");
    lines.LineTable(1).EntryName = "tun0";
    monthSums.CalcStatsThisMonth(records, 0);
    ASSERT_TRUE(monthSums.Valid());
    ASSERT_EQ(aliases.AliasCount(), 3U);
    EXPECT_EQ(aliases.AliasIndex("tun0"), 3U) << "open lines are known after those of the records";
    const StatRecord& sum = monthSums.Sum(1);
    EXPECT_EQ(sum.ConnCount, 2);
    EXPECT_EQ(sum.BytesReceived, 2'500'010);
    EXPECT_EQ(sum.VolumeRounded, 4'000'000);
    EXPECT_NEAR(sum.Duration, 6 + 61 * minute + OneSecond, 1e-9);
    EXPECT_NEAR(sum.DurationRounded, 6 + 62 * minute, 1e-9);
    EXPECT_EQ(sum.StatPeriodBegin, At("2024-03-10"));
    EXPECT_EQ(monthSums.Sum(2).BytesTransmitted, 6);
    EXPECT_EQ(monthSums.Sum(3).ConnCount, 0);

    clock.SetWallClock(At("2024-04-09 23:59:59"));
    EXPECT_EQ(monthSums.Sum(1).ConnCount, 2);
    clock.Advance(1);
    EXPECT_EQ(monthSums.Sum(1).ConnCount, 0) << "a new period";
    EXPECT_EQ(monthSums.Sum(1).StatPeriodBegin, At("2024-04-10"));
    aliases.GetAlias("late");
    EXPECT_EQ(monthSums.Sum(4).StatPeriodBegin, At("2024-04-01"));
    records = StatRecords();
    monthSums.CalcStatsThisMonth(records, 0);
    EXPECT_EQ(monthSums.UseOf("eth0").UsedBytes, 0) << "neither recorded nor open";
}

// Without rounding EveryByte looks at it at every moment.
TEST_F(Tariffs, TheMonthsUseIsRoundedForEachConnectionRecordedOrOpen) {
    settings.SetReg("eth1_Alias", std::string("eth0"));
    monthSums.CalcStatsThisMonth(records, 0);
    lines.LineTable.Resize(2);
    const auto open = [&](std::size_t line, const char* name, Date logIn, double hours, double received) {
        LineRecord& record = lines.LineTable(line);
        record.EntryName = name;
        record.LogIn = logIn;
        record.Duration = hours / 24;
        record.BytesReceived = received;
        record.Connected = true;
    };
    const auto used = [&] { return monthSums.UseOf("eth1").UsedBytes / 1e6; };
    open(1, "eth0", At("2024-03-15 11:00:00"), 1, 1'500'000);
    open(2, "eth1", At("2024-03-15 11:00:00"), 1, 200'000);
    EXPECT_EQ(used(), 2 + 1) << "all lines of the alias";
    OpenConnection part = ConnectionOf(lines.LineTable(1));
    monthSums.Add(part);
    lines.LineTable(1).RecordedReceived = 1'500'000;
    lines.LineTable(1).Connected = false;
    EXPECT_EQ(used(), 2 + 1) << "it has only become a record";
    part.LogIn = At("2024-03-15 20:00:00");
    part.End = At("2024-03-15 23:59:59");
    part.BytesReceived = 400'000;
    monthSums.Add(part);
    EXPECT_EQ(used(), 2 + 1 + 1);
    open(1, "eth0", At("2024-03-16"), 1, 1'500'000 + 500'000);
    EXPECT_EQ(used(), 2 + 1 + 1) << "both parts over midnight together are below a unit";
}

} // namespace
