#include "forms/Colors.h"
#include "forms/PictureBox.h"
#include "forms/Twips.h"

#include <gtest/gtest.h>

namespace korvalin {
namespace {

constexpr std::int32_t blue = 0xFF0000;
constexpr std::int32_t white = 0xFFFFFF;

struct Point {
    double X, Y;
};

class PictureBoxTest : public testing::Test {
  protected:
    PictureBoxTest() {
        box.resize(200, 100);
        box.SetScaleLeft(0);
        box.SetScaleWidth(20); // ten pixels a unit
        box.SetScaleTop(50);   // the value axis points up
        box.SetScaleHeight(-50); // two pixels a unit
        box.SetBackColor(white);
    }
    QColor At(int x, int y) const { return box.Picture().pixelColor(x, y); }
    int CountOf(std::int32_t color) const {
        int count = 0;
        for (int y = 0; y < 100; ++y) {
            for (int x = 0; x < 200; ++x) count += At(x, y) == ToColor(color) ? 1 : 0;
        }
        return count;
    }
    PictureBox box;
};

TEST_F(PictureBoxTest, ARuleIsOneCrispLine) {
    box.Line(0, 25, 20, 25, blue);
    for (const int x : {1, 100, 198}) {
        EXPECT_EQ(At(x, 50), ToColor(blue));
        EXPECT_EQ(At(x, 49), ToColor(white));
        EXPECT_EQ(At(x, 51), ToColor(white));
    }
}

TEST_F(PictureBoxTest, ABoxFillsBetweenItsCornersInAnyOrder) {
    box.Box(5, 10, 1, 40, blue);
    EXPECT_EQ(At(11, 21), ToColor(blue));
    EXPECT_EQ(At(48, 78), ToColor(blue));
    EXPECT_EQ(At(8, 50), ToColor(white));
    EXPECT_EQ(At(30, 82), ToColor(white));
}

TEST_F(PictureBoxTest, APolylineRunsThroughItsPointsAndOnePointIsNothing) {
    box.Polyline(std::vector<Point>{{2, 10}}, blue);
    EXPECT_EQ(CountOf(blue), 0);
    box.Polyline(std::vector<Point>{{2, 10}, {10, 10}, {10, 40}}, blue);
    EXPECT_EQ(At(60, 80), ToColor(blue));
    EXPECT_EQ(At(100, 50), ToColor(blue));
    EXPECT_EQ(At(60, 50), ToColor(white));
}

TEST_F(PictureBoxTest, DottedLinesLeaveGaps) {
    box.SetDrawStyle(DrawStyle::Dotted);
    box.Line(5, 0, 5, 50, blue);
    const int drawn = CountOf(blue);
    EXPECT_GT(drawn, 20);
    EXPECT_LT(drawn, 80);
}

TEST_F(PictureBoxTest, PrintMovesOnByTheWidthOfItsText) {
    box.SetFont("DejaVu Sans", 9, true);
    box.SetCurrentX(1);
    box.SetCurrentY(50);
    box.SetForeColor(blue);
    box.Print("Max");
    EXPECT_NEAR(box.CurrentX(), 1 + box.TextWidth("Max"), 1e-9);
    const double middle = box.CurrentX();
    box.Print(" 5.0");
    EXPECT_NEAR(box.CurrentX(), middle + box.TextWidth(" 5.0"), 1e-9);
    EXPECT_GT(CountOf(blue), 10);
    EXPECT_LT(box.TextHeight(), 0) << "a height has the sign of the scale";
    EXPECT_NEAR(box.TextHeightTwips(), -box.TextHeight() * 2 * TwipsPerPixel, 1e-6);
}

TEST_F(PictureBoxTest, TheBackColourClearsAndFollowsANewSize) {
    box.Line(0, 25, 20, 25, blue);
    box.SetBackColor(0x00FF00);
    EXPECT_EQ(CountOf(blue), 0);
    box.resize(400, 300);
    box.SetBackColor(0x00FF00);
    EXPECT_EQ(box.Picture().size(), QSize(400, 300));
    EXPECT_EQ(At(399, 299), ToColor(0x00FF00));
}

TEST_F(PictureBoxTest, UnitsOfAPixel) {
    EXPECT_DOUBLE_EQ(box.ScaleX(1), 0.1);
    EXPECT_DOUBLE_EQ(box.ScaleY(1), -0.5);
    EXPECT_EQ(box.HeightTwips(), 1500);
}

TEST(Colors, ValuesHoldRedInTheLowByteAndSystemColoursComeFromThePalette) {
    EXPECT_EQ(ToColor(15323561), QColor(169, 209, 233));
    EXPECT_EQ(ToColorValue(QColor(169, 209, 233)), 15323561);
    EXPECT_EQ(ToColor(ColorGrayText), QGuiApplication::palette().color(QPalette::Disabled, QPalette::Text));
    EXPECT_EQ(ToColor(ColorApplicationWorkspace), QGuiApplication::palette().color(QPalette::Dark));
}

TEST(Twips, RoundToThePixel) {
    EXPECT_EQ(TwipsToPixels(10), 1);
    EXPECT_EQ(TwipsToPixels(7), 0);
    EXPECT_EQ(TwipsToPixels(-400), -27);
    EXPECT_EQ(PixelsToTwips(97), 1455);
}

} // namespace
} // namespace korvalin
