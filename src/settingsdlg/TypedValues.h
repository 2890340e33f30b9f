// What the user types into the settings dialog, and what is made of it.
#pragma once

#include <string>
#include <string_view>

namespace korvalin {

class Settings;
struct Locale;

/// A number as it was typed, without the marks that group its thousands: the locale's, and points, which
/// many write wherever they are.
std::string WithoutGrouping(std::string_view text, const Locale& locale);

/// The main window's transparency, 0 to 100 percent: 0 for a text that is no number, with or without "%".
double TransparencyOf(std::string_view text);

/// The text that stands for what was typed as transparency: a whole number from 0 to 95 and "%".
std::string CheckedTransparency(std::string_view text);

/// The layered alpha (0 invisible, 255 opaque) of a transparency in percent.
int AlphaOf(double transparency);

/// The transparency of an alpha in whole percent, fraction dropped.
int TransparencyOfAlpha(int alpha);

/// Minutes of history to show for `typed`: at least as many as the chart is wide, at most as many as there
/// are. The last two are in minutes and in seconds.
int CheckedHistoryMinutes(Settings& settings, std::string_view typed, int chartMinutes, int historySeconds);

} // namespace korvalin
