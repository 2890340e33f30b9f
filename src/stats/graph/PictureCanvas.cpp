#include "stats/graph/PictureCanvas.h"

#include "forms/PictureBox.h"
#include "platform/Screen.h"

namespace korvalin {
namespace {

constexpr std::int32_t white = 0xFFFFFF;
constexpr std::int32_t black = 0x000000;
constexpr double fontPoints = 8;
constexpr double rim = TwipsPerPixel;

} // namespace

PictureCanvas::PictureCanvas(PictureBox& picture) : picture_(picture) {
    picture_.SetBackColor(white);
    picture_.SetForeColor(black);
    picture_.SetFont("Arial", fontPoints, false);
    picture_.SetDrawWidth(1);
    picture_.SetDrawStyle(DrawStyle::Solid);
    picture_.SetScaleWidth(Width());
    picture_.SetScaleHeight(-Height());
    SetOrigin(0, 0);
}

PictureCanvas::~PictureCanvas() {
    picture_.Refresh();
}

double PictureCanvas::Width() const {
    return picture_.WidthTwips();
}

double PictureCanvas::Height() const {
    return picture_.HeightTwips();
}

void PictureCanvas::SetOrigin(double fromLeft, double fromBottom) {
    picture_.SetScaleLeft(-fromLeft);
    picture_.SetScaleTop(Height() - fromBottom);
}

void PictureCanvas::Line(double x1, double y1, double x2, double y2, std::int32_t color) {
    picture_.Line(x1, y1, x2, y2, color);
}

void PictureCanvas::Box(double x1, double y1, double x2, double y2, std::int32_t color) {
    picture_.Box(x1, y1, x2, y2, color);
}

void PictureCanvas::Outline(double x1, double y1, double x2, double y2, std::int32_t color) {
    picture_.Outline(x1, y1, x2, y2, color);
}

void PictureCanvas::Print(double x, double y, std::string_view text, TextAnchor anchor) {
    picture_.SetCurrentX(anchor == TextAnchor::Start ? x : x - TextWidth(text));
    picture_.SetCurrentY(y + TextHeight() / 2);
    picture_.Print(text);
}

void PictureCanvas::PrintUpwards(double x, double y, std::string_view text, TextAnchor anchor) {
    const double left = x - TextHeight() / 2;
    const double bottom = anchor == TextAnchor::Start ? y : y - TextWidth(text);
    const auto print = [&](double aside, double above, std::int32_t color) {
        picture_.SetForeColor(color);
        picture_.SetCurrentX(left + aside);
        picture_.SetCurrentY(bottom + above);
        picture_.PrintUpwards(text);
    };
    if (anchor == TextAnchor::Start) {
        for (const double aside : {-rim, rim})
            for (const double above : {-rim, rim})
                print(aside, above, white);
    }
    print(0, 0, black);
}

double PictureCanvas::TextWidth(std::string_view text) const {
    return picture_.TextWidth(text);
}

double PictureCanvas::TextHeight() const {
    return picture_.TextHeightTwips();
}

} // namespace korvalin
