#include "forms/PictureBox.h"

#include <cmath>
#include <random>

using namespace korvalin;

// These tests also run at other pixel ratios: see CMakeLists.txt.
namespace {

constexpr std::int32_t white = 0xFFFFFF;
constexpr std::int32_t red = 0x0000FF;
constexpr std::int32_t blue = 0xFF0000;

struct Point {
    double X, Y;
};

class PictureBoxTest : public testing::Test {
  protected:
    PictureBoxTest() {
        picture.resize(200, 100);
        SetScale(0, 0, 200, 100);
        picture.SetBackColor(white);
    }
    void SetScale(double left, double top, double width, double height) {
        picture.SetScaleLeft(left);
        picture.SetScaleTop(top);
        picture.SetScaleWidth(width);
        picture.SetScaleHeight(height);
    }
    int Device(double logical) const {
        return static_cast<int>(std::lround(logical * picture.devicePixelRatioF()));
    }
    QColor At(double x, double y) const { return picture.Picture().pixelColor(Device(x), Device(y)); }
    // What is not background, in device pixels, and whether it is filled wholly.
    std::pair<QRect, bool> Drawn() const {
        const QBitmap ink = QBitmap::fromImage(picture.Picture().createMaskFromColor(qRgb(255, 255, 255)));
        const QRegion drawn(ink);
        return {drawn.boundingRect(), drawn.rectCount() == 1};
    }

    PictureBox picture;
};

TEST_F(PictureBoxTest, FillsAndOutlinesABoxInAnyScale) {
    struct {
        double Left, Top, Width, Height; // the scale
        double X1, Y1, X2, Y2;
    } const rows[] = {{0, 0, 200, 100, 20, 10, 60, 30},
                      {1, 500, 100, -1000, 31, 200, 11, 400},
                      {200, 0, -200, 100, 180, 10, 140, 30}};
    for (const auto& row : rows) {
        SetScale(row.Left, row.Top, row.Width, row.Height);
        picture.SetBackColor(white);
        picture.Box(row.X1, row.Y1, row.X2, row.Y2, red); // both corners belong to it
        const QRect expected(QPoint(Device(20), Device(10)), QPoint(Device(60), Device(30)));
        EXPECT_EQ(Drawn(), std::pair(expected, true)) << row.Left << " " << row.Height;
        picture.SetBackColor(white);
        picture.Outline(row.X2, row.Y2, row.X1, row.Y1, red);
        EXPECT_EQ(Drawn(), std::pair(expected, false));
        const QPoint pen(Device(1), Device(1));
        for (const QPoint& inside : {expected.topLeft() + pen, expected.bottomRight() - pen})
            EXPECT_EQ(picture.Picture().pixelColor(inside), Qt::white);
    }
}

TEST_F(PictureBoxTest, DrawsRulesOnWholePixels) {
    const int thickness = Device(1);
    for (const double y : {50.0, 50.4}) {
        picture.SetBackColor(white);
        picture.Line(-5, y, 300, y, red);
        const int row = static_cast<int>(std::floor(y * picture.devicePixelRatioF())) - (thickness - 1) / 2;
        EXPECT_EQ(Drawn(), std::pair(QRect(0, row, Device(200), thickness), true)) << y;
    }
}

// Dense samples, sparse ones and jumps: no column without ink and none that does not touch its neighbour.
TEST_F(PictureBoxTest, DrawsCurvesThroughTheirPointsWithoutAHole) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> height(5, 95);
    for (const int count : {3, 40, 200, 3600}) {
        picture.SetBackColor(white);
        std::vector<Point> points;
        for (int i = 0; i < count; ++i)
            points.push_back({i * 200.0 / (count - 1), height(random)});
        picture.Polyline(points, blue);
        const QImage image = picture.Picture();
        std::pair last(0, image.height()); // the inked rows of a column
        for (int x = 0; x < image.width(); ++x) {
            std::pair rows(image.height(), -1);
            for (int y = 0; y < image.height(); ++y)
                if (image.pixelColor(x, y) == Qt::blue) rows = {std::min(rows.first, y), y};
            ASSERT_TRUE(rows.first <= last.second + 1 && rows.second >= last.first - 1) << count << " " << x;
            last = rows;
        }
    }
    picture.SetBackColor(white);
    const std::vector<Point> peaks = {{10, 90}, {60, 20}, {60, 70}, {110, 70}, {160, 5}};
    picture.Polyline(peaks, blue);
    for (const Point& point : peaks)
        EXPECT_EQ(At(point.X, point.Y), Qt::blue) << point.X;
}

TEST_F(PictureBoxTest, ClipsWhatLiesOutside) {
    const double huge = 1e300;
    const double none = std::nan("");
    picture.Polyline(std::vector<Point>{{-huge, 50}, {-500, 20}, {-400, 60}, {900, 60}, {huge, -huge}}, red);
    EXPECT_EQ(Drawn().first.width(), Device(200));
    EXPECT_EQ(At(100, 60), Qt::red);
    picture.Polyline(std::vector<Point>{{50, none}, {none, 20}, {-huge, huge}, {20, 20}}, red);
    picture.Line(-huge, none, huge, 5, red);
    picture.Box(-huge, -huge, huge, huge, blue);
    EXPECT_EQ(Drawn(), std::pair(picture.Picture().rect(), true));
}

} // namespace
