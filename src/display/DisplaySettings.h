#pragma once

#include <functional>
#include <string_view>

namespace korvalin {

class Settings;
class UnitFormat;
struct InfoTexts;

/// Loads the settings that the live display follows.
void LoadDisplaySettings(Settings& settings, UnitFormat& units, InfoTexts& texts);

/// Stores those of them that are changed together, by the settings dialog. `stored` is called after each,
/// with its name.
void StoreDisplaySettings(Settings& settings, const InfoTexts& texts,
                          const std::function<void(std::string_view name)>& stored);

} // namespace korvalin
