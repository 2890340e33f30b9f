#include "forms/Twips.h"

namespace korvalin {
namespace {

TEST(Twips, RoundToTheNearestPixel) {
    struct {
        double Twips;
        int Pixels;
    } const rows[] = {{0, 0},    {15, 1},   {7, 0},   {8, 1},       {22.4, 1},
                      {22.6, 2}, {-15, -1}, {-8, -1}, {28800, 1920}};
    for (const auto& row : rows)
        EXPECT_EQ(TwipsToPixels(row.Twips), row.Pixels) << row.Twips;
}

TEST(Twips, KeepWholePixelsThereAndBack) {
    for (const int pixels : {-1200, -1, 0, 1, 313, 3840})
        EXPECT_EQ(TwipsToPixels(PixelsToTwips(pixels)), pixels);
}

} // namespace
} // namespace korvalin
