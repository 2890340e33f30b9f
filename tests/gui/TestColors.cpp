#include "forms/Colors.h"

namespace korvalin {
namespace {

TEST(Colors, HoldRedInTheLowestByte) {
    const struct {
        std::int32_t Value;
        QColor Color;
    } rows[] = {{0x0000FF, Qt::red},
                {0x00FF00, Qt::green},
                {0xFF0000, Qt::blue},
                {0xC0A070, QColor(0x70, 0xA0, 0xC0)}};
    for (const auto& row : rows) {
        EXPECT_EQ(ToColor(row.Value), row.Color);
        EXPECT_EQ(ToColorValue(row.Color), row.Value);
    }
}

TEST(Colors, FollowThePaletteForSystemColors) {
    const QPalette before = QGuiApplication::palette();
    QPalette palette;
    palette.setColor(QPalette::Active, QPalette::Base, QColor(1, 2, 3));
    palette.setColor(QPalette::Active, QPalette::Text, QColor(4, 5, 6));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(7, 8, 9));
    palette.setColor(QPalette::Active, QPalette::Dark, QColor(10, 11, 12));
    palette.setColor(QPalette::Active, QPalette::Highlight, QColor(13, 14, 15));
    palette.setColor(QPalette::Active, QPalette::HighlightedText, QColor(16, 17, 18));
    palette.setColor(QPalette::Active, QPalette::Button, QColor(19, 20, 21));
    palette.setColor(QPalette::Active, QPalette::WindowText, QColor(22, 23, 24));
    QGuiApplication::setPalette(palette);
    const struct {
        std::int32_t Value;
        QColor Color;
    } rows[] = {{ColorWindowBackground, QColor(1, 2, 3)},
                {ColorWindowText, QColor(4, 5, 6)},
                {static_cast<std::int32_t>(0x80000011), QColor(7, 8, 9)},
                {static_cast<std::int32_t>(0x8000000C), QColor(10, 11, 12)},
                {SystemColor(13), QColor(13, 14, 15)},
                {SystemColor(14), QColor(16, 17, 18)},
                {SystemColor(15), QColor(19, 20, 21)},
                {SystemColor(24), palette.color(QPalette::ToolTipBase)},
                {SystemColor(25), QColor(22, 23, 24)},
                {SystemColor(0xFFFF), QColor(22, 23, 24)}};
    for (const auto& row : rows)
        EXPECT_EQ(ToColor(row.Value), row.Color) << (row.Value & 0xFF);
    QGuiApplication::setPalette(before);
}

} // namespace
} // namespace korvalin
