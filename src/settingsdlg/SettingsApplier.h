#pragma once

#include "display/InfoTexts.h"
#include "traffic/LineRecord.h"

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace korvalin {

class Errors;
class Settings;
class UnitFormat;
struct Locale;

/// The settings that can be tried out before they are applied.
struct SettingsRecord {
    DisplaySettings Display;
    TrafficOptions Traffic;
};

/// What the dialog's controls hold besides, as it was entered.
struct EnteredSettings {
    std::string DataPath;
    bool CloseTrayOnly = false;
    bool AutoStart = false;
    bool MultiInstance = false;
    bool AutoShow = false;
    bool MultiScreen = false;
    bool Foreground = false;
    std::string LanActive;
    std::string ChartMinutes;
    std::string FirewallUser;
    std::string FirewallPassword;
    bool FirewallUse = false;
    bool UpdateWeekly = false; ///< otherwise every four weeks
    bool AutoUpdate = false;
};

/// Writes all settings of the dialog and applies them to the running program.
class SettingsApplier {
  public:
    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Errors& Errors;
        const Locale& UserLocale;
        UnitFormat& Units;
        DisplaySettings& Display; ///< of the live display
        TrafficOptions& Traffic;  ///< of the readers
    };
    /// What follows the settings at once.
    struct Hooks {
        std::function<std::filesystem::path()> GetDataPath;
        /// Moves the statistics, after asking; false when they stay where they are.
        std::function<bool(const std::filesystem::path& from, const std::filesystem::path& to)>
            ChangeDataPath;
        std::function<void(bool enable)> AutoStart;
        std::function<void(bool topmost)> SetTopmost;
        std::function<void(int alpha)> SetOpacity;
        std::function<void()> ResizeRateHistory;
        std::function<void()> ShowFixedTrayIcon;
        std::function<void()> RedrawChart;
        /// The password cannot be stored and stays what it was.
        std::function<void()> PasswordRefused;
    };

    SettingsApplier(const Parts& parts, Hooks hooks) : parts_(parts), hooks_(std::move(hooks)) {}

    /// After an error, which is shown, the settings written before it stay written. Afterwards `chosen` is
    /// what the live record has become.
    void ApplyChanges(const EnteredSettings& entered, SettingsRecord& chosen);

  private:
    bool MoveData(const std::string& folder);
    void ApplyWindowAndStart(const EnteredSettings& entered);
    /// What was typed as text and is a number.
    void TakeTyped(const EnteredSettings& entered);
    /// What happens as soon as a display setting is stored.
    void Follow(std::string_view setting);
    void ApplyInternet(const EnteredSettings& entered);

    Parts parts_;
    Hooks hooks_;
};

} // namespace korvalin
