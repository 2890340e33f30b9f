#include "settingsdlg/SettingsApplier.h"

#include "display/UnitFormat.h"
#include "errors/Errors.h"
#include "settings/Password.h"
#include "settings/Settings.h"
#include "settingsdlg/TypedValues.h"

#include <algorithm>

namespace korvalin {
namespace {

constexpr int secondsPerMinute = 60;
constexpr int leastHistorySeconds = 300;
constexpr int weekly = 1;
constexpr int everyFourWeeks = 4;

} // namespace

void SettingsApplier::ApplyChanges(const EnteredSettings& entered, SettingsRecord& chosen) {
    parts_.Errors.Step("ApplyChanges", [&] {
        const bool folderAccepted = MoveData(entered.DataPath);
        TakeOver(chosen);
        ApplyWindowAndStart(entered);
        if (folderAccepted) parts_.Settings.Set(Keys::DataPath, entered.DataPath);
        ApplyTraffic(entered);
        ApplyUnitsAndFont();
        ApplyTimeSpan(entered);
        ApplyScaleAndCurves();
        ApplyTray();
        ApplyInternet(entered);
        chosen.Display = parts_.Display;
        chosen.Traffic = parts_.Traffic;
        hooks_.RedrawChart();
    });
}

// A folder that was not touched is not written: where the stored one cannot be reached, this run's substitute
// would take its place for ever. Whether two names are the same folder is for the move to decide.
bool SettingsApplier::MoveData(const std::string& folder) {
    const std::filesystem::path current = hooks_.GetDataPath();
    return folder != current.string() && hooks_.ChangeDataPath(current, folder);
}

void SettingsApplier::TakeOver(const SettingsRecord& chosen) {
    InfoTexts& live = parts_.Display;
    // These are no matter of the dialog and may have changed since it was opened.
    const int chartLine = live.ChartLineNo;
    const std::string chartLineName = live.ChartLineName;
    live = chosen.Display;
    live.ChartLineNo = chartLine;
    live.ChartLineName = chartLineName;
    parts_.Traffic = chosen.Traffic;
}

void SettingsApplier::ApplyWindowAndStart(const EnteredSettings& entered) {
    Settings& settings = parts_.Settings;
    parts_.Display.CloseTrayOnly = entered.CloseTrayOnly;
    settings.Set(Keys::CloseTrayOnly, entered.CloseTrayOnly);
    hooks_.AutoStart(entered.AutoStart);
    settings.Set(Keys::MultiInstance, entered.MultiInstance);
    parts_.Display.AutoShow = entered.AutoShow;
    settings.Set(Keys::AutoShow, entered.AutoShow);
    settings.Set(Keys::MultiScreen, entered.MultiScreen);
    settings.Set(Keys::ForeGround, entered.Foreground);
    hooks_.SetTopmost(entered.Foreground);
}

void SettingsApplier::ApplyTraffic(const EnteredSettings& entered) {
    Settings& settings = parts_.Settings;
    settings.Set(Keys::LANProt, parts_.Traffic.LanProt);
    settings.Set(Keys::LANByNetwork, parts_.Traffic.LanByNetwork);
    settings.Set(Keys::LANVirtual, parts_.Traffic.LanVirtual);
    const std::string typed = WithoutGrouping(entered.LanActive, parts_.UserLocale);
    parts_.Traffic.LanActive = settings.Validate(Keys::LANActive, typed);
    settings.Set(Keys::LANActive, parts_.Traffic.LanActive);
    settings.Set(Keys::ProgRunTime, parts_.Display.ShowDuration);
}

void SettingsApplier::ApplyUnitsAndFont() {
    Settings& settings = parts_.Settings;
    const InfoTexts& live = parts_.Display;
    settings.Set(Keys::UnitKB, live.RateUnitText);
    settings.Set(Keys::UnitMB, live.VolumeUnitText);
    parts_.Units.SetUnits(live.RateUnitText, live.VolumeUnitText);
    settings.Set(Keys::FontName, live.FontName);
    settings.Set(Keys::FontSize, live.FontSize);
    settings.Set(Keys::FontBold, live.FontBold);
    settings.Set(Keys::ShowTimeLines, live.ShowTimeLines);
    settings.Set(Keys::TimeLinesSec, live.TimeLinesSec);
    settings.Set(Keys::ChartBackgroundColor, live.ChartBackgroundColor);
}

void SettingsApplier::ApplyTimeSpan(const EnteredSettings& entered) {
    Settings& settings = parts_.Settings;
    InfoTexts& live = parts_.Display;
    live.picWidthMin = settings.Validate(Keys::picWidthMin, entered.ChartMinutes);
    settings.Set(Keys::picWidthMin, live.picWidthMin);
    live.ConnDataMax = std::max(live.picWidthMin * secondsPerMinute, leastHistorySeconds);
    settings.Set(Keys::ConnDataMax, live.ConnDataMax);
    hooks_.ResizeRateHistory();
    settings.Set(Keys::Opacity, live.Opacity);
    hooks_.SetOpacity(live.Opacity);
}

void SettingsApplier::ApplyScaleAndCurves() {
    Settings& settings = parts_.Settings;
    const InfoTexts& live = parts_.Display;
    settings.Set(Keys::ChartMax, live.ChartMax);
    settings.Set(Keys::ChartMinMax, live.ChartMinMax);
    settings.Set(Keys::ChartUseMax, live.ChartUseMax);
    for (std::size_t i = 0; i < RateSlots; ++i) {
        settings.Set(Keys::LineDLShow(i + 1), live.LineDLShow[i]);
        settings.Set(Keys::LineULShow(i + 1), live.LineULShow[i]);
        settings.Set(Keys::LineDLColor(i + 1), live.LineDLColor[i]);
        settings.Set(Keys::LineULColor(i + 1), live.LineULColor[i]);
    }
}

void SettingsApplier::ApplyTray() {
    Settings& settings = parts_.Settings;
    const InfoTexts& live = parts_.Display;
    settings.Set(Keys::TrayMaxRate, live.TrayMaxRate);
    settings.Set(Keys::TrayMaxVol, live.TrayMaxVol);
    settings.Set(Keys::TrayAnimated, live.TrayAnimated);
    if (!live.TrayAnimated) hooks_.ShowFixedTrayIcon();
    settings.Set(Keys::TrayTexts, live.TrayTextFlags);
}

void SettingsApplier::ApplyInternet(const EnteredSettings& entered) {
    Settings& settings = parts_.Settings;
    settings.Set(Keys::FirewallUser, entered.FirewallUser);
    if (ScramblePassword(entered.FirewallPassword, 0, 0)) {
        settings.SetRegPassword(Keys::FirewallPassword, entered.FirewallPassword);
    } else {
        hooks_.PasswordRefused();
    }
    settings.Set(Keys::FirewallUse, entered.FirewallUse);
    settings.Set(Keys::UpdateInterval, entered.UpdateWeekly ? weekly : everyFourWeeks);
    settings.Set(Keys::AutoUpdate, entered.AutoUpdate);
}

} // namespace korvalin
