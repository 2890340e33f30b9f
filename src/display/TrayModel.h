// What the icon in the tray shows, computed without a window: three bars on a scale of 16 x 16 cells.
#pragma once

#include "display/InfoTexts.h"
#include "stats/MonthSums.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace korvalin {

struct Locale;

/// Cells of the icon in each direction.
inline constexpr int TrayScale = 16;

struct TrayBar {
    int Height = 0; ///< 0 (no bar) to TrayScale cells
    std::int32_t Color = 0;
    bool operator==(const TrayBar&) const = default;
};

struct TrayBars {
    TrayBar Volume;
    TrayBar Upload;
    TrayBar Download;
    bool operator==(const TrayBars&) const = default;
};

/// The bars for the texts of this second. The rates are read back from their texts, so the bars are true to
/// the figures that the user sees, in the unit that the scale is set in.
TrayBars MakeTrayBars(const InfoTexts& texts, const PeriodUse& use, const Locale& locale);

/// The part of a tooltip that any tray takes: the first 127 characters.
std::string_view CutTrayTip(std::string_view tip);

} // namespace korvalin
