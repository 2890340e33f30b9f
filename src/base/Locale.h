// The user's regional formats, read once from the system and handed to whoever formats or reads numbers and
// dates.
#pragma once

#include <array>
#include <functional>
#include <string>

namespace korvalin {

/// Below, at or above 0 as for strcmp.
using Collation = std::function<int(const std::string& left, const std::string& right)>;

struct Locale {
    std::string DecimalMark = ".";
    std::string GroupingMark = ",";
    /// Patterns of d, dd, m, mm, yy, yyyy and of h, hh, n, nn, s, ss, AMPM with literal characters between.
    std::string ShortDate = "yyyy-mm-dd";
    std::string Time = "hh:nn:ss";
    std::array<std::string, 12> MonthNames = {"January",   "February", "March",    "April",
                                              "May",       "June",     "July",     "August",
                                              "September", "October",  "November", "December"};
    std::array<std::string, 12> ShortMonthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    /// From Sunday, as in struct tm.
    std::array<std::string, 7> DayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                           "Thursday", "Friday", "Saturday"};
    std::array<std::string, 7> ShortDayNames = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    /// The order in which names are listed.
    Collation Collate = [](const std::string& left, const std::string& right) { return left.compare(right); };
};

/// Puts a date (day count) into a pattern of Locale::ShortDate's kind.
std::string FormatPattern(double date, const std::string& pattern);

} // namespace korvalin
