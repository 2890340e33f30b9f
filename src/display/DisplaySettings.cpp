#include "display/DisplaySettings.h"

#include "display/InfoTexts.h"
#include "lang/UnitFormat.h"
#include "settings/Settings.h"

#include <algorithm>

namespace korvalin {
namespace {

constexpr int secondsPerMinute = 60;

// Each setting and the member that holds it, in the order in which they are stored.
template <class Display, class Visit>
void VisitStoredTogether(Display& display, const Visit& visit) {
    visit(Keys::ProgRunTime, display.ShowDuration);
    visit(Keys::UnitKB, display.RateUnitText);
    visit(Keys::UnitMB, display.VolumeUnitText);
    visit(Keys::FontName, display.FontName);
    visit(Keys::FontSize, display.FontSize);
    visit(Keys::FontBold, display.FontBold);
    visit(Keys::ShowTimeLines, display.ShowTimeLines);
    visit(Keys::TimeLinesSec, display.TimeLinesSec);
    visit(Keys::ChartBackgroundColor, display.ChartBackgroundColor);
    visit(Keys::picWidthMin, display.picWidthMin);
    visit(Keys::ConnDataMax, display.ConnDataMax);
    visit(Keys::Opacity, display.Opacity);
    visit(Keys::ChartMax, display.ChartMax);
    visit(Keys::ChartMinMax, display.ChartMinMax);
    visit(Keys::ChartUseMax, display.ChartUseMax);
    for (std::size_t i = 0; i < RateSlots; ++i) {
        visit(Keys::LineDLShow(i + 1), display.LineDLShow[i]);
        visit(Keys::LineULShow(i + 1), display.LineULShow[i]);
        visit(Keys::LineDLColor(i + 1), display.LineDLColor[i]);
        visit(Keys::LineULColor(i + 1), display.LineULColor[i]);
    }
    visit(Keys::TrayMaxRate, display.TrayMaxRate);
    visit(Keys::TrayMaxVol, display.TrayMaxVol);
    visit(Keys::TrayAnimated, display.TrayAnimated);
    visit(Keys::TrayTexts, display.TrayTextFlags);
}

// Those that are stored where they change, or only by hand.
template <class Visit>
void VisitOthers(DisplaySettings& display, const Visit& visit) {
    visit(Keys::AutoShow, display.AutoShow);
    visit(Keys::CloseTrayOnly, display.CloseTrayOnly);
    visit(Keys::ShowLineName, display.ShowLineName);
    visit(Keys::DisplayChoiceDL, display.DisplayChoiceDL);
    visit(Keys::DisplayChoiceUL, display.DisplayChoiceUL);
}

} // namespace

void LoadDisplaySettings(Settings& settings, UnitFormat& units, DisplaySettings& display) {
    const auto load = [&](const auto& key, auto& member) { member = settings.Get(key); };
    VisitStoredTogether(display, load);
    VisitOthers(display, load);
    display.ConnDataMax = std::max(display.ConnDataMax, display.picWidthMin * secondsPerMinute);
    units.SetUnits(display.RateUnitText, display.VolumeUnitText);
    display.KBFactor = 0;
    display.MBFactor = 0;
}

void StoreDisplaySettings(Settings& settings, const DisplaySettings& display) {
    VisitStoredTogether(display, [&](const auto& key, const auto& member) { settings.Set(key, member); });
}

} // namespace korvalin
