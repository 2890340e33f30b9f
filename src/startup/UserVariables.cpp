#include "startup/UserVariables.h"

#include "display/UnitFormat.h"
#include "settings/Settings.h"
#include "traffic/LineRecord.h"

#include <algorithm>

namespace korvalin {

void LoadDisplaySettings(Settings& settings, UnitFormat& units, InfoTexts& texts) {
    texts.AutoShow = settings.Get(Keys::AutoShow);
    texts.CloseTrayOnly = settings.Get(Keys::CloseTrayOnly);
    texts.FontBold = settings.Get(Keys::FontBold);
    texts.ShowLineName = settings.Get(Keys::ShowLineName);
    texts.ShowTimeLines = settings.Get(Keys::ShowTimeLines);
    texts.ChartUseMax = settings.Get(Keys::ChartUseMax);
    texts.ShowDuration = settings.Get(Keys::ProgRunTime);
    texts.TrayAnimated = settings.Get(Keys::TrayAnimated);
    texts.FontSize = settings.Get(Keys::FontSize);
    texts.FontName = settings.Get(Keys::FontName);
    texts.TimeLinesSec = settings.Get(Keys::TimeLinesSec);
    texts.UpdateIntervalChart = static_cast<float>(settings.Get(Keys::UpdateIntervalChart));
    texts.picWidthMin = settings.Get(Keys::picWidthMin);
    texts.ConnDataMax = std::max(settings.Get(Keys::ConnDataMax), texts.picWidthMin * 60);
    texts.Opacity = settings.Get(Keys::Opacity);
    texts.ChartMax = settings.Get(Keys::ChartMax);
    texts.ChartMinMax = settings.Get(Keys::ChartMinMax);
    texts.ChartBackgroundColor = settings.Get(Keys::ChartBackgroundColor);
    texts.TrayMaxRate = settings.Get(Keys::TrayMaxRate);
    texts.TrayMaxVol = settings.Get(Keys::TrayMaxVol);
    texts.TrayTextFlags = settings.Get(Keys::TrayTexts);
    texts.DisplayChoiceDL = settings.Get(Keys::DisplayChoiceDL);
    texts.DisplayChoiceUL = settings.Get(Keys::DisplayChoiceUL);
    texts.RateUnitText = settings.Get(Keys::UnitKB);
    texts.VolumeUnitText = settings.Get(Keys::UnitMB);
    units.SetUnits(texts.RateUnitText, texts.VolumeUnitText);
    texts.KBFactor = 0;
    texts.MBFactor = 0;
    for (std::size_t c = 0; c < RateSlots; ++c) {
        texts.LineDLShow[c] = settings.Get(Keys::LineDLShow(c + 1));
        texts.LineDLColor[c] = settings.Get(Keys::LineDLColor(c + 1));
        texts.LineULShow[c] = settings.Get(Keys::LineULShow(c + 1));
        texts.LineULColor[c] = settings.Get(Keys::LineULColor(c + 1));
    }
}

void LoadTrafficOptions(Settings& settings, TrafficOptions& options) {
    options.LanProt = settings.Get(Keys::LANProt);
    options.LanActive = settings.Get(Keys::LANActive);
    options.LanByNetwork = settings.Get(Keys::LANByNetwork);
    options.LanVirtual = settings.Get(Keys::LANVirtual);
    options.Split = static_cast<SplitDays>(settings.Get(Keys::SplitDays));
}

} // namespace korvalin
