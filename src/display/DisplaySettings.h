#pragma once

#include <functional>
#include <string_view>

namespace korvalin {

class Settings;
class UnitFormat;
struct DisplaySettings;

/// Loads the settings that the live display follows.
void LoadDisplaySettings(Settings& settings, UnitFormat& units, DisplaySettings& display);

/// Stores those of them that are changed together, by the settings dialog. `stored` is called after each,
/// with its name.
void StoreDisplaySettings(Settings& settings, const DisplaySettings& display,
                          const std::function<void(std::string_view name)>& stored);

} // namespace korvalin
