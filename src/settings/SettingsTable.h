// What is known about every setting: its kind, default and range, as data.
#pragma once

#include "settings/Keys.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace korvalin {

enum class SettingKind { Text, Boolean, WholeNumber, DateTime };

/// The kind of the settings that are a `Value` in the program.
template <class Value>
inline constexpr SettingKind KindOf = SettingKind::Text;
template <>
inline constexpr SettingKind KindOf<bool> = SettingKind::Boolean;
template <>
inline constexpr SettingKind KindOf<int> = SettingKind::WholeNumber;
template <>
inline constexpr SettingKind KindOf<Date> = SettingKind::DateTime;

/// Puts a whole number into its range.
using NumberRule = std::int32_t (*)(std::int32_t);

enum class DateRule {
    None,
    FirstRun, // the first read fixes the moment; the value is handed out as text
    YearAgo,  // this day one year ago instead of a date before 1980
    Today     // this day instead of a date before 1980
};

enum class ScreenSide { Width, Height };

/// A window position that depends on the screen: (screen size - window size) / Divisor - Margin, in twips.
struct ScreenDefault {
    ScreenSide Side;
    SettingKey<int> WindowSize;
    int Divisor;
    int Margin;
};

struct SettingRow {
    std::string_view Name;
    SettingKind Kind = SettingKind::Text;
    std::string_view Default = {}; // the text that is stored; empty: none
    NumberRule Rule = nullptr;
    const ScreenDefault* Computed = nullptr;
    DateRule Dates = DateRule::None;
    std::string_view WhenMissing = {}; // read in place of a missing setting, but not stored
};

/// Finds the row of a setting by its lower-case name. Names made of a pattern (a line's name and a suffix, a
/// screen size) get a row that is put together from the patterns.
class SettingsTable {
  public:
    SettingsTable();

    SettingRow Find(const std::string& lowerName) const;

    /// The names of all settings that have a row of their own, as they are written.
    static std::vector<std::string_view> Names();

    /// The value put into its range by the rules that go with parts of the name.
    static std::int32_t ApplyPatternRules(std::string_view lowerName, std::int32_t value);

  private:
    std::unordered_map<std::string, const SettingRow*> rows_;
};

} // namespace korvalin
