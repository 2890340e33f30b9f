#include "stats/graph/GraphScale.h"

#include "base/Numbers.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace korvalin {
namespace {

// Sums divided by units carry errors in their last bits; a value that near a round one is that one.
constexpr double tolerance = 1e-12;

// Exact for every power that a double holds exactly; a negative one by division, which rounds correctly.
double TimesPowerOfTen(double value, int exponent) {
    return exponent < 0 ? value / std::pow(10.0, -exponent) : value * std::pow(10.0, exponent);
}

// The largest e with 10^e <= value. The logarithm alone is off by one beside some powers of ten.
int ExponentOf(double value) {
    auto exponent = static_cast<int>(std::floor(std::log10(value)));
    if (TimesPowerOfTen(1, exponent) > value) --exponent;
    if (TimesPowerOfTen(1, exponent + 1) <= value) ++exponent;
    return exponent;
}

int FirstDigitOf(double value, int exponent) {
    int digit = 1;
    while (digit < 9 && TimesPowerOfTen(digit + 1, exponent) <= value)
        ++digit;
    return digit;
}

bool HasScale(double value) {
    return value > 0 && std::isfinite(value) && std::isfinite(TimesPowerOfTen(1, ExponentOf(value) + 1));
}

// The first two digits of a top; a single one where it has only one before the decimal mark. Values of 1 and
// less are read as if they went on: as 10, 20 and 50, for a grid between 0 and their one digit.
double LeadingDigits(double top) {
    if (top > 1 && top < 10) return std::floor(top);
    return std::floor(TimesPowerOfTen(top, 1 - ExponentOf(top)) * (1 + tolerance));
}

// What the distance of grid lines is, in terms of the leading digits; 0 above all that two digits can be.
double GridDivisor(double leadingDigits) {
    struct Row {
        double Most, Divisor;
    };
    constexpr std::array<Row, 5> rows = {{{15, 1}, {30, 2}, {38, 2.5}, {75, 5}, {150, 10}}};
    for (const Row& row : rows)
        if (leadingDigits <= row.Most) return row.Divisor;
    return 0;
}

} // namespace

int DecimalsOf(double value) {
    constexpr int most = 12;
    for (int decimals = 0; decimals < most; ++decimals) {
        const double scaled = TimesPowerOfTen(value, decimals);
        if (std::abs(scaled - std::round(scaled)) <= scaled * tolerance) return decimals;
    }
    return most;
}

double RoundTop(double value) {
    const int exponent = ExponentOf(value);
    for (const int digit : {1, 2, 5})
        if (TimesPowerOfTen(digit, exponent) >= value * (1 - tolerance))
            return TimesPowerOfTen(digit, exponent);
    return TimesPowerOfTen(1, exponent + 1);
}

std::optional<GraphScale> ScaleOfTop(double top) {
    if (!HasScale(top)) return std::nullopt;
    const double digits = LeadingDigits(top);
    const double divisor = GridDivisor(digits);
    if (divisor == 0) return std::nullopt;
    GraphScale scale{top, static_cast<int>(digits / divisor)};
    // From 1 on whole numbers are fine enough.
    if (top <= 1) scale.Decimals = DecimalsOf(top / scale.Lines);
    return scale;
}

std::optional<GraphScale> ScaleFor(double maximum) {
    if (!HasScale(maximum)) return std::nullopt;
    if (maximum < 1) return ScaleOfTop(RoundTop(maximum));
    const int exponent = ExponentOf(maximum);
    return ScaleOfTop(TimesPowerOfTen(FirstDigitOf(maximum, exponent) + 1, exponent));
}

std::vector<double> RoundTopsAround(double maximum) {
    constexpr double below = 50; // to see small periods beside a large one
    constexpr double above = 20; // to compare with graphs of larger values
    std::vector<double> tops;
    if (!HasScale(maximum)) return tops;
    for (double top = RoundTop(maximum / below); top <= maximum * above; top = RoundTop(top * 1.5))
        tops.push_back(top);
    return tops;
}

std::string ScaleText(double value, int decimals, const Locale& locale) {
    std::string pattern = "#,##0";
    if (decimals > 0) pattern += "." + std::string(static_cast<std::size_t>(decimals), '0');
    return FormatNumber(value, pattern, locale);
}

} // namespace korvalin
