#include "forms/Colors.h"

using namespace korvalin;

TEST(Colors, HoldRedInTheLowestByteOrFollowThePalette) {
    const QPalette palette = QGuiApplication::palette();
    const std::pair<std::int32_t, QColor> rows[] = {
        {0x0000FF, Qt::red},
        {0xC0A070, QColor(0x70, 0xA0, 0xC0)},
        {ColorWindowBackground, palette.color(QPalette::Base)},
        {static_cast<std::int32_t>(0x8000000C), palette.color(QPalette::Dark)},
        {SystemColor(24), palette.color(QPalette::ToolTipBase)},
        {SystemColor(25), palette.color(QPalette::WindowText)}}; // unknown: readable at least
    for (const auto& [value, color] : rows) {
        EXPECT_EQ(ToColor(value), color) << value;
        if (value > 0) {
            EXPECT_EQ(ToColorValue(color), value);
        }
    }
}
