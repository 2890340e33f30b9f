// The settings by name and kind: Settings::Get(Keys::ChartMax) is a whole number.
#pragma once

#include "base/Date.h"

#include <string>
#include <string_view>
#include <type_traits>

namespace korvalin {

/// A setting's name and, by `Value`, its kind.
template <class Value, class Text = std::string_view>
struct SettingKey {
    Text Name;
};

/// Makes the keys of settings whose names contain a line, an entry or a number.
template <class Value>
struct KeyPattern {
    std::string_view Before;
    std::string_view After;

    SettingKey<Value, std::string> operator()(std::string_view middle) const {
        return {std::string(Before).append(middle).append(After)};
    }
    template <class Number>
    requires std::is_integral_v<Number> SettingKey<Value, std::string>
    operator()(Number number) const { return (*this)(std::to_string(number)); }
};

namespace Keys {

#define SETTING(kind, name, ...) inline constexpr SettingKey<kind> name{#name};
#define LINE_SETTING(kind, name, ...) inline constexpr KeyPattern<kind> name{"", "_" #name};
#include "settings/SettingRows.inc"

inline constexpr KeyPattern<std::string> Alias{"", "_Alias"}; ///< of a line
inline constexpr KeyPattern<std::string> Phone{"Phone_", ""}; ///< the remembered number of an entry

// The main window's place for a screen of so many pixels, and the height of its caption.
inline constexpr KeyPattern<int> MON_Left{"MON_Left_", ""};
inline constexpr KeyPattern<int> MON_Top{"MON_Top_", ""};
inline constexpr SettingKey<int> MON_CaptionHeight{"MON_CaptionHeight"};

// The chart's curves, from 1.
inline constexpr KeyPattern<bool> LineDLShow{"LineDL", "Show"};
inline constexpr KeyPattern<bool> LineULShow{"LineUL", "Show"};
inline constexpr KeyPattern<int> LineDLColor{"LineDL", "Color"};
inline constexpr KeyPattern<int> LineULColor{"LineUL", "Color"};

} // namespace Keys
} // namespace korvalin
