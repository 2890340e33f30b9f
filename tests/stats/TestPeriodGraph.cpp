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
    // "240315"
    static std::string Digits(Date date) { return ReplaceAll(FormatDateIso(date).substr(2, 8), "-", ""); }
    // First days of the periods, then the day after the last one; consecutive ones must touch.
    static std::string Borders(const PeriodGraph& graph) {
        std::string text;
        for (std::size_t i = 0; i < graph.Periods.size(); ++i) {
            text += Digits(graph.Periods[i].Begin) + " ";
            EXPECT_EQ(graph.Periods[i].Begin, i > 0 ? graph.Periods[i - 1].End : graph.Periods[0].Begin);
        }
        return text + Digits(graph.Periods.back().End);
    }
};

TEST_F(PeriodGraphTest, PeriodsCoverTheChosenDays) {
    using enum SumPeriod;
    constexpr SumPeriod Month = BillingMonth;
    struct {
        SumPeriod Period;
        const char *From, *Till;
        int FirstWeekday, StartDay, Most;
        std::string Borders, Shown;
    } const rows[] = {
        {Day, "2024-03-01", "2024-03-03", 0, 1, 24, "240301 240302 240303 240304", "240301 240303"},
        {Day, "2024-03-01", "2024-03-10", 0, 1, 2, "240309 240310 240311", "240301 240310"},
        {Day, "2024-03-03", "2024-03-01", 0, 1, 24, "240303 240304", "240303 240303"}, // till before from
        {Day, "2025-01-01", "2026-01-01", 0, 1, 24, "240315 240316", "240315 240315"}, // today
        {Day, "0100-01-01", "2026-01-01", 0, 1, 1, "240315 240316", "000101 240315"},
        {Week, "2004-03-03", "2004-03-10", 1, 1, 24, "040301 040308 040315", "040301 040314"},
        {Week, "2004-03-01", "2004-03-07", 1, 1, 24, "040301 040308", "040301 040307"},
        {Week, "2004-03-07", "2004-03-07", 0, 1, 24, "040307 040314", "040307 040313"},
        {Week, "2004-03-05", "2004-03-12", 6, 1, 24, "040228 040306 040313", "040228 040312"},
        {Week, "2003-03-05", "2004-03-12", 6, 1, 2, "040228 040306 040313", "030301 040312"},
        {Month, "2024-01-20", "2024-03-14", 0, 15, 24, "240115 240215 240315", "240115 240314"},
        {Month, "2024-01-20", "2024-03-15", 0, 1, 24, "240101 240201 240301 240401", "240101 240331"},
        {Month, "2020-01-20", "2024-03-15", 0, 15, 2, "240215 240315 240415", "200115 240414"},
        // months too short for their day
        {Month, "2023-01-31", "2023-04-30", 0, 31, 24, "230131 230301 230331 230501", "230131 230430"},
        {Month, "2023-01-31", "2023-03-31", 0, 30, 2, "230301 230330 230430", "230130 230429"}};
    for (const auto& row : rows) {
        settings.SetReg("a_MonthStartDay", row.StartDay);
        aliases.Clear();
        records = StatRecords();
        AddEnd("a", "2004-03-05", 1);
        GraphOptions chosen{"A", At(row.From), At(row.Till), row.Period, row.FirstWeekday, row.Most};
        const PeriodGraph graph = Calc(chosen);
        EXPECT_EQ(Borders(graph), row.Borders) << row.From << " " << row.StartDay;
        EXPECT_EQ(Digits(graph.From) + " " + Digits(graph.Till), row.Shown)
            << row.From << " " << row.StartDay;
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
    EXPECT_EQ(Digits(graph.FirstRecord) + Digits(graph.LastRecord), "240301240304");
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
            text += Digits(day) + " ";
        return text;
    };
    EXPECT_EQ(texts(FirstDayChoices(clock.Now(), At("2004-03-01"))),
              "240315 240301 240201 240101 230315 230101 040301 ");
    EXPECT_EQ(texts(FirstDayChoices(At("2024-01-01"), 0)), "240101 231201 230101 ");
    EXPECT_EQ(texts(LastDayChoices(clock.Now(), At("2024-03-20"))), "240315 240229 231231 ");
}

} // namespace
