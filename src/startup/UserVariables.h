#pragma once

#include "display/InfoTexts.h"

namespace korvalin {

class Settings;
class UnitFormat;
struct TrafficOptions;

/// Loads the settings that the live display and the readers follow.
void LoadDisplaySettings(Settings& settings, UnitFormat& units, InfoTexts& texts);
void LoadTrafficOptions(Settings& settings, TrafficOptions& options);

} // namespace korvalin
