#include "display/DisplaySettings.h"

#include "display/InfoTexts.h"
#include "lang/UnitFormat.h"
#include "settings/Settings.h"

#include <algorithm>

namespace korvalin {
namespace {

constexpr int secondsPerMinute = 60;

// Each setting and the member that holds it, in the order in which they are stored.
template <class Texts, class Visit>
void VisitStoredTogether(Texts& texts, const Visit& visit) {
    visit(Keys::ProgRunTime, texts.ShowDuration);
    visit(Keys::UnitKB, texts.RateUnitText);
    visit(Keys::UnitMB, texts.VolumeUnitText);
    visit(Keys::FontName, texts.FontName);
    visit(Keys::FontSize, texts.FontSize);
    visit(Keys::FontBold, texts.FontBold);
    visit(Keys::ShowTimeLines, texts.ShowTimeLines);
    visit(Keys::TimeLinesSec, texts.TimeLinesSec);
    visit(Keys::ChartBackgroundColor, texts.ChartBackgroundColor);
    visit(Keys::picWidthMin, texts.picWidthMin);
    visit(Keys::ConnDataMax, texts.ConnDataMax);
    visit(Keys::Opacity, texts.Opacity);
    visit(Keys::ChartMax, texts.ChartMax);
    visit(Keys::ChartMinMax, texts.ChartMinMax);
    visit(Keys::ChartUseMax, texts.ChartUseMax);
    for (std::size_t i = 0; i < RateSlots; ++i) {
        visit(Keys::LineDLShow(i + 1), texts.LineDLShow[i]);
        visit(Keys::LineULShow(i + 1), texts.LineULShow[i]);
        visit(Keys::LineDLColor(i + 1), texts.LineDLColor[i]);
        visit(Keys::LineULColor(i + 1), texts.LineULColor[i]);
    }
    visit(Keys::TrayMaxRate, texts.TrayMaxRate);
    visit(Keys::TrayMaxVol, texts.TrayMaxVol);
    visit(Keys::TrayAnimated, texts.TrayAnimated);
    visit(Keys::TrayTexts, texts.TrayTextFlags);
}

// Those that are stored where they change, or only by hand.
template <class Visit>
void VisitOthers(InfoTexts& texts, const Visit& visit) {
    visit(Keys::AutoShow, texts.AutoShow);
    visit(Keys::CloseTrayOnly, texts.CloseTrayOnly);
    visit(Keys::ShowLineName, texts.ShowLineName);
    visit(Keys::UpdateIntervalChart, texts.UpdateIntervalChart);
    visit(Keys::DisplayChoiceDL, texts.DisplayChoiceDL);
    visit(Keys::DisplayChoiceUL, texts.DisplayChoiceUL);
}

} // namespace

void LoadDisplaySettings(Settings& settings, UnitFormat& units, InfoTexts& texts) {
    const auto load = [&](const auto& key, auto& member) { member = settings.Get(key); };
    VisitStoredTogether(texts, load);
    VisitOthers(texts, load);
    texts.ConnDataMax = std::max(texts.ConnDataMax, texts.picWidthMin * secondsPerMinute);
    units.SetUnits(texts.RateUnitText, texts.VolumeUnitText);
    texts.KBFactor = 0;
    texts.MBFactor = 0;
}

void StoreDisplaySettings(Settings& settings, const InfoTexts& texts,
                          const std::function<void(std::string_view name)>& stored) {
    VisitStoredTogether(texts, [&](const auto& key, const auto& member) {
        settings.Set(key, member);
        stored(key.Name);
    });
}

} // namespace korvalin
