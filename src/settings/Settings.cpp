#include "settings/Settings.h"

#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "errors/Errors.h"
#include "platform/Clock.h"
#include "platform/Screen.h"
#include "settings/Password.h"

#include <algorithm>
#include <limits>
#include <random>
#include <stdexcept>

namespace korvalin {
namespace {

constexpr std::int32_t leastPositionTwips = -400; // a window's edge may lie this far outside the screen

// Days that the calendar's years 100 to 9999 span.
constexpr Date firstDay = -657434;
constexpr Date lastDay = 2958465;

const Date firstPlausibleDay = DateSerial(1980, 1, 1);

std::int32_t ToWholeNumber(double value) {
    constexpr double least = std::numeric_limits<std::int32_t>::min();
    constexpr double most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(RoundToEven(value), least, most));
}

std::int32_t DefaultPosition(const ScreenDefault& rule, double freeTwips) {
    return ToWholeNumber(freeTwips / rule.Divisor - rule.Margin);
}

// What the main window's height or width becomes when it is too small to be used.
struct WindowSizeRule {
    SettingKey<int> Size;
    ScreenSide Side;
    std::int32_t Least;
    std::int32_t WhenLess;
};
constexpr WindowSizeRule windowSizeRules[] = {{Keys::MON_Height, ScreenSide::Height, 700, 1500},
                                              {Keys::MON_Width, ScreenSide::Width, 1000, 3200}};

Date SameDayLastYear(Date now) {
    const DateParts today = SplitDate(DayOf(now));
    return DateSerial(today.Year - 1, today.Month, today.Day);
}

} // namespace

Settings::Settings(Registry& registry, Errors& errors, Screen& screen, Clock& clock, const Locale& locale)
    : registry_(registry), errors_(errors), screen_(screen), clock_(clock), locale_(locale) {}

SettingValue Settings::GetReg(std::string_view name, bool defaultOnly) {
    return GetRegValidate(name, defaultOnly ? std::string() : registry_.RegReadString(SettingsKeyPath, name));
}

void Settings::SetReg(std::string_view name, const SettingValue& value) {
    registry_.RegWriteString(SettingsKeyPath, name, Trim(TextForm(value)));
}

bool Settings::CanStore() {
    constexpr std::string_view probe = "WriteProbe";
    return registry_.RegWriteString(SettingsKeyPath, probe, "1") &&
           registry_.RegWriteString(SettingsKeyPath, probe, "");
}

std::string Settings::TextForm(const SettingValue& value) {
    if (const bool* answer = std::get_if<bool>(&value)) return *answer ? "True" : "False";
    if (const auto* number = std::get_if<std::int32_t>(&value)) return std::to_string(*number);
    if (const Date* date = std::get_if<Date>(&value)) return FormatDateIso(*date);
    return std::get<std::string>(value);
}

std::string_view Settings::DefaultText(std::string_view name) const {
    return table_.Find(ToLower(name)).Default;
}

std::vector<std::string> Settings::StoredNames() {
    return registry_.RegValueNames(SettingsKeyPath);
}

SettingValue Settings::GetRegValidate(std::string_view name, std::string value) {
    constexpr std::string_view procName = "GetRegValidate";
    const std::string lowerName = ToLower(name);
    const SettingRow row = table_.Find(lowerName);

    errors_.Step(procName, [&] { TakeDefault(name, row, value); });
    if (value.empty()) value = row.WhenMissing;
    SettingValue result = Convert(row.Kind, std::move(value));
    errors_.Step(procName, [&] { KeepOnScreen(lowerName, row, result); });
    errors_.Step(procName, [&] { KeepDate(name, row.Dates, result); });
    if (auto* number = std::get_if<std::int32_t>(&result)) {
        if (row.Rule != nullptr) *number = row.Rule(*number);
        *number = SettingsTable::ApplyPatternRules(lowerName, *number);
    }
    return result;
}

void Settings::TakeDefault(std::string_view name, const SettingRow& row, std::string& value) {
    if (!value.empty()) return;
    value = row.Default;
    if (row.Computed != nullptr) {
        const std::optional<double> freeTwips = FreeScreenTwips(*row.Computed);
        if (freeTwips) value = std::to_string(DefaultPosition(*row.Computed, *freeTwips));
    }
    if (!value.empty()) SetReg(name, value);
}

SettingValue Settings::Convert(SettingKind kind, std::string text) const {
    switch (kind) {
    case SettingKind::Boolean: return EqualsNoCase(text, "TRUE");
    case SettingKind::WholeNumber: return ParseStoredNumber(text).value_or(0);
    case SettingKind::DateTime: return ParseStoredDate(text).value_or(Date{0});
    case SettingKind::Text: break;
    }
    return text;
}

