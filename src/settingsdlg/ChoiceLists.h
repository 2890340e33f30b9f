// The values that the lists of the settings dialog offer, in their order.
#pragma once

#include <vector>

namespace korvalin {

/// Received bytes from which on an adapter counts as active.
std::vector<int> LanActiveChoices();

/// Points.
std::vector<int> FontSizeChoices();

/// Seconds between two time lines.
std::vector<int> TimeLineChoices();

/// Minutes of history, and minutes across the chart.
std::vector<int> MinuteChoices();

/// Percent of the main window's transparency.
std::vector<int> OpacityChoices();

/// Rate units at which a bar of the tray icon is full.
std::vector<int> TrayRateChoices();

/// Volume units at which the tray icon's bar is full.
std::vector<int> TrayVolumeChoices();

} // namespace korvalin
