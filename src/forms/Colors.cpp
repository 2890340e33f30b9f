#include "forms/Colors.h"

#include <QGuiApplication>
#include <QPalette>

#include <array>

namespace korvalin {
namespace {

struct PaletteColor {
    QPalette::ColorRole Role;
    QPalette::ColorGroup Group = QPalette::Active;
};

// By index, from 0 (scroll bar) to 24 (background of hints).
constexpr std::array<PaletteColor, 25> systemColors = {{
    {QPalette::Mid},                            // 0 scroll bar
    {QPalette::Window},                         // 1 desktop
    {QPalette::Highlight},                      // 2 active caption
    {QPalette::Window, QPalette::Inactive},     // 3 inactive caption
    {QPalette::Window},                         // 4 menu
    {QPalette::Base},                           // 5 window background
    {QPalette::Shadow},                         // 6 window frame
    {QPalette::WindowText},                     // 7 menu text
    {QPalette::Text},                           // 8 window text
    {QPalette::HighlightedText},                // 9 active caption's text
    {QPalette::Window},                         // 10 active border
    {QPalette::Window, QPalette::Inactive},     // 11 inactive border
    {QPalette::Dark},                           // 12 application workspace
    {QPalette::Highlight},                      // 13 selection
    {QPalette::HighlightedText},                // 14 selection's text
    {QPalette::Button},                         // 15 button face
    {QPalette::Mid},                            // 16 button shadow
    {QPalette::Text, QPalette::Disabled},       // 17 grey text
    {QPalette::ButtonText},                     // 18 button text
    {QPalette::WindowText, QPalette::Inactive}, // 19 inactive caption's text
    {QPalette::Light},                          // 20 button highlight
    {QPalette::Shadow},                         // 21 dark shadow
    {QPalette::Midlight},                       // 22 light edge
    {QPalette::ToolTipText},                    // 23 hint text
    {QPalette::ToolTipBase},                    // 24 hint background
}};

QColor FromPalette(std::uint32_t index) {
    // An index that nobody knows must still be readable.
    const PaletteColor color =
        index < systemColors.size() ? systemColors[index] : PaletteColor{QPalette::WindowText};
    return QGuiApplication::palette().color(color.Group, color.Role);
}

} // namespace

QColor ToColor(std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    if ((bits & 0x80000000U) != 0) return FromPalette(bits & 0xFFFFU);
    const auto part = [bits](unsigned shift) { return static_cast<int>(bits >> shift & 0xFFU); };
    return {part(0), part(8), part(16)};
}

std::int32_t ToColorValue(const QColor& color) {
    return color.red() + 256 * color.green() + 65536 * color.blue();
}

} // namespace korvalin
