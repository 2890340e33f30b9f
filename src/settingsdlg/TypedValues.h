// What the user types into the settings dialog, and what is made of it.
#pragma once

#include "settings/Keys.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace korvalin {

class Settings;
struct Locale;

inline constexpr int SecondsPerMinute = 60;

/// The corrected form of what was typed for a setting that is a number; nothing typed is its default. Nothing
/// is stored, as the user may still cancel.
std::int32_t CheckedNumber(Settings& settings, SettingKey<int> key, std::string typed, const Locale& locale);

/// A number as it was typed, without what groups its thousands: the locale's mark, or points or blanks, which
/// many write wherever they are. A mark that does not stand before three digits each time groups nothing, nor
/// does the locale's decimal point, unless `pointGroups`.
std::string WithoutGrouping(std::string_view text, const Locale& locale, bool pointGroups = false);

/// The folder that was typed, in full: a relative one would be another at the next start. Empty when nothing
/// but blanks was typed.
std::string TypedFolder(std::string_view text);

/// The main window's transparency, 0 to 100 percent: 0 for a text that is no number, with or without "%".
double TransparencyOf(std::string_view text, const Locale& locale);

/// The text that stands for what was typed as transparency: a whole number from 0 to 95 and "%".
std::string CheckedTransparency(std::string_view text, const Locale& locale);

/// The layered alpha (0 invisible, 255 opaque) of a transparency in percent.
int AlphaOf(double transparency);

/// The transparency of an alpha in whole percent, fraction dropped.
int TransparencyOfAlpha(int alpha);

/// Minutes of history to show for `typed`: at least as many as the chart is wide, at most as many as there
/// are. The last two are in minutes and in seconds.
int CheckedHistoryMinutes(Settings& settings, std::string_view typed, const Locale& locale, int chartMinutes,
                          int historySeconds);

} // namespace korvalin
