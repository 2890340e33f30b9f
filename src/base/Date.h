// Date-times as day counts: days since 30 December 1899 00:00 local time, the fraction is the time of day.
// Time spans use the same type; one second is 1/86400.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvalin {

struct Locale;

using Date = double;

inline constexpr double SecondsPerDay = 86400.0;
inline constexpr Date OneSecond = 1.0 / SecondsPerDay;

struct DateParts {
    int Year = 1899, Month = 12, Day = 30, Hour = 0, Minute = 0, Second = 0;
};

/// The day number of a calendar date. Months and days outside their range spill into the neighbouring ones:
/// month 13 is January of the next year, day 0 the last day of the month before. Proleptic Gregorian
/// calendar.
Date DateSerial(int year, int month, int day);

/// The fraction of a day; hours, minutes and seconds outside their range spill, also over midnight.
Date TimeSerial(int hour, int minute, int second);

/// Splits a date-time, rounded to the nearest second (a carry may reach the next day).
DateParts SplitDate(Date date);

/// The date without its time of day.
Date DayOf(Date date);

/// 0 is Sunday, 6 Saturday.
int WeekdayOf(Date date);

/// The date-time at the nearest whole second: what sums of moments and spans lose in the last bit is
/// restored.
Date RoundToSecond(Date date);

/// The last moment of a date's day that is written as a whole second: 23:59:59.
Date EndOfDay(Date date);

/// The date-time at the whole second before it; what sums lose in the last bits makes no second less.
Date FloorToSecond(Date date);

/// Seconds since midnight of a date-time, with fractions.
double SecondsOfDay(Date date);

/// "yyyy-mm-dd hh:mm:ss", rounded to the second; independent of the locale, so it reads back anywhere.
std::string FormatDateIso(Date date);

/// "_yyyymmdd-hhmmss", rounded to the second, with `separator` in the middle: the suffix of files that are
/// moved aside.
std::string FormatDateSuffix(Date date, char separator = '-');

/// Date and time in the locale's short formats; a date-time at midnight shows the date only, a time span
/// below a day the time only.
std::string FormatDateGeneral(Date date, const Locale& locale);

/// "hh:mm:ss" of a time span's fraction of a day; hours above 23 start again at 0.
std::string FormatTimeOfDay(Date span);

/// "hh:mm:ss" of a time span in whole seconds; the hours count on beyond a day. A negative span is 0.
std::string FormatDuration(Date span);

/// Reads the one form "yyyy-mm-dd hh:mm:ss", or either half of it; fast. nullopt for anything else.
std::optional<Date> ParseDateIso(std::string_view text);

/// Reads a date, a time, or both: ISO ("2024-03-15 14:05:09", also with 'T'), the locale's short date,
/// "15.03.2024 14:05" or "3/15/2024 2:05:09 PM"; a day and month that cannot be in this order are taken in
/// the other one. Two-digit years 00..29 are 20xx, others 19xx; years go from 100 to 9999. nullopt for
/// anything that is no date; impossible ones such as 31.02.2024 are none.
std::optional<Date> ParseDate(std::string_view text, const Locale& locale);

} // namespace korvalin
