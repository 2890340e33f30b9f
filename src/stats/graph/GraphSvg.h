#pragma once

#include "stats/graph/GraphCanvas.h"

#include <string>
#include <string_view>

namespace korvalin {

/// Draws the period graph as an SVG element for a web page. Widths of texts are those of the usual sans-serif
/// letters, as no font is at hand; the viewer's may differ by a little.
class GraphSvg : public GraphCanvas {
  public:
    /// The size in pixels of a page; `title` says what the picture shows to those who cannot see it.
    GraphSvg(int width, int height, std::string_view title);

    /// The finished element, a well-formed document of its own in UTF-8.
    std::string Text() const;

    double Width() const override;
    double Height() const override;
    void SetOrigin(double fromLeft, double fromBottom) override;
    void Line(double x1, double y1, double x2, double y2, std::int32_t color) override;
    void Box(double x1, double y1, double x2, double y2, std::int32_t color) override;
    void Outline(double x1, double y1, double x2, double y2, std::int32_t color) override;
    void Print(double x, double y, std::string_view text, TextAnchor anchor) override;
    void PrintUpwards(double x, double y, std::string_view text, TextAnchor anchor) override;
    double TextWidth(std::string_view text) const override;
    double TextHeight() const override;

  private:
    double PageX(double x) const;
    double PageY(double y) const;
    std::string Rect(double x1, double y1, double x2, double y2) const;

    int width_;
    int height_;
    double left_ = 0;
    double bottom_ = 0;
    std::string elements_;
};

} // namespace korvalin
