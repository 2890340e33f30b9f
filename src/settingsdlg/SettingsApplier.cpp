#include "settingsdlg/SettingsApplier.h"

#include "display/UnitFormat.h"
#include "errors/Errors.h"
#include "settings/Password.h"
#include "settings/Settings.h"
#include "settingsdlg/TypedValues.h"

#include <fmt/format.h>

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
        if (folderAccepted) parts_.Settings.SetReg("DataPath", entered.DataPath);
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
    settings.SetReg("CloseTrayOnly", entered.CloseTrayOnly);
    hooks_.AutoStart(entered.AutoStart);
    settings.SetReg("MultiInstance", entered.MultiInstance);
    parts_.Display.AutoShow = entered.AutoShow;
    settings.SetReg("AutoShow", entered.AutoShow);
    settings.SetReg("MultiScreen", entered.MultiScreen);
    settings.SetReg("Foreground", entered.Foreground);
    hooks_.SetTopmost(entered.Foreground);
}

void SettingsApplier::ApplyTraffic(const EnteredSettings& entered) {
    Settings& settings = parts_.Settings;
    settings.SetReg("LANProt", parts_.Traffic.LanProt);
    settings.SetReg("LANByNetwork", parts_.Traffic.LanByNetwork);
    settings.SetReg("LANVirtual", parts_.Traffic.LanVirtual);
    const std::string typed = WithoutGrouping(entered.LanActive, parts_.UserLocale);
    parts_.Traffic.LanActive = std::get<std::int32_t>(settings.GetRegValidate("LANActive", typed));
    settings.SetReg("LANActive", parts_.Traffic.LanActive);
    settings.SetReg("ProgRunTime", parts_.Display.ShowDuration);
}

void SettingsApplier::ApplyUnitsAndFont() {
    Settings& settings = parts_.Settings;
    const InfoTexts& live = parts_.Display;
    settings.SetReg("UnitKB", live.RateUnitText);
    settings.SetReg("UnitMB", live.VolumeUnitText);
    parts_.Units.SetUnits(live.RateUnitText, live.VolumeUnitText);
    settings.SetReg("FontName", live.FontName);
    settings.SetReg("FontSize", live.FontSize);
    settings.SetReg("FontBold", live.FontBold);
    settings.SetReg("ShowTimeLines", live.ShowTimeLines);
    settings.SetReg("TimeLinesSec", live.TimeLinesSec);
    settings.SetReg("ChartBackgroundColor", live.ChartBackgroundColor);
}

void SettingsApplier::ApplyTimeSpan(const EnteredSettings& entered) {
    Settings& settings = parts_.Settings;
    InfoTexts& live = parts_.Display;
    live.picWidthMin = std::get<std::int32_t>(settings.GetRegValidate("picWidthMin", entered.ChartMinutes));
    settings.SetReg("picWidthMin", live.picWidthMin);
    live.ConnDataMax = std::max(live.picWidthMin * secondsPerMinute, leastHistorySeconds);
    settings.SetReg("ConnDataMax", live.ConnDataMax);
    hooks_.ResizeRateHistory();
    settings.SetReg("Opacity", live.Opacity);
    hooks_.SetOpacity(live.Opacity);
}

void SettingsApplier::ApplyScaleAndCurves() {
    Settings& settings = parts_.Settings;
    const InfoTexts& live = parts_.Display;
    settings.SetReg("ChartMax", live.ChartMax);
    settings.SetReg("ChartMinMax", live.ChartMinMax);
    settings.SetReg("ChartUseMax", live.ChartUseMax);
    for (std::size_t i = 0; i < RateSlots; ++i) {
        settings.SetReg(fmt::format("LineDL{}Show", i + 1), live.LineDLShow[i]);
        settings.SetReg(fmt::format("LineUL{}Show", i + 1), live.LineULShow[i]);
        settings.SetReg(fmt::format("LineDL{}Color", i + 1), live.LineDLColor[i]);
        settings.SetReg(fmt::format("LineUL{}Color", i + 1), live.LineULColor[i]);
    }
}

void SettingsApplier::ApplyTray() {
    Settings& settings = parts_.Settings;
    const InfoTexts& live = parts_.Display;
    settings.SetReg("TrayMaxRate", live.TrayMaxRate);
    settings.SetReg("TrayMaxVol", live.TrayMaxVol);
    settings.SetReg("TrayAnimated", live.TrayAnimated);
    if (!live.TrayAnimated) hooks_.ShowFixedTrayIcon();
    settings.SetReg("TrayTexts", live.TrayTextFlags);
}

void SettingsApplier::ApplyInternet(const EnteredSettings& entered) {
    Settings& settings = parts_.Settings;
    settings.SetReg("FirewallUser", entered.FirewallUser);
    if (ScramblePassword(entered.FirewallPassword, 0, 0)) {
        settings.SetRegPassword("FirewallPassword", entered.FirewallPassword);
    } else {
        hooks_.PasswordRefused();
    }
    settings.SetReg("FirewallUse", entered.FirewallUse);
    settings.SetReg("UpdateInterval", entered.UpdateWeekly ? weekly : everyFourWeeks);
    settings.SetReg("AutoUpdate", entered.AutoUpdate);
}

} // namespace korvalin
