#include "forms/Colors.h"
#include "forms/PictureBox.h"

#include <cmath>
#include <random>

// These tests also run at other pixel ratios: see CMakeLists.txt.
namespace korvalin {
namespace {

constexpr std::int32_t white = 0xFFFFFF;
constexpr std::int32_t red = 0x0000FF;
constexpr std::int32_t blue = 0xFF0000;

struct Point {
    double X, Y;
};

class PictureBoxTest : public ::testing::Test {
  protected:
    PictureBoxTest() {
        picture_.resize(200, 100);
        SetScale(0, 0, 200, 100);
        picture_.SetBackColor(white);
    }
    void SetScale(double left, double top, double width, double height) {
        picture_.SetScaleLeft(left);
        picture_.SetScaleTop(top);
        picture_.SetScaleWidth(width);
        picture_.SetScaleHeight(height);
    }
    double Ratio() const { return picture_.devicePixelRatioF(); }
    int Device(double logical) const { return static_cast<int>(std::lround(logical * Ratio())); }
    /// What is not background, in device pixels.
    QRect Drawn() const {
        const QImage image = picture_.Picture();
        QRect drawn;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) != Qt::white) drawn |= QRect(x, y, 1, 1);
            }
        }
        return drawn;
    }
    int InkedPixels(const QRect& area) const {
        const QImage part = picture_.Picture().copy(area);
        int count = 0;
        for (int y = 0; y < part.height(); ++y) {
            for (int x = 0; x < part.width(); ++x)
                count += part.pixelColor(x, y) != Qt::white ? 1 : 0;
        }
        return count;
    }
    bool Inked(const QRect& area) const { return InkedPixels(area) == area.width() * area.height(); }

    PictureBox picture_;
};

TEST_F(PictureBoxTest, HasTheScreensResolution) {
    EXPECT_EQ(picture_.Picture().size(), QSize(Device(200), Device(100)));
    EXPECT_EQ(picture_.Picture().devicePixelRatio(), Ratio());
    EXPECT_EQ(picture_.WidthTwips(), 3000);
    EXPECT_EQ(picture_.HeightTwips(), 1500);
}

TEST_F(PictureBoxTest, FillsABoxInAnyScale) {
    const struct {
        double Left, Top, Width, Height; // the scale
        double X1, Y1, X2, Y2;
    } rows[] = {{0, 0, 200, 100, 20, 10, 60, 30},
                {1, 500, 100, -1000, 11, 400, 31, 200},
                {1, 500, 100, -1000, 31, 200, 11, 400},
                {-100, -50, 200, 100, -80, -40, -40, -20},
                {200, 0, -200, 100, 180, 10, 140, 30}};
    for (const auto& row : rows) {
        SetScale(row.Left, row.Top, row.Width, row.Height);
        picture_.SetBackColor(white);
        picture_.Box(row.X1, row.Y1, row.X2, row.Y2, red);
        // Both corners belong to it.
        const QRect expected(QPoint(Device(20), Device(10)), QPoint(Device(60), Device(30)));
        EXPECT_EQ(Drawn(), expected) << row.Left << " " << row.Height;
        EXPECT_TRUE(Inked(expected));
        EXPECT_EQ(picture_.Picture().pixelColor(expected.center()), Qt::red);
    }
}

TEST_F(PictureBoxTest, DrawsRulesOnWholePixels) {
    const int thickness = Device(1);
    for (const double y : {50.0, 50.2, 50.4}) {
        picture_.SetBackColor(white);
        picture_.Line(-5, y, 300, y, red);
        const int row = static_cast<int>(std::floor(y * Ratio())) - (thickness - 1) / 2;
        EXPECT_EQ(Drawn(), QRect(0, row, Device(200), thickness)) << y;
        EXPECT_EQ(picture_.Picture().pixelColor(3, row), Qt::red);
    }
    picture_.SetBackColor(white);
    picture_.SetDrawWidth(3);
    picture_.Line(80, 20, 80, 60, blue);
    EXPECT_EQ(Drawn().width(), Device(3));
    EXPECT_TRUE(Inked(Drawn()));
}

TEST_F(PictureBoxTest, LeavesGapsInADottedLine) {
    picture_.SetDrawStyle(DrawStyle::Dotted);
    picture_.Line(80, 0, 80, 99, red);
    const QRect drawn = Drawn();
    EXPECT_EQ(drawn.width(), Device(1));
    EXPECT_GT(drawn.height(), Device(90));
    EXPECT_FALSE(Inked(drawn));
}

TEST_F(PictureBoxTest, DrawsCurvesThroughTheirPoints) {
    const std::vector<Point> peaks = {{10, 90}, {60, 20}, {60, 70}, {110, 70}, {160, 5}};
    picture_.Polyline(peaks, blue);
    for (const Point& point : peaks) {
        EXPECT_EQ(picture_.Picture().pixelColor(Device(point.X), Device(point.Y)), Qt::blue) << point.X;
    }
    EXPECT_EQ(picture_.Picture().pixelColor(Device(85), Device(70)), Qt::blue);
    const QRect onSlope(QPoint(Device(34), Device(52)), QPoint(Device(36), Device(57)));
    EXPECT_GE(InkedPixels(onSlope), onSlope.width());
    EXPECT_EQ(picture_.Picture().pixelColor(Device(85), Device(40)), Qt::white);
}

