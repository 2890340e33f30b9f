#include "stats/graph/GraphSvg.h"

#include "base/Text.h"
#include "platform/Screen.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace korvalin {
namespace {

constexpr double fontPixels = 11;
constexpr double lineHeight = 1.15;            // in font sizes
constexpr double capitalHeight = 0.72;         // in font sizes
constexpr const char* systemColor = "#e0e0e0"; // a page has no buttons whose colour it could take

std::string ColorText(std::int32_t color) {
    if (color < 0) return systemColor;
    const auto part = [color](int shift) { return color >> shift & 0xFF; };
    return fmt::format("#{:02x}{:02x}{:02x}", part(0), part(8), part(16));
}

// In font sizes; only counts what a number, a date and a unit consist of.
double CharacterWidth(char c) {
    if (c >= '0' && c <= '9') return 0.556;
    if (c >= 'A' && c <= 'Z') return 0.7;
    return std::string_view(" .,:/'-").find(c) == std::string_view::npos ? 0.556 : 0.3;
}

} // namespace

GraphSvg::GraphSvg(int width, int height, std::string_view title) : width_(width), height_(height) {
    elements_ = fmt::format("<title>{}</title>\n<rect width=\"{}\" height=\"{}\" fill=\"#ffffff\"/>\n",
                            EscapeMarkup(title), width, height);
}

std::string GraphSvg::Text() const {
    return fmt::format("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" "
                       "viewBox=\"0 0 {0} {1}\" role=\"img\" font-family=\"Arial, Helvetica, sans-serif\" "
                       "font-size=\"{2}\">\n{3}</svg>\n",
                       width_, height_, fontPixels, elements_);
}

double GraphSvg::Width() const {
    return width_ * TwipsPerPixel;
}

double GraphSvg::Height() const {
    return height_ * TwipsPerPixel;
}

void GraphSvg::SetOrigin(double fromLeft, double fromBottom) {
    left_ = fromLeft;
    bottom_ = fromBottom;
}

double GraphSvg::PageX(double x) const {
    return (left_ + x) / TwipsPerPixel;
}

double GraphSvg::PageY(double y) const {
    return height_ - (bottom_ + y) / TwipsPerPixel;
}

void GraphSvg::Line(double x1, double y1, double x2, double y2, std::int32_t color) {
    elements_ += fmt::format("<line x1=\"{:.2f}\" y1=\"{:.2f}\" x2=\"{:.2f}\" y2=\"{:.2f}\" stroke=\"{}\" "
                             "shape-rendering=\"crispEdges\"/>\n",
                             PageX(x1), PageY(y1), PageX(x2), PageY(y2), ColorText(color));
}

std::string GraphSvg::Rect(double x1, double y1, double x2, double y2) const {
    return fmt::format("<rect x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" "
                       "shape-rendering=\"crispEdges\" ",
                       PageX(std::min(x1, x2)), PageY(std::max(y1, y2)), std::abs(x2 - x1) / TwipsPerPixel,
                       std::abs(y2 - y1) / TwipsPerPixel);
}

void GraphSvg::Box(double x1, double y1, double x2, double y2, std::int32_t color) {
    elements_ += Rect(x1, y1, x2, y2) + fmt::format("fill=\"{}\"/>\n", ColorText(color));
}

void GraphSvg::Outline(double x1, double y1, double x2, double y2, std::int32_t color) {
    elements_ += Rect(x1, y1, x2, y2) + fmt::format("fill=\"none\" stroke=\"{}\"/>\n", ColorText(color));
}

void GraphSvg::Print(double x, double y, std::string_view text, TextAnchor anchor) {
    elements_ += fmt::format("<text x=\"{:.2f}\" y=\"{:.2f}\" text-anchor=\"{}\">{}</text>\n", PageX(x),
                             PageY(y) + fontPixels * capitalHeight / 2,
                             anchor == TextAnchor::Start ? "start" : "end", EscapeMarkup(text));
}

void GraphSvg::PrintUpwards(double x, double y, std::string_view text, TextAnchor anchor) {
    const bool start = anchor == TextAnchor::Start;
    elements_ += fmt::format(
        "<text transform=\"translate({:.2f} {:.2f}) rotate(-90)\" text-anchor=\"{}\"{}>{}</text>\n",
        PageX(x) + fontPixels * capitalHeight / 2, PageY(y), start ? "start" : "end",
        start ? " stroke=\"#ffffff\" stroke-width=\"2\" paint-order=\"stroke\"" : "", EscapeMarkup(text));
}

double GraphSvg::TextWidth(std::string_view text) const {
    double width = 0;
    for (const char c : text)
        // A character of several bytes counts once.
        if ((static_cast<unsigned char>(c) & 0xC0U) != 0x80U) width += CharacterWidth(c);
    return width * fontPixels * TwipsPerPixel;
}

double GraphSvg::TextHeight() const {
    return fontPixels * lineHeight * TwipsPerPixel;
}

} // namespace korvalin
