#include "forms/Colors.h"

using namespace korvalin;

TEST(Colors, HoldRedInTheLowestByteOrFollowThePalette) {
    const QPalette before = QGuiApplication::palette();
    QPalette palette;
    palette.setColor(QPalette::Active, QPalette::Base, QColor(1, 2, 3));
    palette.setColor(QPalette::Active, QPalette::Dark, QColor(10, 11, 12));
    palette.setColor(QPalette::Active, QPalette::WindowText, QColor(22, 23, 24));
    QGuiApplication::setPalette(palette);
    const std::pair<std::int32_t, QColor> rows[] = {
        {0x0000FF, Qt::red},
        {0xC0A070, QColor(0x70, 0xA0, 0xC0)},
        {ColorWindowBackground, QColor(1, 2, 3)},
        {static_cast<std::int32_t>(0x8000000C), QColor(10, 11, 12)},
        {SystemColor(24), palette.color(QPalette::ToolTipBase)},
        {SystemColor(25), QColor(22, 23, 24)}}; // unknown: readable at least
    for (const auto& [value, color] : rows) {
        EXPECT_EQ(ToColor(value), color) << value;
        if (value > 0) {
            EXPECT_EQ(ToColorValue(color), value);
        }
    }
    QGuiApplication::setPalette(before);
}