// Dense samples, sparse ones and jumps: no column without ink and none that does not touch its neighbour.
TEST_F(PictureBoxTest, LeavesNoHoleInACurve) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> height(5, 95);
    for (const int count : {3, 40, 200, 3600}) {
        picture_.SetBackColor(white);
        std::vector<Point> points;
        for (int i = 0; i < count; ++i)
            points.push_back({i * 200.0 / (count - 1), height(random)});
        picture_.Polyline(points, blue);
        const QImage image = picture_.Picture();
        int lastTop = 0;
        int lastBottom = image.height();
        for (int x = 0; x < image.width(); ++x) {
            int top = image.height();
            int bottom = -1;
            int inked = 0;
            for (int y = 0; y < image.height(); ++y) {
                if (image.pixelColor(x, y) != Qt::blue) continue;
                top = std::min(top, y);
                bottom = y;
                ++inked;
            }
            ASSERT_GT(inked, 0) << count << " points, column " << x;
            ASSERT_TRUE(top <= lastBottom + 1 && bottom >= lastTop - 1) << count << " points, column " << x;
            lastTop = top;
            lastBottom = bottom;
        }
    }
}

TEST_F(PictureBoxTest, DrawsAFlatCurveLikeARule) {
    picture_.Polyline(std::vector<Point>{{0, 50}, {0.1, 50}, {70, 50}, {200, 50}}, red);
    const QRect curve = Drawn();
    picture_.SetBackColor(white);
    picture_.Line(0, 50, 200, 50, red);
    EXPECT_EQ(curve, Drawn());
    EXPECT_EQ(curve.height(), Device(1));
}

TEST_F(PictureBoxTest, ClipsWhatLiesOutside) {
    const double huge = 1e300;
    const double none = std::nan("");
    picture_.Polyline(std::vector<Point>{{-huge, 50}, {-500, 20}, {-400, 60}, {900, 60}, {huge, -huge}}, red);
    EXPECT_EQ(Drawn().width(), Device(200));
    EXPECT_EQ(picture_.Picture().pixelColor(Device(100), Device(60)), Qt::red);
    picture_.Polyline(std::vector<Point>{{50, none}, {none, 20}, {-huge, huge}, {20, 20}}, red);
    picture_.Line(-huge, none, huge, 5, red);
    picture_.Box(-huge, -huge, huge, huge, blue);
    EXPECT_TRUE(Inked(picture_.Picture().rect()));
    SetScale(0, 0, 0, 0);
    picture_.Polyline(std::vector<Point>{{0, 0}, {1, 1}}, red);
    picture_.Box(0, 0, 1, 1, red);
}

TEST_F(PictureBoxTest, PrintsBesideWhatItPrintedBefore) {
    SetScale(1, 500, 100, -1000); // half a unit a pixel across, ten a pixel down
    picture_.SetFont("DejaVu Sans", 9, false);
    EXPECT_LT(picture_.TextHeight(), 0);
    EXPECT_NEAR(picture_.TextHeight("a\nb"), 2 * picture_.TextHeight("T"), 1e-9);
    EXPECT_NEAR(picture_.TextHeightTwips(), picture_.TextHeight() / -10 * 15, 1e-6);
    picture_.SetCurrentX(21);
    picture_.SetCurrentY(300);
    picture_.SetForeColor(red);
    picture_.Print("Größe ");
    EXPECT_NEAR(picture_.CurrentX(), 21 + picture_.TextWidth("Größe "), 1e-9);
    EXPECT_EQ(picture_.CurrentY(), 300);
    const QRect first = Drawn();
    const QRect cell(Device(40), Device(20), Device(picture_.TextWidth("Größe ") * 2),
                     Device(picture_.TextHeight() / -10));
    EXPECT_TRUE(cell.adjusted(-1, -1, 1, 1).contains(first)) << first.x() << " " << first.y();
    EXPECT_GT(first.height(), cell.height() / 2);
    picture_.Print("kB");
    EXPECT_GT(Drawn().right(), cell.right());
    EXPECT_EQ(Drawn().left(), first.left());
}

TEST_F(PictureBoxTest, MeasuresInItsScale) {
    SetScale(1, 500, 100, -1000);
    EXPECT_DOUBLE_EQ(picture_.ScaleX(3), 1.5);
    EXPECT_DOUBLE_EQ(picture_.ScaleY(3), -30);
    const double regular = picture_.TextWidth("Wide");
    picture_.SetFont("DejaVu Sans", 30, true);
    EXPECT_GT(picture_.TextWidth("Wide"), 2 * regular);
}

TEST_F(PictureBoxTest, ClearsAndKeepsItsBackColor) {
    picture_.Line(0, 0, 100, 90, red);
    picture_.SetCurrentX(5);
    picture_.Cls();
    EXPECT_TRUE(Drawn().isEmpty());
    EXPECT_EQ(picture_.CurrentX(), 0);
    picture_.SetBackColor(blue);
    picture_.resize(300, 50);
    picture_.Line(0, 0, 1, 0, red);
    EXPECT_EQ(picture_.Picture().size(), QSize(Device(300), Device(50)));
    EXPECT_EQ(picture_.Picture().pixelColor(Device(290), Device(40)), Qt::blue);
}

TEST_F(PictureBoxTest, ShowsWhatWasDrawn) {
    picture_.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&picture_));
    picture_.Box(20, 10, 60, 30, red);
    picture_.Print("text");
    picture_.Refresh();
    const QImage before = picture_.Picture();
    EXPECT_EQ(picture_.grab().toImage().convertToFormat(before.format()), before);
    // Painting goes on after it was shown.
    picture_.Box(100, 10, 160, 30, blue);
    EXPECT_NE(picture_.grab().toImage().convertToFormat(before.format()), before);
}

} // namespace
} // namespace korvalin
