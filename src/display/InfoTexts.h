#pragma once

#include "display/HistorySample.h"

#include <array>
#include <cstdint>
#include <string>

namespace korvalin {

/// The parts of the tray tooltip, to be added up.
enum TrayTextFlag {
    TrayLineName = 1,
    TrayRateUL = 2,
    TrayRateDL = 4,
    TrayVolumeUL = 8,
    TrayVolumeDL = 16,
    TrayVolumeTotal = 32,
    TrayVolumeMonth = 64,
    TrayDuration = 128
};

/// The settings that the live display follows.
struct DisplaySettings {
    bool AutoShow = true;
    bool CloseTrayOnly = true;
    bool ShowLineName = true;
    bool ShowTimeLines = true;
    bool ChartUseMax = false;
    bool TrayAnimated = true;
    bool FontBold = true;
    std::string FontName = "Arial";
    int FontSize = 9; ///< points
    int TimeLinesSec = 60;
    int picWidthMin = 4;         ///< width of the chart in minutes
    int ConnDataMax = 240;       ///< samples of history
    int Opacity = 255;
    int ChartMax = 100;                           ///< fixed scale in thousands of bytes per second
    int ChartMinMax = 5;                          ///< floor of the scale in thousands of bytes per second
    std::int32_t ChartBackgroundColor = 15323561; ///< red + 256 green + 65536 blue, as all colours here
    int TrayMaxRate = 30;
    int TrayMaxVol = 1000;
    int TrayTextFlags = 255; ///< the parts that the tray tooltip shows
    int DisplayChoiceDL = 3; ///< 1 to 8: the chart line whose rate is shown as text
    int DisplayChoiceUL = 3;
    std::array<bool, RateSlots> LineDLShow{};
    std::array<bool, RateSlots> LineULShow{};
    std::array<std::int32_t, RateSlots> LineDLColor{};
    std::array<std::int32_t, RateSlots> LineULColor{};
    bool ShowDuration = true; ///< the online time also for an adapter
    std::string RateUnitText = "KB";
    std::string VolumeUnitText = "MB";
    std::int32_t KBFactor = 0; ///< bytes per rate unit; 0 = the program-wide one
    std::int32_t MBFactor = 0;
};

/// What of the lines and their history is shown.
struct DisplayChoice {
    int ChartLineNo = 0;         ///< the line in the chart; 0 = not yet read
    std::string ChartLineName;   ///< its name: when it moves or comes back the chart follows
    std::size_t LineIndex = 0;   ///< in the line table; 0 = none
    std::size_t SampleIndex = 0; ///< of the current sample
};

/// The texts made from the chosen sample.
struct DisplayTexts {
    std::string CaptionText;
    std::string TrayTipText;
    std::string RateDLText = "0.0";
    std::string RateULText = "0.0";
    std::string AvgDLText = "0.0";
    std::string AvgULText = "0.0";
    std::string VolumeDLText = "0.0";
    std::string VolumeULText = "0.0";
    std::string VolumeTotalText = "0.0";
    std::string PeriodVolumeText = "0.0";
    std::string FreeVolumeText;
};

/// The live display record.
struct InfoTexts : DisplaySettings, DisplayChoice, DisplayTexts {};

} // namespace korvalin
