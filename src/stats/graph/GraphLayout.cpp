#include "stats/graph/GraphLayout.h"

#include <algorithm>

namespace korvalin {

double GraphLayout::Gap() const {
    constexpr std::size_t wideGaps = 35;
    constexpr std::size_t narrowGaps = 60;
    if (Count <= wideGaps) return Width / 100;
    return Count <= narrowGaps ? Width / 200 : 0;
}

std::optional<std::size_t> GraphLayout::PeriodAt(double fromLeft) const {
    const double x = fromLeft - Left;
    if (Count == 0 || x < 0 || x >= Width) return std::nullopt;
    return std::min(static_cast<std::size_t>(x / Slot()), Count - 1);
}

GraphLayout LayOut(double pictureWidth, double pictureHeight, double scaleTextWidth, std::size_t count) {
    constexpr double aroundScaleText = 200;
    // A picture without room for a drawing area keeps a speck of one.
    constexpr double least = 15;
    GraphLayout layout;
    layout.Left = scaleTextWidth + aroundScaleText;
    layout.Width = std::max(pictureWidth - layout.Left, least);
    layout.Height = std::max(pictureHeight - GraphLayout::Below - GraphLayout::Above, least);
    layout.Count = count;
    return layout;
}

} // namespace korvalin
