#include "StatsFixture.h"

using namespace korvalin;

namespace {

class PeriodSumsTest : public StatsFixture {
  protected:
    PeriodSumsTest() {
        locale.ShortDate = "dd.mm.yyyy";
        locale.ShortDayNames = {"So", "Mo", "Di", "Mi", "Do", "Fr", "Sa"};
        locale.MonthNames[11] = "Dezember";
    }
    // Each sum as "alias: label, connections, duration".
    Lines Sums(SumPeriod period) {
        aliases.FillAlias(records);
        StatRecords sums;
        periodSums.CalcStatSums(records, period, sums);
        Lines texts;
        for (const StatRecord& sum : sums.List)
            texts.push_back(fmt::format("{}: {}, {}, {}", sum.Alias.View(), sum.PeriodLabel.View(),
                                        sum.ConnCount, FormatDuration(sum.Duration)));
        return texts;
    }
    using Connections = std::vector<std::pair<const char*, const char*>>; // from, till
    void Take(const Connections& connections) {
        records = StatRecords();
        for (const auto& [from, till] : connections)
            Add("a", At(from), At(till) - At(from));
    }
};

TEST_F(PeriodSumsTest, AConnectionBelongsToThePeriodThatItEndedIn) {
    struct {
        SumPeriod Period;
        Connections Records;
        Lines Expected;
    } const rows[] = {
        {SumPeriod::Day,
         {{"2004-12-30 23:50:00", "2004-12-31 00:20:00"}, {"2004-12-30 10:00:00", "2004-12-30 11:00:00"}},
         {"a: 31.12.2004 Fr, 1, 00:30:00", "a: 30.12.2004 Do, 1, 01:00:00"}},
        {SumPeriod::Day, // midnight ends the open day but begins one of its own
         {{"2004-12-30 10:00:00", "2004-12-30 11:00:00"}, {"2004-12-30 23:00:00", "2004-12-31"}},
         {"a: 30.12.2004 Do, 2, 02:00:00"}},
        {SumPeriod::Day, {{"2004-12-30 23:00:00", "2004-12-31"}}, {"a: 31.12.2004 Fr, 1, 01:00:00"}},
        {SumPeriod::Day, // a moment at midnight
         {{"2004-12-30 10:00:00", "2004-12-30 23:59:59"}, {"2004-12-31", "2004-12-31"}},
         {"a: 31.12.2004 Fr, 1, 00:00:00", "a: 30.12.2004 Do, 1, 13:59:59"}},
        {SumPeriod::Day, // one that began later but ended before the period goes with those before it
         {{"2004-12-30 22:00:00", "2004-12-31 00:30:00"}, {"2004-12-30 22:30:00", "2004-12-30 23:00:00"}},
         {"a: 31.12.2004 Fr, 2, 03:00:00"}},
        {SumPeriod::Week,
         {{"2024-12-28 23:00:00", "2024-12-28 23:59:00"}, {"2024-12-28 23:30:00", "2024-12-29 00:01:00"}},
         {"a: 29.12.2024-04.01.2025, 1, 00:31:00", "a: 22.12.2024-28.12.2024, 1, 00:59:00"}},
        {SumPeriod::Week,
         {{"1899-12-29 23:00:00", "1899-12-29 23:30:00"}},
         {"a: 24.12.1899-30.12.1899, 1, 00:30:00"}},
        {SumPeriod::Week, {{"0100-01-01", "0100-01-01 01:00:00"}}, {"a: 27.12.0099-02.01.0100, 1, 01:00:00"}},
        {SumPeriod::Day, {{"9999-12-31 22:00:00", "9999-12-31 23:59:59"}}, {"a: 31.12.9999 Fr, 1, 01:59:59"}},
        {SumPeriod::BillingMonth,
         {{"2004-11-30 23:00:00", "2004-12-01 01:00:00"}, {"2004-12-31 22:00:00", "2004-12-31 23:00:00"}},
         {"a: Dezember 2004, 2, 03:00:00"}}};
    for (const auto& row : rows) {
        Take(row.Records);
        EXPECT_EQ(Sums(row.Period), row.Expected) << row.Records.front().first;
    }
    settings.SetReg("a_MonthStartDay", 15);
    aliases.Clear();
    Take({{"2005-03-14 10:00:00", "2005-03-14 11:00:00"}, {"2005-03-15 10:00:00", "2005-03-15 11:00:00"}});
    EXPECT_EQ(Sums(SumPeriod::BillingMonth),
              (Lines{"a: 15.03.2005 - 14.04.2005, 1, 01:00:00", "a: 15.02.2005 - 14.03.2005, 1, 01:00:00"}));
}

TEST_F(PeriodSumsTest, SumsStandByAliasAndRoundEachConnection) {
    settings.SetReg("eth1_Alias", std::string("Home"));
    settings.SetReg("eth0_Alias", std::string("home"));
    settings.SetReg("home_RoundSeconds", 60);
    for (const char* name : {"wlan0", "eth1", "eth0", "eth1"})
        Add(name, At("2004-12-30 10:00:00"), 61 * OneSecond, 10).BytesTransmitted = 999'990;
    Add("eth0", At("2004-12-31 10:00:00"), OneSecond).Info = records.Texts.Store(InfoRunning);
    EXPECT_EQ(Sums(SumPeriod::Day),
              (Lines{"home: 31.12.2004 Fr, 1, 00:00:01", "Home: 30.12.2004 Do, 3, 00:03:03",
                     "wlan0: 30.12.2004 Do, 1, 00:01:01"}));
    StatRecords sums;
    periodSums.CalcStatSums(records, SumPeriod::Day, sums);
    EXPECT_NEAR(sums.List[1].DurationRounded, 6 * 60 * OneSecond, 1e-9);
    EXPECT_EQ(sums.List[1].BytesReceived, 30);
    EXPECT_EQ(sums.List[1].BytesTransmitted, 3 * 999'990);
    EXPECT_EQ(sums.List[1].VolumeRounded, 6'000'000) << "whole units gain one each";
    EXPECT_EQ(sums.List[1].StatPeriodBegin, sums.List[1].StatPeriodEnd);
}

TEST_F(PeriodSumsTest, PartsOfOneConnectionAreRoundedAsOneWithinAPeriod) {
    settings.SetReg("a_RoundSeconds", 60);
    settings.SetReg("b_Alias", std::string("a"));
    const auto take = [&](const char* line, const char* from, const char* till) {
        Add(line, At(from), At(till) - At(from), 600'000);
    };
    take("a", "2024-12-29 20:00:30", "2024-12-29 23:59:59"); // Sunday
    take("b", "2024-12-29 23:00:00", "2024-12-29 23:59:59"); // another line between the parts
    take("A", "2024-12-31", "2024-12-31 23:59:59");          // a suspend before it
    take("a", "2025-01-01", "2025-01-01 01:00:00");
    take("a", "2025-01-01 02:00:00", "2025-01-01 03:00:00"); // no part
    struct {
        SumPeriod Period;
        std::vector<std::tuple<int, double, Date>> Expected; // connections, volume, duration of the sums
    } const rows[] = {
        {SumPeriod::Day, {{2, 2e6, At("02:00:00")}, {1, 1e6, 1}, {2, 2e6, At("04:00:00") + At("01:00:00")}}},
        {SumPeriod::Week, {{3, 2e6 + 1e6 + 1e6, At("01:00:00") + At("01:00:00") + 1 + At("05:00:00")}}},
        {SumPeriod::BillingMonth,
         {{2, 2e6, At("02:00:00")}, {2, 2e6 + 1e6, 1 + At("04:00:00") + At("01:00:00")}}}};
    aliases.FillAlias(records);
    for (const auto& row : rows) {
        StatRecords sums;
        periodSums.CalcStatSums(records, row.Period, sums);
        ASSERT_EQ(sums.List.size(), row.Expected.size());
        for (std::size_t i = 0; i < row.Expected.size(); ++i) {
            const auto& [connections, volume, duration] = row.Expected[i];
            EXPECT_EQ(sums.List[i].ConnCount, connections) << i;
            EXPECT_EQ(sums.List[i].VolumeRounded, volume) << i;
            EXPECT_NEAR(sums.List[i].DurationRounded, duration, OneSecond / 2) << i;
        }
    }
}

} // namespace
