// The value scale of the period graph, in volume units.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace korvalin {

struct Locale;

/// A scale from 0 to Top with a grid line at each j x Top / Lines, j = 1 ... Lines.
struct GraphScale {
    double Top = 0;
    int Lines = 1;
    int Decimals = 0; ///< that the values at the grid lines need
};

/// The scale for a largest value: its top is the next multiple of the value's power of ten above it, for
/// values below 1 the next of 1, 2 or 5 x 10^-k at or above it. nullopt when there can be none: the value is
/// 0, negative, infinite or not a number.
std::optional<GraphScale> ScaleFor(double maximum);

/// The scale that ends at `top`; nullopt as for ScaleFor.
std::optional<GraphScale> ScaleOfTop(double top);

/// The next of 1, 2 or 5 x 10^k at or above a value above 0.
double RoundTop(double value);

/// Round tops to choose from when `maximum` is the largest value, in ascending order; none for a value that
/// has no scale.
std::vector<double> RoundTopsAround(double maximum);

/// The decimals that a value needs, at most 12.
int DecimalsOf(double value);

/// A value of a scale as text, thousands grouped.
std::string ScaleText(double value, int decimals, const Locale& locale);

} // namespace korvalin
