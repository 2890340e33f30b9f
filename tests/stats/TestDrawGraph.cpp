#include "base/Locale.h"
#include "stats/graph/DrawGraph.h"
#include "stats/graph/GraphCanvas.h"

#include <algorithm>
#include <cmath>

using namespace korvalin;

namespace {

constexpr std::int32_t green = 0x00FF00;
constexpr std::int32_t red = 0x0000FF;

/// Notes what is drawn. Every character is 80 twips wide and 200 high.
class NotingCanvas : public GraphCanvas {
  public:
    struct Shape {
        double X1, Y1, X2, Y2;
        std::int32_t Color;
    };
    struct Words {
        double X, Y;
        std::string Text;
    };
    double Width() const override { return 10280; } // the axes are 10000 wide beside a digit's scale
    double Height() const override { return 4050; } // and 3000 high
    void SetOrigin(double fromLeft, double) override { Left = fromLeft; }
    void Line(double x1, double y1, double x2, double y2, std::int32_t color) override {
        Lines.push_back({x1, y1, x2, y2, color});
    }
    void Box(double x1, double y1, double x2, double y2, std::int32_t color) override {
        Boxes.push_back({x1, y1, x2, y2, color});
    }
    void Outline(double x1, double y1, double x2, double y2, std::int32_t color) override {
        Outlines.push_back({x1, y1, x2, y2, color});
    }
    void Print(double x, double y, std::string_view text, TextAnchor anchor) override {
        EXPECT_EQ(anchor, TextAnchor::End);
        ScaleTexts.push_back({x, y, std::string(text)});
    }
    void PrintUpwards(double x, double y, std::string_view text, TextAnchor anchor) override {
        EXPECT_EQ(anchor == TextAnchor::Start, y > 0) << "values stand in the bars, labels hang below";
        (y > 0 ? Values : Labels).push_back({x, y, std::string(text)});
    }
    double TextWidth(std::string_view text) const override { return 80.0 * static_cast<double>(text.size()); }
    double TextHeight() const override { return 200; }

