#include "startup/UserVariables.h"

#include "display/UnitFormat.h"
#include "settings/Settings.h"
#include "traffic/LineRecord.h"

#include <fmt/format.h>

#include <algorithm>

namespace korvalin {

void LoadDisplaySettings(Settings& settings, UnitFormat& units, InfoTexts& texts) {
    texts.AutoShow = settings.GetBool("AutoShow");
    texts.CloseTrayOnly = settings.GetBool("CloseTrayOnly");
    texts.FontBold = settings.GetBool("FontBold");
    texts.ShowLineName = settings.GetBool("ShowLineName");
    texts.ShowTimeLines = settings.GetBool("ShowTimeLines");
    texts.ChartUseMax = settings.GetBool("ChartUseMax");
    texts.ShowDuration = settings.GetBool("ProgRunTime");
    texts.TrayAnimated = settings.GetBool("TrayAnimated");
    texts.FontSize = settings.GetNumber("FontSize");
    texts.FontName = settings.GetText("FontName");
    texts.TimeLinesSec = settings.GetNumber("TimeLinesSec");
    texts.UpdateIntervalChart = static_cast<float>(settings.GetNumber("UpdateIntervalChart"));
    texts.picWidthMin = settings.GetNumber("picWidthMin");
    texts.ConnDataMax = std::max(settings.GetNumber("ConnDataMax"), texts.picWidthMin * 60);
    texts.Opacity = settings.GetNumber("Opacity");
    texts.ChartMax = settings.GetNumber("ChartMax");
    texts.ChartMinMax = settings.GetNumber("ChartMinMax");
    texts.ChartBackgroundColor = settings.GetNumber("ChartBackgroundColor");
    texts.TrayMaxRate = settings.GetNumber("TrayMaxRate");
    texts.TrayMaxVol = settings.GetNumber("TrayMaxVol");
    texts.TrayTextFlags = settings.GetNumber("TrayTexts");
    texts.DisplayChoiceDL = settings.GetNumber("DisplayChoiceDL");
    texts.DisplayChoiceUL = settings.GetNumber("DisplayChoiceUL");
    texts.RateUnitText = settings.GetText("UnitKB");
    texts.VolumeUnitText = settings.GetText("UnitMB");
    units.SetUnits(texts.RateUnitText, texts.VolumeUnitText);
    texts.KBFactor = 0;
    texts.MBFactor = 0;
    for (std::size_t c = 0; c < RateSlots; ++c) {
        texts.LineDLShow[c] = settings.GetBool(fmt::format("LineDL{}Show", c + 1));
        texts.LineDLColor[c] = settings.GetNumber(fmt::format("LineDL{}Color", c + 1));
        texts.LineULShow[c] = settings.GetBool(fmt::format("LineUL{}Show", c + 1));
        texts.LineULColor[c] = settings.GetNumber(fmt::format("LineUL{}Color", c + 1));
    }
}

void LoadTrafficOptions(Settings& settings, TrafficOptions& options) {
    options.LanProt = settings.GetBool("LANProt");
    options.LanActive = settings.GetNumber("LANActive");
    options.LanByNetwork = settings.GetBool("LANByNetwork");
    options.LanVirtual = settings.GetBool("LANVirtual");
    options.Split = static_cast<SplitDays>(settings.GetNumber("SplitDays"));
}

} // namespace korvalin
