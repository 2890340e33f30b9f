#include "settings/SettingsTable.h"

#include "base/Numbers.h"
#include "base/Text.h"

namespace korvalin {
namespace {

template <int Low>
std::int32_t AtLeast(std::int32_t value) {
    return value < Low ? Low : value;
}

// Below Low becomes WhenBelow, above High becomes WhenAbove.
template <int Low, int WhenBelow, int High, int WhenAbove>
std::int32_t Within(std::int32_t value) {
    if (value < Low) return WhenBelow;
    return value > High ? WhenAbove : value;
}

template <int First, int Second, int Otherwise>
std::int32_t OneOf(std::int32_t value) {
    return value == First || value == Second ? value : Otherwise;
}

// The traffic that makes an adapter count as active. A value from 10000 on is taken as given in a unit that
// is a thousand times smaller.
std::int32_t ActiveTraffic(std::int32_t value) {
    if (value <= 10) return 10;
    if (value < 10000) return value;
    const double thousandth = value / 1000.0;
    return thousandth > 10000 ? 10 : static_cast<std::int32_t>(RoundToEven(thousandth));
}

constexpr ScreenDefault mainWindowLeft = {ScreenSide::Width, Keys::MON_Width, 1, 350};
constexpr ScreenDefault mainWindowTop = {ScreenSide::Height, Keys::MON_Height, 1, 780};
constexpr ScreenDefault statisticsLeft = {ScreenSide::Width, Keys::STATS_Width, 2, 0};
constexpr ScreenDefault statisticsTop = {ScreenSide::Height, Keys::STATS_Height, 2, 0};

constexpr SettingRow settingRows[] = {
#define SETTING(kind, name, ...) {#name, KindOf<kind> __VA_OPT__(, ) __VA_ARGS__},
#define LINE_SETTING(...)
#include "settings/SettingRows.inc"
};

enum class Where { AtStart, Anywhere };

struct PatternRow {
    std::string_view Part;
    Where Place;
    SettingKind Kind;
    NumberRule Rule = nullptr;
    std::string_view WhenMissing = {};
    const ScreenDefault* Computed = nullptr;
};

// Applied one after the other to names that have no row of their own: the last match decides about the kind,
// so a line named "Showroom" has its free hours as a number.
constexpr PatternRow patternRows[] = {
    {"mon_", Where::Anywhere, SettingKind::WholeNumber},
    {"mon_left", Where::AtStart, SettingKind::WholeNumber, nullptr, {}, &mainWindowLeft},
    {"mon_top", Where::AtStart, SettingKind::WholeNumber, nullptr, {}, &mainWindowTop},
    {"stats_", Where::Anywhere, SettingKind::WholeNumber},
    {"color", Where::Anywhere, SettingKind::WholeNumber},
    {"show", Where::Anywhere, SettingKind::Boolean},
#define SETTING(...)
#define LINE_SETTING(kind, name, ...)                                                                        \
    {Keys::name.After, Where::Anywhere, KindOf<kind> __VA_OPT__(, ) __VA_ARGS__},
#include "settings/SettingRows.inc"
};

bool Matches(const PatternRow& pattern, std::string_view lowerName) {
    return pattern.Place == Where::AtStart ? StartsWithNoCase(lowerName, pattern.Part)
                                           : ContainsNoCase(lowerName, pattern.Part);
}

// These hold what the user typed for a line, and the line's name is the user's or the system's choice too:
// the alias of a line named "Showroom" or "Salmon_2" must stay a text although "show" and "mon_" occur in it.
// A line may itself be named "Phone_1": its tariff is none of these.
bool IsTextOfLine(std::string_view lowerName) {
    if (EndsWithNoCase(lowerName, Keys::Alias.After)) return true;
    const auto isLineSuffix = [&](const PatternRow& pattern) {
        return pattern.Part.starts_with('_') && EndsWithNoCase(lowerName, pattern.Part);
    };
    return StartsWithNoCase(lowerName, Keys::Phone.Before) &&
           std::none_of(std::begin(patternRows), std::end(patternRows), isLineSuffix);
}

} // namespace

SettingsTable::SettingsTable() {
    for (const SettingRow& row : settingRows)
        rows_.emplace(ToLower(row.Name), &row);
}

std::vector<std::string_view> SettingsTable::Names() {
    std::vector<std::string_view> names;
    for (const SettingRow& row : settingRows)
        names.push_back(row.Name);
    return names;
}

SettingRow SettingsTable::Find(const std::string& lowerName) const {
    const auto found = rows_.find(lowerName);
    if (found != rows_.end()) return *found->second;
    SettingRow row;
    if (IsTextOfLine(lowerName)) return row;
    for (const PatternRow& pattern : patternRows) {
        if (!Matches(pattern, lowerName)) continue;
        row.Kind = pattern.Kind;
        if (pattern.Computed != nullptr) row.Computed = pattern.Computed;
        if (!pattern.WhenMissing.empty()) row.WhenMissing = pattern.WhenMissing;
    }
    return row;
}

std::int32_t SettingsTable::ApplyPatternRules(std::string_view lowerName, std::int32_t value) {
    for (const PatternRow& pattern : patternRows) {
        if (pattern.Rule != nullptr && Matches(pattern, lowerName)) value = pattern.Rule(value);
    }
    return value;
}

} // namespace korvalin
