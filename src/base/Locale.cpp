#include "base/Locale.h"

#include "base/Date.h"
#include "base/Numbers.h"

#include <fmt/format.h>

#include <iterator>
#include <string_view>

namespace korvalin {
namespace {

constexpr std::string_view marker = "AMPM";
constexpr std::string_view fieldLetters = "dmyhns";

// At most two digits, one where one is enough and the pattern has only one letter.
void AppendNumber(std::string& text, int number, std::size_t length) {
    if (length == 1 && number < 10) {
        text += static_cast<char>('0' + number);
    } else {
        AppendTwoDigits(text, number);
    }
}

void AppendYear(std::string& text, int year, std::size_t length) {
    if (length <= 2) year %= 100;
    if (year < 0 || year > 9999) { // no calendar date, but not ours to judge
        fmt::format_to(std::back_inserter(text), "{:0{}}", year, length > 2 ? 4 : 2);
        return;
    }
    if (length > 2) AppendTwoDigits(text, year / 100);
    AppendTwoDigits(text, year % 100);
}

// One run of the same pattern letter, for instance "yyyy".
void AppendField(std::string& text, const DateParts& parts, char letter, std::size_t length,
                 bool twelveHours) {
    switch (letter) {
    case 'd': return AppendNumber(text, parts.Day, length);
    case 'm': return AppendNumber(text, parts.Month, length);
    case 'y': return AppendYear(text, parts.Year, length);
    case 'h': return AppendNumber(text, twelveHours ? (parts.Hour + 11) % 12 + 1 : parts.Hour, length);
    case 'n': return AppendNumber(text, parts.Minute, length);
    default: return AppendNumber(text, parts.Second, length);
    }
}

// Where the run of equal characters ends that begins at `begin`.
std::size_t RunEnd(std::string_view pattern, std::size_t begin) {
    std::size_t end = begin + 1;
    while (end < pattern.size() && pattern[end] == pattern[begin])
        ++end;
    return end;
}

} // namespace

std::string FormatPattern(double date, const std::string& pattern) {
    const DateParts parts = SplitDate(date);
    const bool twelveHours = pattern.find(marker) != std::string::npos;
    std::string text;
    for (std::size_t i = 0; i < pattern.size();) {
        if (pattern[i] == marker.front() && pattern.compare(i, marker.size(), marker) == 0) {
            text += parts.Hour < 12 ? "AM" : "PM";
            i += marker.size();
            continue;
        }
        const std::size_t end = RunEnd(pattern, i);
        if (fieldLetters.find(pattern[i]) != std::string_view::npos) {
            AppendField(text, parts, pattern[i], end - i, twelveHours);
        } else {
            text.append(pattern, i, end - i);
        }
        i = end;
    }
    return text;
}

} // namespace korvalin
