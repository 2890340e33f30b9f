#include "settingsdlg/SettingsApplier.h"

#include "base/ProgramTitle.h"
#include "data/DataFolder.h"
#include "display/ChartModel.h"
#include "display/DisplaySettings.h"
#include "display/SamplingLoop.h"
#include "errors/Errors.h"
#include "lang/Language.h"
#include "lang/UnitFormat.h"
#include "platform/MessageBoxes.h"
#include "settings/Password.h"
#include "settings/Settings.h"
#include "settingsdlg/AutoStart.h"
#include "settingsdlg/TypedValues.h"
#include "traffic/TrafficSettings.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace korvalin {
namespace {

constexpr int leastHistorySeconds = 300;
constexpr int everyFourWeeks = 4;

} // namespace

// A folder that was not touched is not written: where the stored one cannot be reached, this run's substitute
// would take its place for ever. Whether two names are the same folder is for the move to decide.
bool SettingsApplier::MoveData(const std::string& folder) {
    const std::filesystem::path current = parts_.DataFolder.GetDataPath();
    return folder != current.string() && parts_.DataFolder.ChangeDataPath(current, folder, true);
}

void SettingsApplier::Warn(int textNumber) {
    parts_.MessageBoxes.Show(parts_.Language.Lng("frmEinstellungen", textNumber), std::string(ProgramTitle),
                             MessageIcon::Warning, MessageButtons::Ok);
}

bool SettingsApplier::ApplyChanges(const EnteredSettings& entered, SettingsRecord& chosen) {
    bool startChanged = true;
    const bool applied = parts_.Errors.Step("ApplyChanges", [&] {
        parts_.DisplaySettings = chosen.Display;
        parts_.TrafficOptions = chosen.Traffic;
        startChanged = ApplyWindowAndStart(entered);
        if (!entered.DataPath.empty() && !parts_.DataFolder.Use(entered.DataPath))
            throw std::system_error(EIO, std::generic_category(), entered.DataPath);
        TakeTyped(entered);
        StoreTrafficOptions(parts_.Settings, parts_.TrafficOptions);
        StoreDisplaySettings(parts_.Settings, parts_.DisplaySettings);
        FollowDisplaySettings();
        ApplyInternet(entered);
        chosen.Display = parts_.DisplaySettings;
        chosen.Traffic = parts_.TrafficOptions;
        parts_.MonitorWindow.DrawChart(true);
    });
    if (!startChanged) Warn(140);
    return applied && startChanged;
}

bool SettingsApplier::ApplyWindowAndStart(const EnteredSettings& entered) {
    Settings& settings = parts_.Settings;
    parts_.DisplaySettings.CloseTrayOnly = entered.CloseTrayOnly;
    settings.Set(Keys::CloseTrayOnly, entered.CloseTrayOnly);
    settings.Set(Keys::MultiInstance, entered.MultiInstance);
    parts_.DisplaySettings.AutoShow = entered.AutoShow;
    settings.Set(Keys::AutoShow, entered.AutoShow);
    settings.Set(Keys::MultiScreen, entered.MultiScreen);
    settings.Set(Keys::ForeGround, entered.Foreground);
    parts_.MonitorWindow.SetTopmost(entered.Foreground);
    return parts_.AutoStartEntry.AutoStart(entered.AutoStart);
}

void SettingsApplier::TakeTyped(const EnteredSettings& entered) {
    Settings& settings = parts_.Settings;
    DisplaySettings& live = parts_.DisplaySettings;
    parts_.TrafficOptions.LanActive =
        settings.Validate(Keys::LANActive, WithoutGrouping(entered.LanActive, parts_.Locale, true));
    live.picWidthMin = settings.Validate(Keys::picWidthMin, entered.ChartMinutes);
    live.ConnDataMax = std::max(live.picWidthMin * SecondsPerMinute, leastHistorySeconds);
}

void SettingsApplier::FollowDisplaySettings() {
    const DisplaySettings& live = parts_.DisplaySettings;
    parts_.UnitFormat.SetUnits(live.RateUnitText, live.VolumeUnitText);
    // Of the chart as it will be: the old width would keep the history as long as it was.
    parts_.SamplingLoop.SetVisibleSamples(VisibleSamplesFor(live.picWidthMin));
    parts_.SamplingLoop.ResizeRateHistory();
    parts_.MonitorWindow.SetOpacity(live.Opacity);
    if (!live.TrayAnimated) parts_.MonitorWindow.ShowFixedTrayIcon();
}

void SettingsApplier::ApplyInternet(const EnteredSettings& entered) {
    Settings& settings = parts_.Settings;
    settings.Set(Keys::FirewallUser, entered.FirewallUser);
    if (ScramblePassword(entered.FirewallPassword, 0, 0)) {
        settings.SetRegPassword(Keys::FirewallPassword, entered.FirewallPassword);
    } else {
        Warn(32); // it stays what it was
    }
    settings.Set(Keys::FirewallUse, entered.FirewallUse);
    settings.Set(Keys::UpdateInterval, entered.UpdateWeekly ? Weekly : everyFourWeeks);
    settings.Set(Keys::AutoUpdate, entered.AutoUpdate);
    settings.Set(Keys::NoInet, entered.NoInet);
}

} // namespace korvalin
