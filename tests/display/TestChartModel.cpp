#include "display/ChartModel.h"

using namespace korvalin;

namespace {

TEST(ChartScale, RoundsUpStrictlyAboveTheMaximum) {
    struct {
        double Maximum;
        std::int32_t Factor;
        double Expected;
    } const rows[] = {{0, 1000, 5000},          {9999, 1000, 10000},        {10000, 1000, 15000},
                      {1000000, 1000, 1005000}, {10000000, 1000, 10050000}, {1024 * 4, 1024, 1024 * 5}};
    for (const auto& row : rows)
        EXPECT_DOUBLE_EQ(RoundUpToStep(row.Maximum, row.Factor), row.Expected) << row.Maximum;
    InfoTexts texts;
    EXPECT_EQ(ScaleMaximum(0, texts), 10000) << "no data at all";
    texts.ChartMinMax = 50;
    EXPECT_EQ(ScaleMaximum(15000, texts), 50000);
}

class Curves : public testing::Test {
  protected:
    // Samples one a second, the last at second `count`; slot 0 carries the given rates.
    void Fill(const std::vector<float>& rates) {
        for (std::size_t i = 0; i < rates.size(); ++i) {
            HistorySample& sample = history.Append(1, 1000.0 + static_cast<double>(i));
            sample.RateDL[0] = rates[i];
            sample.RateUL[7] = rates[i] / 2;
        }
    }
    std::vector<ChartPoint> Points(std::size_t visible, double clip = 1e9) {
        std::vector<ChartPoint> points;
        CurvePoints(history, 1, 0, Direction::Received, visible, clip, points);
        return points;
    }
    RateHistory history{100, 1};
};

TEST_F(Curves, TheLargestRateCountsOnlyWhatIsShownAndVisible) {
    Fill({900, 10, 20, 30});
    InfoTexts texts;
    EXPECT_EQ(LargestRate(history, 1, texts, 100), 0) << "every curve is off";
    texts.LineULShow[7] = true;
    EXPECT_EQ(LargestRate(history, 1, texts, 100), 450);
    texts.LineDLShow[0] = true;
    EXPECT_EQ(LargestRate(history, 1, texts, 100), 900);
    EXPECT_EQ(LargestRate(history, 1, texts, 3), 30);
    history.Append(1, 5000).RateDL[0] = 7; // an hour without samples: what was before is out of sight
    EXPECT_EQ(LargestRate(history, 1, texts, 100), 7);
}

TEST_F(Curves, WhatAnotherAdapterHasLeftInTheSlotIsNeitherShownNorScaledTo) {
    Fill({900, 800, 700});
    for (std::size_t i = 1; i <= 4; ++i) {
        HistorySample& sample = history.Append(1, 1010.0 + static_cast<double>(i));
        sample.CounterSource = i < 3 ? 1 : 2;
        sample.RateDL[0] = static_cast<float>(i);
    }
    InfoTexts texts;
    texts.LineDLShow[0] = true;
    EXPECT_EQ(LargestRate(history, 1, texts, 100), 4);
    EXPECT_EQ(Points(60).size(), 2U);
}

TEST_F(Curves, TheNewestStandsAtTheRightEdgeAndTimeStampsPlaceTheRest) {
    Fill({10, 20, 30});
    history.Append(1, 1010).RateDL[0] = 40; // eight seconds without a sample
    std::vector<double> places;
    for (const ChartPoint& point : Points(60))
        places.push_back(point.X);
    EXPECT_EQ(places, (std::vector<double>{50, 51, 52, 60})) << "one straight segment spans the gap";
    EXPECT_EQ(Points(60).back().Y, 40);
    EXPECT_EQ(Points(60, 4).back().Y, 4) << "clipped";
    Fill(std::vector<float>(50, 5));
    EXPECT_EQ(Points(20).size(), 20U);
    EXPECT_EQ(Points(20).front().X, 1) << "ends at the left edge";
}

TEST(LineLabelText, CutsLongNamesAtALateBlank) {
    const std::pair<const char*, const char*> rows[] = {
        {"eth0", "eth0"},
        {"seventeen letters", "seventeen letter"},
        {"Big Provider GmbH & Co", "Big Provider"},
        {"Größenwahn Prov. Düsseldorf", "Größenwahn Prov."}};
    for (const auto& [name, expected] : rows)
        EXPECT_EQ(ShortLineName(name), expected);
}

TEST(LineLabelText, ShowsNameTimeAndThatSeveralAreOnline) {
    LineState lines;
    lines.LineTable.Resize(2);
    lines.LineCount = 2;
    lines.LineTable(1).LineName = "eth0";
    lines.LineTable(1).Duration = 0.0625;
    InfoTexts texts;
    texts.LineIndex = 1;
    const auto label = [&] { return LineLabel(lines, texts, "of"); };
    EXPECT_EQ(label(), "eth0");
    lines.LineTable(1).Connected = true;
    EXPECT_EQ(label(), "eth0 01:30:00");
    texts.ShowDuration = false;
    EXPECT_EQ(label(), "eth0");
    lines.LineTable(1).IsRas = true;
    texts.ShowLineName = false;
    lines.LineTable(2).Connected = true;
    EXPECT_EQ(label(), "of On 01:30:00");
}

} // namespace
