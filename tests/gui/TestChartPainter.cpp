#include "display/ChartPainter.h"
#include "fakes/CoreFixture.h"
#include "forms/Colors.h"
#include "forms/PictureBox.h"

using namespace korvalin;

namespace {

constexpr std::int32_t downloadColor = 0x0000FF;
constexpr std::int32_t uploadColor = 0x00B058;
constexpr int width = 240; // a pixel a second
constexpr int height = 120;

class Chart : public CoreFixture {
  protected:
    Chart() {
        texts().LineDLShow = {true};
        texts().LineULShow = {};
        texts().LineDLColor[0] = downloadColor;
        texts().LineULColor[0] = uploadColor;
        texts().LineDLColor[2] = 0x800000; // of the texts: another colour than the curves'
        texts().ShowTimeLines = false;
        texts().FontName = "DejaVu Sans";
        picture.resize(width, height);
    }
    InfoTexts& texts() { return program->infoTexts; }

    void Online(float rate, int seconds) {
        LineState& lines = program->lines;
        lines.LineCount = 1;
        lines.AnyLineConnected = lines.LineTable(1).Connected = true;
        for (int t = 1; t <= seconds; ++t) {
            HistorySample& sample = program->rateHistory.Append(1, t);
            sample.RateDL[0] = rate;
            sample.RateUL[0] = rate / 2;
        }
    }
    void Draw() {
        program->liveTexts.Renew(texts());
        painter.DrawChart(picture, texts(), true, true);
    }

    // A pixel has not the precision of a palette's colours.
    static QRgb Rgb(std::int32_t color) { return ToColor(color).rgb(); }
    QRgb At(int x, int y) const { return picture.Picture().pixel(x, y); }
    // The row of the first pixel of a colour in a column, from one row on; -1 when there is none.
    int RowOf(int x, std::int32_t color, int from = 0, int step = 1) const {
        for (int y = from; y >= 0 && y < height; y += step)
            if (At(x, y) == Rgb(color)) return y;
        return -1;
    }
    // Between the texts.
    int RuleRow(bool top) const {
        return RowOf(width / 2, ColorApplicationWorkspace, top ? 5 : height - 5, top ? 1 : -1);
    }
    bool started = StartProgram();
    ChartPainter painter{
        {program->lines, program->rateHistory, program->language, program->errors, clock, program->locale}};
    PictureBox picture;
};

TEST_F(Chart, ACurveStandsAtItsShareOfTheScale) {
    Online(9000, 100);
    Draw();
    EXPECT_EQ(painter.ScaleMaximum(), 10000);
    const int bottom = RuleRow(false);
    const int area = bottom - RuleRow(true);
    EXPECT_NEAR(RowOf(width - 20, downloadColor), bottom - 0.9 * area, 1.5);
    EXPECT_EQ(RowOf(width - 20, uploadColor), -1) << "upload is switched off";
    EXPECT_EQ(RowOf(20, downloadColor), -1) << "nothing was measured then";
    texts().LineULShow[0] = true;
    Draw();
    EXPECT_NEAR(RowOf(width - 20, uploadColor), bottom - 0.45 * area, 1.5);
    texts().ChartUseMax = true;
    texts().ChartMax = 5;
    Draw();
    EXPECT_EQ(painter.ScaleMaximum(), 5000);
    EXPECT_EQ(RowOf(width - 20, downloadColor), RuleRow(true) - 1) << "just above the rule";
}

TEST_F(Chart, TimeLinesCountFromTheRightEdge) {
    texts().ShowTimeLines = true;
    Draw();
    std::vector<int> marked;
    for (int x = 0; x < width; ++x) {
        int count = 0;
        for (int y = RuleRow(true) + 1; y < RuleRow(false); ++y)
            count += At(x, y) != Rgb(15323561) ? 1 : 0;
        if (count > 10) marked.push_back(x);
    }
    EXPECT_EQ(marked, (std::vector<int>{59, 119, 179})) << "60, 120 and 180 of 1 .. 240";
}

// Letters with feet are in the names of lines, and brackets in every lower row.
TEST_F(Chart, RowsHaveRoomForFeetAndLosePiecesBeforeTheyOverlap) {
    Online(9000, 3);
    program->lines.LineTable(1).LineName = "(gjpqy)";
    texts().ShowDuration = false;
    texts().LineDLColor[2] = texts().LineULColor[2] = 0;
    const auto ink = [this](QRect area) {
        int count = 0;
        for (int x = area.left(); x <= area.right(); ++x)
            for (int y = area.top(); y <= area.bottom(); ++y)
                count += At(x, y) == Rgb(0) ? 1 : 0;
        return count;
    };
    for (const int size : {11, 9, 8}) {
        texts().FontSize = size;
        Draw();
        EXPECT_EQ(ink({0, height - 1, width, 1}), 0) << size;
        const double descent = QFontMetricsF(QFont(QStringLiteral("DejaVu Sans"), size)).descent();
        EXPECT_GT(RuleRow(true) - descent, 8) << "the upper digits end a descent above the rule";
    }
    const int lowerRow = RuleRow(false) + 1;
    const int label = ink({width - 40, lowerRow, 40, height - lowerRow});
    EXPECT_GT(label, 0);
    picture.resize(130, height);
    Draw();
    EXPECT_EQ(ink({130 - 40, lowerRow, 40, height - lowerRow}), label)
        << "the line's name stays while there is room for the volumes";
}

TEST_F(Chart, CarriesColoursOnFourDays) {
    for (const auto& [day, color] : {std::pair(13, 0x000000), {14, 15323561}}) {
        clock.SetWallClock(DateSerial(2010, 6, day) + 0.5);
        Draw();
        EXPECT_EQ(At(10, RuleRow(true) + 3), Rgb(color)) << day;
    }
}

} // namespace
