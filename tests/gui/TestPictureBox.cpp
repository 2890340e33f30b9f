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
        const QImage image = picture.Picture();
        QRect drawn;
        int inked = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) == Qt::white) continue;
                drawn |= QRect(x, y, 1, 1);
                ++inked;
            }
        }
        return {drawn, inked == drawn.width() * drawn.height()};
    }

    PictureBox picture;
};

TEST_F(PictureBoxTest, FillsABoxInAnyScale) {
    struct {
        double Left, Top, Width, Height; // the scale
        double X1, Y1, X2, Y2;
    } const rows[] = {{0, 0, 200, 100, 20, 10, 60, 30},
                      {1, 500, 100, -1000, 11, 400, 31, 200},
                      {1, 500, 100, -1000, 31, 200, 11, 400},
                      {200, 0, -200, 100, 180, 10, 140, 30}};
    for (const auto& row : rows) {
        SetScale(row.Left, row.Top, row.Width, row.Height);
        picture.SetBackColor(white);
        picture.Box(row.X1, row.Y1, row.X2, row.Y2, red); // both corners belong to it
        const QRect expected(QPoint(Device(20), Device(10)), QPoint(Device(60), Device(30)));
        EXPECT_EQ(Drawn(), std::pair(expected, true)) << row.Left << " " << row.Height;
        EXPECT_EQ(At(40, 20), Qt::red);
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
    picture.SetBackColor(white);
    picture.SetDrawStyle(DrawStyle::Dotted);
    picture.Line(80, 0, 80, 99, red);
    EXPECT_EQ(Drawn().first.width(), thickness);
    EXPECT_GT(Drawn().first.height(), Device(90));
    EXPECT_FALSE(Drawn().second);
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
        int lastTop = 0;
        int lastBottom = image.height();
        for (int x = 0; x < image.width(); ++x) {
            int top = image.height();
            int bottom = -1;
            for (int y = 0; y < image.height(); ++y) {
                if (image.pixelColor(x, y) != Qt::blue) continue;
                top = std::min(top, y);
                bottom = y;
            }
            ASSERT_TRUE(top <= lastBottom + 1 && bottom >= lastTop - 1) << count << " points, column " << x;
            lastTop = top;
            lastBottom = bottom;
        }
    }
    picture.SetBackColor(white);
    const std::vector<Point> peaks = {{10, 90}, {60, 20}, {60, 70}, {110, 70}, {160, 5}};
    picture.Polyline(peaks, blue);
    for (const Point& point : peaks)
        EXPECT_EQ(At(point.X, point.Y), Qt::blue) << point.X;
    picture.SetBackColor(white);
    picture.Polyline(std::vector<Point>{{0, 50}, {0.1, 50}, {70, 50}, {200, 50}}, red);
    EXPECT_EQ(Drawn().first.height(), Device(1));
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
    SetScale(0, 0, 0, 0);
    picture.Polyline(std::vector<Point>{{0, 0}, {1, 1}}, red);
}

TEST_F(PictureBoxTest, PrintsBesideWhatItPrintedBeforeAndUpwards) {
    SetScale(1, 500, 100, -1000); // half a unit a pixel across, ten a pixel down
    picture.SetFont("DejaVu Sans", 9, false);
    const auto at = [&](double x, double y) { picture.SetCurrentX(x), picture.SetCurrentY(y); };
    const double width = picture.TextWidth("Größe ");
    const double height = picture.TextHeight();
    at(21, 300);
    picture.Print("Größe ");
    EXPECT_NEAR(picture.CurrentX(), 21 + width, 1e-9);
    EXPECT_EQ(picture.CurrentY(), 300);
    const QRect first = Drawn().first;
    const QRect cell(Device(40), Device(20), Device(width * 2), Device(height / -10));
    EXPECT_TRUE(cell.adjusted(-1, -1, 1, 1).contains(first)) << first.x() << " " << first.y();
    picture.Print("kB");
    EXPECT_GT(Drawn().first.right(), cell.right());
    EXPECT_EQ(Drawn().first.left(), first.left());

    picture.SetBackColor(white);
    at(21, -400);
    picture.PrintUpwards("Größe ");
    EXPECT_EQ(picture.CurrentX(), 21);
    EXPECT_NEAR(picture.CurrentY(), -400 + width * 20, 1e-9);
    const QRect upright(Device(40), Device(90 - width * 2), Device(height / -10), Device(width * 2));
    const QRect text = Drawn().first;
    EXPECT_TRUE(upright.adjusted(-1, -1, 1, 1).contains(text)) << text.x() << " " << text.y();
    EXPECT_GT(text.bottom(), upright.bottom() - upright.height() / 6) << "it begins at the bottom";
}

TEST_F(PictureBoxTest, OutlinesWhatABoxFills) {
    picture.Box(20, 10, 60, 30, red);
    const QRect box = Drawn().first;
    picture.SetBackColor(white);
    picture.Outline(60, 30, 20, 10, red);
    EXPECT_EQ(Drawn(), std::pair(box, false));
    const QPoint pen(Device(1), Device(1));
    for (const QPoint& inside : {box.topLeft() + pen, box.bottomRight() - pen})
        EXPECT_EQ(picture.Picture().pixelColor(inside), Qt::white);
}

} // namespace
