#include "settingsdlg/TypedValues.h"

#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "settings/Settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <optional>

namespace korvalin {
namespace {

constexpr double highestTransparency = 95; // beyond it nobody finds the window again
constexpr double opaque = 255;

// With the locale's decimal mark or a point.
std::optional<double> TypedNumber(std::string_view text, const Locale& locale) {
    const std::optional<double> plain = ParseNumber(text);
    if (plain || locale.DecimalMark.empty()) return plain;
    return ParseNumber(ReplaceAll(text, locale.DecimalMark, "."));
}

// "1.000" is a thousand where points group, but "1.5" is no fifteen.
std::string WithoutGroups(const std::string& text, const Locale& locale) {
    const std::optional<double> number = ReadFormattedNumber(text, locale);
    const bool grouped = number && FormatNumber(*number, "#,##0", locale) == Trim(text);
    return grouped ? fmt::format("{:.0f}", *number) : text;
}

// "1.000.000": a fraction has no parts of three digits, or none but one.
bool IsGroupedBy(std::string_view mark, std::string_view number) {
    constexpr std::size_t groupDigits = 3;
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    bool first = true;
    for (std::size_t at = 0;; first = false) {
        const std::size_t end = std::min(number.find(mark, at), number.size());
        const std::string_view part = number.substr(at, end - at);
        const bool fits = first ? !part.empty() && part.size() <= groupDigits : part.size() == groupDigits;
        if (!fits || !std::all_of(part.begin(), part.end(), isDigit)) return false;
        if (end == number.size()) return !first;
        at = end + mark.size();
    }
}

} // namespace

std::int32_t CheckedNumber(Settings& settings, SettingKey<int> key, std::string typed, const Locale& locale) {
    // Handed over as nothing it would stand for a missing setting, whose default is stored.
    if (typed.empty()) typed = settings.DefaultText(key.Name);
    return settings.Validate(key, WithoutGroups(typed, locale));
}

std::string WithoutGrouping(std::string_view text, const Locale& locale, bool pointGroups) {
    const std::string typed(Trim(text));
    for (const std::string& mark : {locale.GroupingMark, std::string("."), std::string(" ")}) {
        if (mark == locale.DecimalMark && !pointGroups) continue;
        if (!mark.empty() && IsGroupedBy(mark, typed)) return ReplaceAll(typed, mark, "");
    }
    return typed;
}

std::string TypedFolder(std::string_view text) {
    const std::filesystem::path folder = Trim(text);
    std::error_code error;
    const std::filesystem::path inFull = std::filesystem::absolute(folder, error);
    return folder.empty() || error ? folder.string() : inFull.string();
}

double TransparencyOf(std::string_view text, const Locale& locale) {
    return std::clamp(TypedNumber(ReplaceAll(text, "%", ""), locale).value_or(0), 0.0, 100.0);
}

std::string CheckedTransparency(std::string_view text, const Locale& locale) {
    return fmt::format("{:.0f}%", std::min(RoundToEven(TransparencyOf(text, locale)), highestTransparency));
}

int AlphaOf(double transparency) {
    return static_cast<int>(RoundToEven((100 - transparency) * opaque / 100));
}

int TransparencyOfAlpha(int alpha) {
    return static_cast<int>(100 - alpha / opaque * 100);
}

int CheckedHistoryMinutes(Settings& settings, std::string_view typed, const Locale& locale, int chartMinutes,
                          int historySeconds) {
    // Beyond an hour the setting's own rule decides; here only the product must not overflow.
    constexpr double manyMinutes = 1000;
    const double minutes = std::clamp(TypedNumber(typed, locale).value_or(0), -manyMinutes, manyMinutes);
    const std::string wanted = fmt::format("{:.0f}", minutes * SecondsPerMinute);
    int seconds = CheckedNumber(settings, Keys::ConnDataMax, wanted, locale);
    seconds = std::min(std::max(seconds, chartMinutes * SecondsPerMinute), historySeconds);
    return seconds / SecondsPerMinute;
}

} // namespace korvalin
