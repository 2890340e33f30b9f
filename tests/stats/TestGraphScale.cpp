#include "base/Locale.h"
#include "stats/graph/GraphScale.h"

#include <cmath>
#include <limits>

using namespace korvalin;

TEST(GraphScale, EndsAtTheNextRoundValue) {
    struct {
        double Maximum, Top;
        int Lines, Decimals;
    } const rows[] = {{2.3, 3, 3, 0},
                      {23, 30, 15, 0},
                      {95, 100, 10, 0},
                      {470, 500, 10, 0},
                      {350, 400, 8, 0},
                      {8.5, 9, 9, 0},
                      {74, 80, 8, 0},
                      {999.999999, 1000, 10, 0},
                      {std::nextafter(1000.0, 0.0), 1000, 10, 0},
                      {1, 2, 2, 0}, // the value itself is below the top
                      {10, 20, 10, 0},
                      {1000, 2000, 10, 0},
                      {1e15, 2e15, 10, 0},
                      {std::nextafter(1e15, 0.0), 1e15, 10, 0},
                      {9.99e21, 1e22, 10, 0},
                      // below one unit
                      {std::nextafter(1.0, 0.0), 1, 10, 1},
                      {0.51, 1, 10, 1},
                      {0.5, 0.5, 10, 2},
                      {0.2, 0.2, 10, 2},
                      {0.1, 0.1, 10, 2},
                      {0.1 + 0.2 - 0.1, 0.2, 10, 2}, // an error in the last bit
                      {0.03, 0.05, 10, 3},
                      {1e-9, 1e-9, 10, 10}};
    for (const auto& row : rows) {
        const auto scale = ScaleFor(row.Maximum);
        ASSERT_TRUE(scale) << row.Maximum;
        EXPECT_DOUBLE_EQ(scale->Top, row.Top) << row.Maximum;
        EXPECT_EQ(std::pair(scale->Lines, scale->Decimals), std::pair(row.Lines, row.Decimals))
            << row.Maximum;
    }
    for (const double none : {0.0, -1.0, std::nan(""), std::numeric_limits<double>::infinity(), 1.7e308})
        EXPECT_FALSE(ScaleFor(none)) << none;
}

// Every power of ten and its neighbours: the top is above the value, but not by more than a digit.
TEST(GraphScale, HoldsItsValueAtEveryMagnitude) {
    for (int exponent = -9; exponent <= 20; ++exponent) {
        for (const double digits : {1.0, 1.999999999, 2.0, 3.0, 5.0, 7.3, 9.0, 9.9999999999}) {
            const double value = digits * std::pow(10.0, exponent);
            const auto scale = ScaleFor(value);
            ASSERT_TRUE(scale) << value;
            EXPECT_GE(scale->Top, value * (1 - 1e-11));
            EXPECT_LE(scale->Top, value < 1 ? value * 2.51 : value * 2.01) << value;
            EXPECT_TRUE(scale->Lines >= 1 && scale->Lines <= 15) << value;
            // The texts of the grid lines are their values.
            const double step = scale->Top / scale->Lines * std::pow(10.0, scale->Decimals);
            EXPECT_NEAR(step / std::round(step), 1, 1e-9) << value;
        }
    }
}

TEST(GraphScale, OffersRoundTopsAndTakesAnyOther) {
    EXPECT_EQ(RoundTopsAround(23), (std::vector<double>{0.5, 1, 2, 5, 10, 20, 50, 100, 200}));
    EXPECT_TRUE(RoundTopsAround(0).empty());
    struct {
        double Top;
        int Lines;
    } const rows[] = {{1, 10}, {15, 15}, {16, 8}, {38, 15}, {39, 7}, {75, 15}, {76, 7}, {150, 15}, {0.5, 10}};
    for (const auto& row : rows)
        EXPECT_EQ(ScaleOfTop(row.Top)->Lines, row.Lines) << row.Top;
    EXPECT_EQ(RoundTop(476.8), 500);
    EXPECT_EQ(RoundTop(500), 500);
    EXPECT_EQ(RoundTop(0.7), 1);
    Locale locale;
    EXPECT_EQ(ScaleText(2e15, 0, locale), "2,000,000,000,000,000");
    EXPECT_EQ(ScaleText(0.05, DecimalsOf(0.05), locale), "0.05");
}
