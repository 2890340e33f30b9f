#include "settingsdlg/SettingsApplier.h"

#include "display/DisplaySettings.h"
#include "errors/Errors.h"
#include "lang/UnitFormat.h"
#include "settings/Password.h"
#include "settings/Settings.h"
#include "settingsdlg/TypedValues.h"
#include "traffic/TrafficSettings.h"

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
        parts_.Display = chosen.Display;
        parts_.Traffic = chosen.Traffic;
        ApplyWindowAndStart(entered);
        if (folderAccepted) parts_.Settings.Set(Keys::DataPath, entered.DataPath);
        TakeTyped(entered);
        StoreTrafficOptions(parts_.Settings, parts_.Traffic);
        StoreDisplaySettings(parts_.Settings, parts_.Display,
                             [this](std::string_view setting) { Follow(setting); });
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

void SettingsApplier::TakeTyped(const EnteredSettings& entered) {
    Settings& settings = parts_.Settings;
    DisplaySettings& live = parts_.Display;
    parts_.Traffic.LanActive =
        settings.Validate(Keys::LANActive, WithoutGrouping(entered.LanActive, parts_.UserLocale));
    live.picWidthMin = settings.Validate(Keys::picWidthMin, entered.ChartMinutes);
    live.ConnDataMax = std::max(live.picWidthMin * secondsPerMinute, leastHistorySeconds);
}

void SettingsApplier::Follow(std::string_view setting) {
    const DisplaySettings& live = parts_.Display;
    if (setting == Keys::UnitMB.Name) {
        parts_.Units.SetUnits(live.RateUnitText, live.VolumeUnitText);
    } else if (setting == Keys::ConnDataMax.Name) {
        hooks_.ResizeRateHistory();
    } else if (setting == Keys::Opacity.Name) {
        hooks_.SetOpacity(live.Opacity);
    } else if (setting == Keys::TrayAnimated.Name && !live.TrayAnimated) {
        hooks_.ShowFixedTrayIcon();
    }
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
