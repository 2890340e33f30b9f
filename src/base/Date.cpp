#include "base/Date.h"

#include "base/Locale.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <vector>

namespace korvalin {
namespace {

namespace chrono = std::chrono;

constexpr chrono::sys_days dayZero = chrono::year{1899} / 12 / 30;

struct Token {
    int Value;
    std::size_t Digits;
    char SeparatorAfter; // first character after the number that is no blank; 0 at the end
};

// The numbers of a text with what stands between them; nullopt when anything else than digits, separators
// and an AM/PM mark occurs.
std::optional<std::vector<Token>> Tokenize(std::string_view text) {
    std::vector<Token> tokens;
    for (std::size_t i = 0; i < text.size();) {
        int value = 0;
        const auto [end, error] = std::from_chars(text.data() + i, text.data() + text.size(), value);
        if (error != std::errc() || value < 0) return std::nullopt;
        const auto next = static_cast<std::size_t>(end - text.data());
        Token token{value, next - i, 0};
        i = next;
        if (i < text.size()) {
            token.SeparatorAfter = text[i++];
            if (std::string_view(".:-/T ").find(token.SeparatorAfter) == std::string_view::npos)
                return std::nullopt;
            while (i < text.size() && text[i] == ' ')
                ++i;
        }
        tokens.push_back(token);
    }
    return tokens;
}

int FullYear(const Token& token) {
    if (token.Digits > 2) return token.Value;
    return token.Value + (token.Value < 30 ? 2000 : 1900);
}

// Whether the month comes before the day in dates written with this separator.
bool MonthFirst(char separator, const Locale& locale) {
    if (separator == '.') return false;
    return locale.ShortDate.find('m') < locale.ShortDate.find('d');
}

std::optional<Date> DateOf(int year, int month, int day) {
    const chrono::year_month_day date{chrono::year{year}, chrono::month{static_cast<unsigned>(month)},
                                      chrono::day{static_cast<unsigned>(day)}};
    if (year < 100 || year > 9999 || !date.ok()) return std::nullopt;
    return static_cast<Date>((chrono::sys_days{date} - dayZero).count());
}

std::optional<Date> TimeOf(int hour, int minute, int second) {
    if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
    return TimeSerial(hour, minute, second);
}

// The number that two digits make; -1 when they are none.
int TwoDigits(std::string_view text, std::size_t at) {
    const int tens = text[at] - '0';
    const int ones = text[at + 1] - '0';
    return tens < 0 || tens > 9 || ones < 0 || ones > 9 ? -1 : tens * 10 + ones;
}

// "yyyy-mm-dd"
std::optional<Date> ReadIsoDay(std::string_view text) {
    const int century = TwoDigits(text, 0);
    const int year = TwoDigits(text, 2);
    const int month = TwoDigits(text, 5);
    const int day = TwoDigits(text, 8);
    const bool hasForm = text[4] == '-' && text[7] == '-';
    if (!hasForm || century < 0 || year < 0 || month < 0 || day < 0) return std::nullopt;
    return DateOf(century * 100 + year, month, day);
}

// "hh:mm:ss"
std::optional<Date> ReadIsoTime(std::string_view text) {
    const int hour = TwoDigits(text, 0);
    const int minute = TwoDigits(text, 3);
    const int second = TwoDigits(text, 6);
    const bool hasForm = text[2] == ':' && text[5] == ':';
    if (!hasForm || hour < 0 || minute < 0 || second < 0) return std::nullopt;
    return TimeOf(hour, minute, second);
}

std::optional<Date> DateFromTokens(const std::array<Token, 3>& tokens, const Locale& locale) {
    if (tokens[0].Digits > 2) return DateOf(tokens[0].Value, tokens[1].Value, tokens[2].Value);
    const int year = FullYear(tokens[2]);
    int day = tokens[0].Value;
    int month = tokens[1].Value;
    if (MonthFirst(tokens[0].SeparatorAfter, locale)) std::swap(day, month);
    const std::optional<Date> date = DateOf(year, month, day);
    return date ? date : DateOf(year, day, month);
}

// "2:05 PM": removes the mark; +12 for PM, -12 for 12 AM, 0 otherwise, nullopt without a mark.
std::optional<bool> TakeAfternoonMark(std::string_view& text) {
    for (const bool afternoon : {false, true}) {
        if (EndsWithNoCase(text, afternoon ? "PM" : "AM")) {
            text = Trim(text.substr(0, text.size() - 2));
            return afternoon;
        }
    }
    return std::nullopt;
}

std::optional<Date> TimeFromTokens(const std::vector<Token>& tokens, std::size_t first,
                                   std::optional<bool> afternoon) {
    std::array<int, 3> time{};
    const std::size_t count = tokens.size() - first;
    if (count < 2 || count > 3) return std::nullopt;
    for (std::size_t i = 0; i < count; ++i) {
        const bool last = i + 1 == count;
        if (last != (tokens[first + i].SeparatorAfter == 0)) return std::nullopt;
        if (!last && tokens[first + i].SeparatorAfter != ':') return std::nullopt;
        time[i] = tokens[first + i].Value;
    }
    if (afternoon) {
        if (time[0] < 1 || time[0] > 12) return std::nullopt;
        time[0] = time[0] % 12 + (*afternoon ? 12 : 0);
    }
    return TimeOf(time[0], time[1], time[2]);
}

} // namespace

Date DateSerial(int year, int month, int day) {
    const chrono::year_month first = chrono::year{year} / 1 + chrono::months{month - 1};
    const chrono::sys_days days = chrono::sys_days{first / 1} + chrono::days{day - 1};
    return static_cast<Date>((days - dayZero).count());
}

Date TimeSerial(int hour, int minute, int second) {
    return (hour * 3600.0 + minute * 60.0 + second) / SecondsPerDay;
}

DateParts SplitDate(Date date) {
    const double seconds = std::round(date * SecondsPerDay);
    const double dayNumber = std::floor(seconds / SecondsPerDay);
    const auto rest = static_cast<int>(seconds - dayNumber * SecondsPerDay);
    const chrono::year_month_day day{dayZero + chrono::days{static_cast<int>(dayNumber)}};
    return {static_cast<int>(day.year()),
            static_cast<int>(static_cast<unsigned>(day.month())),
            static_cast<int>(static_cast<unsigned>(day.day())),
            rest / 3600,
            rest / 60 % 60,
            rest % 60};
}

Date DayOf(Date date) {
    return std::floor(date);
}

int WeekdayOf(Date date) {
    constexpr int daysPerWeek = 7;
    // Day 0 of the calendar was a Saturday.
    const double weekday = std::fmod(DayOf(date) - 1, daysPerWeek);
    return static_cast<int>(weekday < 0 ? weekday + daysPerWeek : weekday);
}

Date RoundToSecond(Date date) {
    return std::round(date * SecondsPerDay) / SecondsPerDay;
}

Date EndOfDay(Date date) {
    return RoundToSecond(DayOf(date) + 1 - OneSecond);
}

Date FloorToSecond(Date date) {
    constexpr double lostInSums = 0.001;
    const Date nearest = RoundToSecond(date);
    const bool isBefore = nearest <= date || (nearest - date) * SecondsPerDay < lostInSums;
    return isBefore ? nearest : RoundToSecond(nearest - OneSecond);
}

double SecondsOfDay(Date date) {
    return (date - std::floor(date)) * SecondsPerDay;
}

std::string FormatDateIso(Date date) {
    const DateParts p = SplitDate(date);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", p.Year, p.Month, p.Day, p.Hour, p.Minute,
                       p.Second);
}

