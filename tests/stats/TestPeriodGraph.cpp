#include "StatsFixture.h"
#include "stats/graph/GraphLabels.h"

using namespace korvalin;

namespace {

class PeriodGraphTest : public StatsFixture {
  protected:
    // A connection that moved `received` bytes and a tenth of that the other way.
    void AddEnd(const std::string& name, std::string_view end, double received) {
        StatRecord& record = Add(name, At(end) - TimeSerial(1, 0, 0), TimeSerial(1, 0, 0), received);
        record.BytesTransmitted = received / 10;
        record.LogOut = record.End();
    }
    PeriodGraph Calc(const GraphOptions& chosen) {
        aliases.FillAlias(records);
        return CalcGraph(records, chosen, aliases, clock.Now());
    }
    static std::string Day(Date date) { return FormatDateIso(date).substr(0, 10); }
    // First days of the periods, then the day after the last one; consecutive ones must touch.
    static std::string Borders(const PeriodGraph& graph) {
        std::string text;
        for (std::size_t i = 0; i < graph.Periods.size(); ++i) {
            text += Day(graph.Periods[i].Begin) + " ";
            EXPECT_EQ(graph.Periods[i].Begin, i > 0 ? graph.Periods[i - 1].End : graph.Periods[0].Begin);
        }
        return text + Day(graph.Periods.back().End);
    }
};

TEST_F(PeriodGraphTest, PeriodsCoverTheChosenDays) {
    struct {
        SumPeriod Period;
        const char *From, *Till;
        int FirstWeekday, StartDay, Most;
        std::string Borders, Shown;
    } const rows[] = {
        {SumPeriod::Day, "2024-03-01", "2024-03-03", 0, 1, 24, "2024-03-01 2024-03-02 2024-03-03 2024-03-04",
         "2024-03-01 2024-03-03"},
        {SumPeriod::Day, "2024-03-01", "2024-03-10", 0, 1, 2, "2024-03-09 2024-03-10 2024-03-11",
         "2024-03-01 2024-03-10"},
        {SumPeriod::Day, "2024-03-03", "2024-03-01", 0, 1, 24, "2024-03-03 2024-03-04", // till before from
         "2024-03-03 2024-03-03"},
        {SumPeriod::Day, "2025-01-01", "2026-01-01", 0, 1, 24, "2024-03-15 2024-03-16", // today
         "2024-03-15 2024-03-15"},
        {SumPeriod::Day, "0100-01-01", "2026-01-01", 0, 1, 1, "2024-03-15 2024-03-16",
         "0100-01-01 2024-03-15"},
        {SumPeriod::Week, "2004-03-03", "2004-03-10", 1, 1, 24, "2004-03-01 2004-03-08 2004-03-15",
         "2004-03-01 2004-03-14"},
        {SumPeriod::Week, "2004-03-01", "2004-03-07", 1, 1, 24, "2004-03-01 2004-03-08",
         "2004-03-01 2004-03-07"},
        {SumPeriod::Week, "2004-03-07", "2004-03-07", 0, 1, 24, "2004-03-07 2004-03-14",
         "2004-03-07 2004-03-13"},
        {SumPeriod::Week, "2004-03-05", "2004-03-12", 6, 1, 24, "2004-02-28 2004-03-06 2004-03-13",
         "2004-02-28 2004-03-12"},
        {SumPeriod::Week, "2003-03-05", "2004-03-12", 6, 1, 2, "2004-02-28 2004-03-06 2004-03-13",
         "2003-03-01 2004-03-12"},
        {SumPeriod::BillingMonth, "2024-01-20", "2024-03-14", 0, 15, 24, "2024-01-15 2024-02-15 2024-03-15",
         "2024-01-15 2024-03-14"},
        {SumPeriod::BillingMonth, "2024-01-20", "2024-03-15", 0, 1, 24,
         "2024-01-01 2024-02-01 2024-03-01 2024-04-01", "2024-01-01 2024-03-31"},
        {SumPeriod::BillingMonth, "2020-01-20", "2024-03-15", 0, 15, 2, "2024-02-15 2024-03-15 2024-04-15",
         "2020-01-15 2024-04-14"},
        {SumPeriod::BillingMonth, "2023-01-31", "2023-04-30", 0, 31, 24, // months too short for their day
         "2023-01-31 2023-03-01 2023-03-31 2023-05-01", "2023-01-31 2023-04-30"},
        {SumPeriod::BillingMonth, "2023-01-31", "2023-03-31", 0, 30, 2, "2023-03-01 2023-03-30 2023-04-30",
         "2023-01-30 2023-04-29"}};
    for (const auto& row : rows) {
        settings.SetReg("a_MonthStartDay", row.StartDay);
        aliases.Clear();
        records = StatRecords();
        AddEnd("a", "2004-03-05", 1);
        GraphOptions chosen{"A", At(row.From), At(row.Till), row.Period, row.FirstWeekday, row.Most};
        const PeriodGraph graph = Calc(chosen);
        EXPECT_EQ(Borders(graph), row.Borders) << row.From << " " << row.StartDay;
        EXPECT_EQ(Day(graph.From) + " " + Day(graph.Till), row.Shown) << row.From << " " << row.StartDay;
    }
}

TEST_F(PeriodGraphTest, AConnectionCountsWholeWhereItEnded) {
    settings.SetReg("second line_Alias", "A");
    AddEnd("a", "2024-03-03 00:30:00", 10);   // begun the day before
    AddEnd("second line", "2024-03-02", 200); // midnight begins a day
    AddEnd("b", "2024-03-02 12:00:00", 1e9);  // somebody else's
    AddEnd("a", "2024-03-03 23:59:59", 3000);
    AddEnd("a", "2024-03-04", 4e4);          // after the last
    AddEnd("a", "2024-03-01 23:59:59", 5e5); // before the first
    const GraphOptions chosen{"a", At("2024-03-02"), At("2024-03-03 18:00:00"), SumPeriod::Day};
    const PeriodGraph graph = Calc(chosen);
    ASSERT_EQ(graph.Periods.size(), 2U);
    EXPECT_EQ(graph.Periods[0].BytesReceived, 200);
    EXPECT_EQ(graph.Periods[1].BytesReceived, 3010);
    EXPECT_EQ(graph.Periods[1].BytesTransmitted, 301);
    EXPECT_EQ(Day(graph.FirstRecord) + Day(graph.LastRecord), "2024-03-012024-03-04");
    EXPECT_EQ(records.List[0].BytesReceived, 10) << "the records keep their order";
}

TEST_F(PeriodGraphTest, TheMaximumIsThatOfTheShownDirections) {
    AddEnd("a", "2024-03-01 12:00:00", 100);
    Add("a", At("2024-03-02"), TimeSerial(1, 0, 0), 90).BytesTransmitted = 40;
    records.List.back().LogOut = records.List.back().End();
    struct {
        bool Send, Received;
        double Maximum;
    } const rows[] = {{true, true, 130}, {true, false, 40}, {false, true, 100}, {false, false, 0}};
    for (const auto& row : rows) {
        GraphOptions chosen{"a", At("2024-03-01"), At("2024-03-10"), SumPeriod::Day};
        chosen.Send = row.Send;
        chosen.Received = row.Received;
        EXPECT_EQ(Calc(chosen).Maximum, row.Maximum);
    }
    EXPECT_TRUE(Calc({"nobody", 0, clock.Now()}).Periods.empty());
    EXPECT_TRUE(Calc({"", 0, clock.Now()}).Periods.empty());
}

TEST_F(PeriodGraphTest, LabelsGetShorterWhereManyStand) {
    struct {
        const char* ShortDate;
        SumPeriod Kind;
        std::size_t Count;
        std::string Label;
    } const rows[] = {
        {"dd.mm.yyyy", SumPeriod::Day, 3, "02.12.04"}, // ten characters are too long anyway
        {"dd.mm.yyyy", SumPeriod::Week, 13, "02.12.04"},     {"m/d/yyyy", SumPeriod::Day, 12, "12/2/2004"},
        {"m/d/yyyy", SumPeriod::Day, 13, "12/2/04"},         {"yyyy-mm-dd", SumPeriod::Day, 100, "04-12-02"},
        {"dd.mm.yyyy", SumPeriod::BillingMonth, 3, "Dez 04"}};
    locale.ShortMonthNames[11] = "Dez";
    for (const auto& row : rows) {
        locale.ShortDate = row.ShortDate;
        EXPECT_EQ(PeriodLabel({At("2004-12-02")}, row.Kind, row.Count, locale), row.Label);
    }
    locale.ShortDate = "d.m.yyyy";
    EXPECT_EQ(PeriodRange({At("2004-12-02"), At("2004-12-03")}, locale), "2.12.2004");
    EXPECT_EQ(PeriodRange({At("2004-12-02"), At("2005-01-02")}, locale), "2.12.2004 - 1.1.2005");
}

TEST_F(PeriodGraphTest, OffersDaysThatMakeSense) {
    const auto texts = [](const std::vector<Date>& days) {
        std::string text;
        for (const Date day : days)
            text += Day(day) + " ";
        return text;
    };
    EXPECT_EQ(texts(FirstDayChoices(clock.Now(), At("2004-03-01"))),
              "2024-03-15 2024-03-01 2024-02-01 2024-01-01 2023-03-15 2023-01-01 2004-03-01 ");
    EXPECT_EQ(texts(FirstDayChoices(At("2024-01-01"), 0)), "2024-01-01 2023-12-01 2023-01-01 ");
    EXPECT_EQ(texts(LastDayChoices(clock.Now(), At("2024-03-20"))), "2024-03-15 2024-02-29 2023-12-31 ");
}

} // namespace
