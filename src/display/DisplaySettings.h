#pragma once

namespace korvalin {

class Settings;
class UnitFormat;
struct DisplaySettings;

/// Loads the settings that the live display follows.
void LoadDisplaySettings(Settings& settings, UnitFormat& units, DisplaySettings& display);

/// Stores those of them that are changed together, by the settings dialog.
void StoreDisplaySettings(Settings& settings, const DisplaySettings& display);

} // namespace korvalin