std::string FormatDateSuffix(Date date, char separator) {
    const DateParts p = SplitDate(date);
    return fmt::format("_{:04}{:02}{:02}{}{:02}{:02}{:02}", p.Year, p.Month, p.Day, separator, p.Hour,
                       p.Minute, p.Second);
}

std::string FormatDateGeneral(Date date, const Locale& locale) {
    const DateParts p = SplitDate(date);
    const bool midnight = p.Hour == 0 && p.Minute == 0 && p.Second == 0;
    if (DayOf(RoundToSecond(date)) == 0) return FormatPattern(date, locale.Time);
    return FormatPattern(date, midnight ? locale.ShortDate : locale.ShortDate + " " + locale.Time);
}

std::string FormatTimeOfDay(Date span) {
    const DateParts p = SplitDate(span);
    return fmt::format("{:02}:{:02}:{:02}", p.Hour, p.Minute, p.Second);
}

std::string FormatDuration(Date span) {
    const auto seconds = static_cast<long long>(std::max(std::round(span * SecondsPerDay), 0.0));
    return fmt::format("{:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

std::optional<Date> ParseDateIso(std::string_view text) {
    constexpr std::size_t dayLength = 10;
    constexpr std::size_t timeLength = 8;
    if (text.size() == timeLength) return ReadIsoTime(text);
    if (text.size() == dayLength) return ReadIsoDay(text);
    if (text.size() != dayLength + 1 + timeLength || text[dayLength] != ' ') return std::nullopt;
    const std::optional<Date> day = ReadIsoDay(text);
    const std::optional<Date> time = ReadIsoTime(text.substr(dayLength + 1));
    return day && time ? std::optional(*day + *time) : std::nullopt;
}

std::optional<Date> ParseDate(std::string_view text, const Locale& locale) {
    text = Trim(text);
    const std::optional<bool> afternoon = TakeAfternoonMark(text);
    const auto tokens = Tokenize(text);
    if (!tokens || tokens->size() < 2) return std::nullopt;
    if (tokens->front().SeparatorAfter == ':') return TimeFromTokens(*tokens, 0, afternoon);

    if (tokens->size() < 3) return std::nullopt;
    const std::array<Token, 3> dateTokens = {(*tokens)[0], (*tokens)[1], (*tokens)[2]};
    if (dateTokens[0].SeparatorAfter != dateTokens[1].SeparatorAfter) return std::nullopt;
    const std::optional<Date> date = DateFromTokens(dateTokens, locale);
    if (!date || tokens->size() == 3) return afternoon ? std::nullopt : date;
    const std::optional<Date> time = TimeFromTokens(*tokens, 3, afternoon);
    return time ? std::optional(*date + *time) : std::nullopt;
}

} // namespace korvalin