// Plain as SetReg writes it, or with the locale's decimal mark as somebody typed it.
std::optional<std::int32_t> Settings::ParseStoredNumber(std::string_view text) const {
    const std::optional<std::int32_t> plain = ParseWholeNumber(text);
    if (plain || locale_.DecimalMark.empty() || locale_.DecimalMark == ".") return plain;
    return ParseWholeNumber(ReplaceAll(text, locale_.DecimalMark, "."));
}

// A date in one of the usual forms, or its day count.
std::optional<Date> Settings::ParseStoredDate(std::string_view text) const {
    if (const std::optional<Date> date = ParseDate(text, locale_)) return date;
    const std::optional<Date> dayCount = ParseNumber(text);
    if (!dayCount || *dayCount < firstDay || *dayCount > lastDay) return std::nullopt;
    return dayCount;
}

// With several monitors in use a main window may lie anywhere; otherwise it stays where the user can reach
// it.
void Settings::KeepOnScreen(std::string_view lowerName, const SettingRow& row, SettingValue& value) {
    auto* number = std::get_if<std::int32_t>(&value);
    if (number == nullptr || !lowerName.starts_with("mon_") || Get(Keys::MultiScreen)) return;

    if (row.Computed != nullptr) return KeepPosition(*row.Computed, *number);
    for (const WindowSizeRule& rule : windowSizeRules) {
        if (!EqualsNoCase(lowerName, rule.Size.Name)) continue;
        if (*number < rule.Least) *number = rule.WhenLess;
        const std::optional<double> screenTwips = ScreenTwips(rule.Side);
        if (screenTwips && *number > *screenTwips) *number = ToWholeNumber(*screenTwips);
    }
}

void Settings::KeepPosition(const ScreenDefault& rule, std::int32_t& position) {
    const auto pixels = [&](const std::optional<ScreenSize>& size) {
        return rule.Side == ScreenSide::Width ? size->WidthPixels : size->HeightPixels;
    };
    const std::optional<ScreenSize> screen = screen_.Primary();
    const std::optional<ScreenSize> mode = screen_.CurrentDisplayMode();
    // While the display mode changes, the two sizes differ and say nothing about where the window belongs.
    if (screen && mode && pixels(screen) == pixels(mode)) {
        const std::optional<double> freeTwips = FreeScreenTwips(rule);
        if (freeTwips && position > *freeTwips) position = DefaultPosition(rule, *freeTwips);
    }
    position = std::max(position, leastPositionTwips);
}

void Settings::KeepDate(std::string_view name, DateRule rule, SettingValue& value) {
    auto* date = std::get_if<Date>(&value);
    if (date == nullptr) return;
    switch (rule) {
    case DateRule::FirstRun:
        if (*date == 0) {
            *date = clock_.Now();
            SetReg(name, *date);
        }
        value = FormatDateIso(*date);
        break;
    case DateRule::YearAgo:
        if (*date < firstPlausibleDay) *date = SameDayLastYear(clock_.Now());
        break;
    case DateRule::Today:
        if (*date < firstPlausibleDay) *date = DayOf(clock_.Now());
        break;
    case DateRule::None: break;
    }
}

std::optional<double> Settings::ScreenTwips(ScreenSide side) {
    const std::optional<ScreenSize> screen = screen_.Primary();
    if (!screen) return std::nullopt;
    return side == ScreenSide::Width ? screen->WidthTwips() : screen->HeightTwips();
}

// What a window leaves of the screen's width or height; negative for a window that is larger.
std::optional<double> Settings::FreeScreenTwips(const ScreenDefault& rule) {
    const std::optional<double> screenTwips = ScreenTwips(rule.Side);
    if (!screenTwips) return std::nullopt;
    return *screenTwips - Get(rule.WindowSize);
}

void Settings::SetRegPassword(SettingKey<std::string> key, std::string_view password) {
    errors_.Step("SetRegPassword", [&] {
        std::random_device source;
        std::uniform_int_distribution<int> digit(0, 9);
        const int first = digit(source);
        const std::optional<std::string> scrambled = ScramblePassword(password, first, digit(source));
        if (!scrambled)
            throw std::invalid_argument("The password contains a character that cannot be stored.");
        Set(key, *scrambled);
    });
}

std::string Settings::GetRegPassword(SettingKey<std::string> key) {
    std::string password;
    errors_.Step("GetRegPassword", [&] {
        const std::optional<std::string> bytes = UnscramblePassword(Get(key));
        if (!bytes) throw std::invalid_argument("The stored password is damaged.");
        // A password may have been stored byte by byte in another encoding.
        password = DecodeLine(*bytes);
    });
    return password;
}

} // namespace korvalin
