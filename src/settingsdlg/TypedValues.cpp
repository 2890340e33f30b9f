#include "settingsdlg/TypedValues.h"

#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "settings/Settings.h"

#include <fmt/format.h>

#include <algorithm>

namespace korvalin {
namespace {

constexpr double highestTransparency = 95; // beyond it nobody finds the window again
constexpr double opaque = 255;
constexpr int secondsPerMinute = 60;

} // namespace

std::string WithoutGrouping(std::string_view text, const Locale& locale) {
    std::string plain = ReplaceAll(text, ".", "");
    if (!locale.GroupingMark.empty()) plain = ReplaceAll(plain, locale.GroupingMark, "");
    return plain;
}

double TransparencyOf(std::string_view text) {
    return std::clamp(ParseNumber(ReplaceAll(text, "%", "")).value_or(0), 0.0, 100.0);
}

std::string CheckedTransparency(std::string_view text) {
    return fmt::format("{:.0f}%", std::min(RoundToEven(TransparencyOf(text)), highestTransparency));
}

int AlphaOf(double transparency) {
    return static_cast<int>(RoundToEven((100 - transparency) * opaque / 100));
}

int TransparencyOfAlpha(int alpha) {
    return static_cast<int>(100 - alpha / opaque * 100);
}

int CheckedHistoryMinutes(Settings& settings, std::string_view typed, int chartMinutes, int historySeconds) {
    // Beyond an hour the setting's own rule decides; here only the product must not overflow.
    constexpr double manyMinutes = 1000;
    const double minutes = std::clamp(ParseNumber(typed).value_or(0), -manyMinutes, manyMinutes);
    const std::string wanted = fmt::format("{:.0f}", minutes * secondsPerMinute);
    int seconds = std::get<std::int32_t>(settings.GetRegValidate("ConnDataMax", wanted));
    seconds = std::min(std::max(seconds, chartMinutes * secondsPerMinute), historySeconds);
    return seconds / secondsPerMinute;
}

} // namespace korvalin
