#pragma once

#include "display/InfoTexts.h"
#include "traffic/LineRecord.h"

#include <string>

namespace korvalin {

class AutoStartEntry;
class DataFolder;
class Errors;
class Language;
class MessageBoxes;
class MonitorWindow;
class SamplingLoop;
class Settings;
class UnitFormat;
struct Locale;

/// UpdateInterval, in weeks.
inline constexpr int Weekly = 1;

/// The settings that can be tried out before they are applied.
struct SettingsRecord {
    DisplaySettings Display;
    TrafficOptions Traffic;
};

/// What the dialog's controls hold besides, as it was entered.
struct EnteredSettings {
    std::string DataPath; ///< empty when it stays what it is
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
    bool NoInet = false;
};

/// Writes all settings of the dialog and applies them to the running program.
class SettingsApplier {
  public:
    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::Errors& Errors;
        korvalin::MessageBoxes& MessageBoxes;
        const korvalin::Locale& Locale;
        korvalin::UnitFormat& UnitFormat;
        korvalin::DataFolder& DataFolder;
        korvalin::AutoStartEntry& AutoStartEntry;
        korvalin::SamplingLoop& SamplingLoop;
        korvalin::MonitorWindow& MonitorWindow;
        korvalin::DisplaySettings& DisplaySettings; ///< of the live display
        korvalin::TrafficOptions& TrafficOptions;   ///< of the readers
    };

    explicit SettingsApplier(const Parts& parts) : parts_(parts) {}

    /// Moves the statistics to the folder that was entered, after asking. False when they stay where they
    /// are.
    bool MoveData(const std::string& folder);

    /// After an error, which is shown, the settings written before it stay written. Afterwards `chosen` is
    /// what the live record has become. False when not all of it could be done.
    bool ApplyChanges(const EnteredSettings& entered, SettingsRecord& chosen);

  private:
    void Warn(int textNumber);
    /// False when the program's automatic start cannot be changed.
    bool ApplyWindowAndStart(const EnteredSettings& entered);
    /// What was typed as text and is a number.
    void TakeTyped(const EnteredSettings& entered);
    /// What follows the display settings at once.
    void FollowDisplaySettings();
    void ApplyInternet(const EnteredSettings& entered);

    Parts parts_;
};

} // namespace korvalin
