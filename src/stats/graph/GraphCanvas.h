#pragma once

#include <cstdint>
#include <string_view>

namespace korvalin {

/// Where a text begins and ends in relation to the point it is printed at.
enum class TextAnchor { Start, End };

/// What the period graph is drawn on. Lengths are twips; x runs to the right and y upwards from the origin.
/// Colours are red + 256 * green + 65536 * blue, or a system colour's value; texts are UTF-8 in one font,
/// black.
class GraphCanvas {
  public:
    virtual ~GraphCanvas() = default;

    /// In pixels, as all lengths here.
    virtual double Width() const = 0;
    virtual double Height() const = 0;

    /// Puts the origin this far from the left and from the bottom edge. It begins in the lower left corner.
    virtual void SetOrigin(double fromLeft, double fromBottom) = 0;

    /// A line of a pixel's width.
    virtual void Line(double x1, double y1, double x2, double y2, std::int32_t color) = 0;
    /// Fills the box between two corners.
    virtual void Box(double x1, double y1, double x2, double y2, std::int32_t color) = 0;
    /// The border of the box that Box would fill.
    virtual void Outline(double x1, double y1, double x2, double y2, std::int32_t color) = 0;

    /// Prints beside a point, vertically centred on it.
    virtual void Print(double x, double y, std::string_view text, TextAnchor anchor) = 0;
    /// Prints upwards above (Start) or below (End) a point, horizontally centred on it. Above it the letters
    /// have a white rim: they stand on bars and their outlines.
    virtual void PrintUpwards(double x, double y, std::string_view text, TextAnchor anchor) = 0;

    virtual double TextWidth(std::string_view text) const = 0;
    virtual double TextHeight() const = 0;
};

} // namespace korvalin