    double Left = 0;
    std::vector<Shape> Lines, Boxes, Outlines;
    std::vector<Words> ScaleTexts, Labels, Values;
};

// `count` days that received 1.6 MB and transmitted 0.4 MB each.
PeriodGraph Days(std::size_t count) {
    PeriodGraph graph;
    for (std::size_t i = 0; i < count; ++i) {
        const Date day = DateSerial(2024, 1, 1) + static_cast<double>(i);
        graph.Periods.push_back({day, day + 1, 1.6e6, 0.4e6});
    }
    graph.Maximum = 2e6;
    return graph;
}

NotingCanvas Drawn(const PeriodGraph& graph, const GraphView& view) {
    NotingCanvas canvas;
    DrawGraph(canvas, graph, view, *ScaleOf(graph, view), Locale());
    return canvas;
}

TEST(DrawGraph, StacksTheDirectionsOnAScaleWithRoom) {
    GraphView view;
    view.Period = SumPeriod::Day;
    const NotingCanvas both = Drawn(Days(10), view);
    EXPECT_EQ(both.Left, 280);
    ASSERT_EQ(both.Boxes.size(), 20U);
    // Slots of 1000 with gaps of a hundredth of the width; the scale ends at 3 MB.
    const auto expect = [](const NotingCanvas::Shape& box, double bottom, double top, std::int32_t color) {
        EXPECT_NEAR(box.X1, 2050, 1e-6);
        EXPECT_NEAR(box.X2, 2950, 1e-6);
        EXPECT_NEAR(box.Y1, bottom, 1e-6);
        EXPECT_NEAR(box.Y2, top, 1e-6);
        EXPECT_EQ(box.Color, color);
    };
    expect(both.Boxes[4], 0, 400, green);
    expect(both.Boxes[5], 400, 2000, red);
    view.Send = false;
    expect(Drawn(Days(10), view).Boxes[2], 0, 1600, red);
    view.Send = true;
    view.Received = false;
    expect(Drawn(Days(10), view).Boxes[2], 0, 400, green);

    ASSERT_EQ(both.ScaleTexts.size(), 3U);
    for (int j = 0; j < 3; ++j) {
        EXPECT_EQ(both.ScaleTexts[static_cast<std::size_t>(j)].Text, std::to_string(j + 1));
        EXPECT_EQ(both.ScaleTexts[static_cast<std::size_t>(j)].Y, (j + 1) * 1000);
    }
}

TEST(DrawGraph, GapsOutlinesAndMarksDependOnTheCount) {
    struct {
        std::size_t Count;
        double Gap;
        bool Outlines, EveryTick;
    } const rows[] = {{1, 100, true, true},   {35, 100, true, true},  {36, 50, true, true},
                      {60, 50, true, true},   {61, 0, true, true},    {250, 0, true, false},
                      {251, 0, false, false}, {1000, 0, false, false}};
    GraphView view;
    view.Period = SumPeriod::Day;
    for (const auto& row : rows) {
        const NotingCanvas canvas = Drawn(Days(row.Count), view);
        const double slot = 10000.0 / static_cast<double>(row.Count);
        EXPECT_NEAR(canvas.Boxes[0].X2 - canvas.Boxes[0].X1, slot - row.Gap, 1e-6) << row.Count;
        EXPECT_NEAR(canvas.Boxes[0].X1, row.Gap / 2, 1e-6) << row.Count;
        EXPECT_EQ(canvas.Outlines.size(), row.Outlines ? canvas.Boxes.size() : 0) << row.Count;
        const auto ticks = std::count_if(canvas.Lines.begin(), canvas.Lines.end(), [](const auto& line) {
            return line.X1 > 0 && line.X1 == line.X2 && line.Y1 == 0 && line.Y2 == -100;
        });
        EXPECT_EQ(static_cast<std::size_t>(ticks), row.EveryTick ? row.Count : canvas.Labels.size())
            << row.Count;
    }
}

TEST(DrawGraph, TextsNeverTouch) {
    GraphView view;
    view.Period = SumPeriod::Day;
    view.ShowValue = true;
    for (const std::size_t count : {3, 49, 51, 400}) {
        const NotingCanvas canvas = Drawn(Days(count), view);
        for (const auto* texts : {&canvas.Labels, &canvas.Values}) {
            ASSERT_GE(texts->size(), std::min<std::size_t>(count, 25));
            EXPECT_LE(texts->back().X + 100, 10000) << "within the picture";
            for (std::size_t i = 1; i < texts->size(); ++i)
                EXPECT_GE((*texts)[i].X - (*texts)[i - 1].X, 200 - 1e-6) << count;
        }
        EXPECT_EQ(canvas.Labels.size() == count, count < 50) << "all that have room";
        EXPECT_EQ(canvas.Labels[0].Y, -150);
        EXPECT_EQ(canvas.Values[0].Y, 100);
        EXPECT_EQ(canvas.Values[0].Text, "2 MB");
    }
    // A bar without volume has no value and takes no room.
    PeriodGraph graph = Days(50);
    graph.Periods[0].BytesReceived = graph.Periods[0].BytesTransmitted = 0;
    EXPECT_GT(Drawn(graph, view).Values[0].X, 200);
    EXPECT_EQ(Drawn(graph, view).Boxes.size(), 98U);
}

TEST(DrawGraph, TheScaleFollowsUnitAndFixedTop) {
    struct {
        double UnitBytes, FixedTop;
        std::string Top, Value;
        double Height; // of the first bar's upper end
    } const rows[] = {{1e6, 0, "3", "2 MB", 2000},
                      {1e3, 0, "3,000", "2,000 MB", 2000},
                      {1e9, 0, "0.0020", "0.00200 MB", 3000},
                      {1e6, 20, "20", "2 MB", 300},
                      {1e6, 1, "1.0", "2.00 MB", 3060}}; // beyond the top, but in the picture
    GraphView view;
    view.ShowValue = true;
    for (const auto& row : rows) {
        view.UnitBytes = row.UnitBytes;
        view.FixedTop = row.FixedTop;
        const NotingCanvas canvas = Drawn(Days(1), view);
        EXPECT_EQ(canvas.ScaleTexts.back().Text, row.Top);
        EXPECT_EQ(canvas.Values[0].Text, row.Value);
        EXPECT_NEAR(canvas.Boxes[1].Y2, row.Height, 1e-6) << row.Top;
    }
}

TEST(DrawGraph, NothingToDrawAndImpossibleScalesAreTold) {
    GraphView view;
    EXPECT_TRUE(HasGraph(Days(1), view));
    PeriodGraph empty = Days(1);
    empty.Maximum = 0;
    EXPECT_FALSE(HasGraph(empty, view));
    EXPECT_FALSE(HasGraph(Days(0), view));
    empty.Maximum = INFINITY;
    EXPECT_FALSE(ScaleOf(empty, view));
    view.Send = view.Received = false;
    EXPECT_FALSE(HasGraph(Days(1), view));
}

TEST(DrawGraph, FindsThePeriodAtAPlace) {
    const GraphLayout layout = LayOut(10280, 4050, 80, 10);
    const auto at = [&](double x) { return layout.PeriodAt(x).value_or(99); };
    EXPECT_EQ(at(279), 99U);
    EXPECT_EQ(at(280), 0U);
    EXPECT_EQ(at(1279), 0U);
    EXPECT_EQ(at(1281), 1U);
    EXPECT_EQ(at(10279), 9U);
    EXPECT_EQ(at(10280), 99U);
    EXPECT_GT(LayOut(10, 10, 500, 3).Width, 0) << "a picture without room";
}

} // namespace
