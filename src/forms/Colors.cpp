#include "forms/Colors.h"

#include <QGuiApplication>
#include <QPalette>

#include <array>

namespace korvalin {
namespace {

struct SystemColorRow {
    std::uint32_t Index;
    QPalette::ColorGroup Group;
    QPalette::ColorRole Role;
};

constexpr std::array<SystemColorRow, 9> systemColors = {{{0x05, QPalette::Active, QPalette::Base},
                                                         {0x08, QPalette::Active, QPalette::Text},
                                                         {0x0C, QPalette::Active, QPalette::Dark},
                                                         {0x0D, QPalette::Active, QPalette::Highlight},
                                                         {0x0E, QPalette::Active, QPalette::HighlightedText},
                                                         {0x0F, QPalette::Active, QPalette::Button},
                                                         {0x10, QPalette::Active, QPalette::Mid},
                                                         {0x11, QPalette::Disabled, QPalette::Text},
                                                         {0x12, QPalette::Active, QPalette::ButtonText}}};

} // namespace

QColor ToColor(std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    if ((bits & 0x80000000U) == 0) {
        return {static_cast<int>(bits & 0xFF), static_cast<int>(bits >> 8 & 0xFF), static_cast<int>(bits >> 16 & 0xFF)};
    }
    for (const SystemColorRow& row : systemColors) {
        if (row.Index == (bits & 0xFF)) return QGuiApplication::palette().color(row.Group, row.Role);
    }
    return QGuiApplication::palette().color(QPalette::WindowText);
}

std::int32_t ToColorValue(const QColor& color) { return color.red() + 256 * color.green() + 65536 * color.blue(); }

} // namespace korvalin
