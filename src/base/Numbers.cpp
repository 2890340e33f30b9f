#include "base/Numbers.h"

#include "base/Locale.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace korvalin {
namespace {

void InsertGrouping(std::string& digits, const std::string& mark) {
    for (std::size_t at = digits.size(); at > 3;) {
        at -= 3;
        digits.insert(at, mark);
    }
}

} // namespace

std::optional<double> ParseNumber(std::string_view text) {
    text = Trim(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

double RoundToEven(double value) {
    return std::nearbyint(value);
}

std::optional<std::int32_t> ParseWholeNumber(std::string_view text) {
    const std::optional<double> value = ParseNumber(text);
    if (!value) return std::nullopt;
    const double rounded = RoundToEven(*value);
    if (rounded < std::numeric_limits<std::int32_t>::min() ||
        rounded > std::numeric_limits<std::int32_t>::max()) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(rounded);
}

std::string FormatNumber(double value, std::string_view pattern, const Locale& locale) {
    const auto point = pattern.find('.');
    const std::size_t decimals = point == std::string_view::npos ? 0 : pattern.size() - point - 1;
    // printf rounds the exact binary value; nudging by half a unit in the 15th digit gives what the decimal
    // digits shown to a person suggest (0.05 is 0.1, not 0.0).
    constexpr double noSuchHalves = 1e14; // from here on the nudge would be a number that is shown
    const double nudge = std::abs(value) < noSuchHalves ? 1e-15 : 0;
    const std::string plain = fmt::format("{:.{}f}", std::abs(value) * (1 + nudge), decimals);
    std::string whole = plain.substr(0, plain.find('.'));
    if (pattern.find(',') != std::string_view::npos) InsertGrouping(whole, locale.GroupingMark);
    std::string text = whole;
    if (decimals > 0) text += locale.DecimalMark + plain.substr(plain.find('.') + 1);
    const bool negative = value < 0 && plain.find_first_of("123456789") != std::string::npos;
    return negative ? "-" + text : text;
}

std::string FormatWhole(std::uint64_t value, const Locale& locale) {
    std::string digits = std::to_string(value);
    InsertGrouping(digits, locale.GroupingMark);
    return digits;
}

void AppendTwoDigits(std::string& text, int number) {
    const std::array<char, 2> digits = {static_cast<char>('0' + number / 10),
                                        static_cast<char>('0' + number % 10)};
    text.append(digits.data(), digits.size());
}

std::optional<double> ReadFormattedNumber(std::string_view text, const Locale& locale) {
    std::string plain(text);
    if (!locale.GroupingMark.empty()) plain = ReplaceAll(plain, locale.GroupingMark, "");
    return ParseNumber(ReplaceAll(plain, locale.DecimalMark, "."));
}

double UnsignedToDouble(std::int32_t value) {
    return static_cast<double>(static_cast<std::uint32_t>(value));
}

} // namespace korvalin
