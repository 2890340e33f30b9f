// Numbers from and to text, in plain form for files and settings and in the user's form for the screen.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvalin {

struct Locale;

/// Reads a plain number ("-12.5", "1e3"; blanks around it are allowed) independent of the locale.
/// nullopt when the text is anything else, infinite or not a number.
std::optional<double> ParseNumber(std::string_view text);

/// Reads a number and rounds a fraction to the nearest even integer; nullopt outside the 32-bit range.
std::optional<std::int32_t> ParseWholeNumber(std::string_view text);

/// Rounds halves to the nearest even integer.
double RoundToEven(double value);

/// Formats with a pattern such as "0", "0.0", "0.00", "#,##0", "#,##0.0", "#,##0.00": as many decimals as
/// zeros after the point, thousands grouped when the pattern contains a comma. Halves are rounded away from
/// zero.
std::string FormatNumber(double value, std::string_view pattern, const Locale& locale);

/// A whole number with its thousands grouped, exact up to 64 bits.
std::string FormatWhole(std::uint64_t value, const Locale& locale);

/// Appends a number from 0 to 99 as two digits: for the dates of a million lines, which keep a window
/// waiting.
void AppendTwoDigits(std::string& text, int number);

/// Reads back what FormatNumber made; nullopt when the text is anything else.
std::optional<double> ReadFormattedNumber(std::string_view text, const Locale& locale);

/// A 32-bit counter held in a signed integer, read as unsigned.
double UnsignedToDouble(std::int32_t value);

} // namespace korvalin
