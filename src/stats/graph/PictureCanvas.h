#pragma once

#include "stats/graph/GraphCanvas.h"

namespace korvalin {

class PictureBox;

/// Draws the period graph into a picture box, which it clears to white first. The drawing is shown when the
/// canvas goes.
class PictureCanvas : public GraphCanvas {
  public:
    explicit PictureCanvas(PictureBox& picture);
    ~PictureCanvas() override;
    PictureCanvas(const PictureCanvas&) = delete;
    PictureCanvas& operator=(const PictureCanvas&) = delete;

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
    PictureBox& picture_;
};

} // namespace korvalin
