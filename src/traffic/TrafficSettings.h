#pragma once

namespace korvalin {

class Settings;
struct TrafficOptions;

/// Loads the settings that the readers follow.
void LoadTrafficOptions(Settings& settings, TrafficOptions& options);

/// Stores those of them that the settings dialog changes.
void StoreTrafficOptions(Settings& settings, const TrafficOptions& options);

} // namespace korvalin
