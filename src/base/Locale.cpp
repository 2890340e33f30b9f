#include "base/Locale.h"

#include "base/Date.h"

#include <fmt/format.h>

#include <algorithm>

namespace korvalin {
namespace {

// One run of the same pattern letter, for instance "yyyy".
std::string FormatField(const DateParts& parts, char letter, std::size_t length, bool twelveHours) {
    const auto number = [&](int value) {
        return fmt::format("{:0{}}", value, std::min<std::size_t>(length, 2));
    };
    const int hour = twelveHours ? (parts.Hour + 11) % 12 + 1 : parts.Hour;
    switch (letter) {
    case 'd': return number(parts.Day);
    case 'm': return number(parts.Month);
    case 'y': return length > 2 ? fmt::format("{:04}", parts.Year) : fmt::format("{:02}", parts.Year % 100);
    case 'h': return number(hour);
    case 'n': return number(parts.Minute);
    default: return number(parts.Second);
    }
}

} // namespace

std::string FormatPattern(double date, const std::string& pattern) {
    const DateParts parts = SplitDate(date);
    const std::string marker = "AMPM";
    const bool twelveHours = pattern.find(marker) != std::string::npos;
    std::string text;
    for (std::size_t i = 0; i < pattern.size();) {
        if (pattern.compare(i, marker.size(), marker) == 0) {
            text += parts.Hour < 12 ? "AM" : "PM";
            i += marker.size();
            continue;
        }
        const std::size_t end = std::min(pattern.find_first_not_of(pattern[i], i), pattern.size());
        if (std::string("dmyhns").find(pattern[i]) != std::string::npos) {
            text += FormatField(parts, pattern[i], end - i, twelveHours);
        } else {
            text.append(pattern, i, end - i);
        }
        i = end;
    }
    return text;
}

} // namespace korvalin
