#pragma once

#include <cstddef>
#include <optional>

namespace korvalin {

/// Where the period graph's bars stand, in twips. The origin is the lower left end of its axes.
struct GraphLayout {
    double Left = 0;   ///< from the picture's left edge to the vertical axis
    double Width = 0;  ///< of the drawing area
    double Height = 0; ///< of the drawing area: from the base line to the scale's top
    std::size_t Count = 0;

    /// From the picture's bottom edge to the base line; holds the labels of the periods.
    static constexpr double Below = 900;
    /// From the scale's top to the picture's upper edge.
    static constexpr double Above = 150;

    /// Each period has a slot; its bar is the slot without the gap, centred. Indices count from 0.
    double Slot() const { return Width / static_cast<double>(Count); }
    double Gap() const;
    double BarLeft(std::size_t index) const { return Slot() * static_cast<double>(index) + Gap() / 2; }
    double BarRight(std::size_t index) const { return Slot() * static_cast<double>(index + 1) - Gap() / 2; }
    double Centre(std::size_t index) const { return Slot() * (static_cast<double>(index) + 0.5); }

    /// The period whose slot is this far from the picture's left edge.
    std::optional<std::size_t> PeriodAt(double fromLeft) const;
};

/// The layout of `count` bars in a picture, beside a scale whose widest text is `scaleTextWidth` wide.
GraphLayout LayOut(double pictureWidth, double pictureHeight, double scaleTextWidth, std::size_t count);

} // namespace korvalin
