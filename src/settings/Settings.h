#pragma once

#include "settings/SettingValue.h"

#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

class Clock;
class Errors;
class Registry;
class Screen;
struct Locale;

/// Key path of all settings below the current user's hive.
inline constexpr std::string_view SettingsKeyPath = "Software\\Korvalin";

/// The persistent options. There is no cache: a value written by SetReg, also by another program instance, is seen by
/// the next GetReg. Names are compared without regard to letter case.
class Settings {
  public:
    Settings(Registry& registry, Errors& errors, Screen& screen, Clock& clock, const Locale& locale);

    /// The setting with its default applied (and then stored), converted to its kind and put into its range.
    /// `defaultOnly` reads nothing: the result is the default, which is stored as well.
    SettingValue GetReg(std::string_view name, bool defaultOnly = false);

    // GetReg for a caller who knows the kind; another kind is converted as the validation would.
    bool GetBool(std::string_view name);
    std::int32_t GetNumber(std::string_view name);
    Date GetDate(std::string_view name);
    std::string GetText(std::string_view name);

    /// Stores the text form of a value; an empty or blank text deletes the setting. Failures are ignored.
    void SetReg(std::string_view name, const SettingValue& value);
    void SetReg(std::string_view name, const char* text) { SetReg(name, SettingValue(std::string(text))); }

    /// The corrected form of a value as the user typed it or the store holds it.
    SettingValue GetRegValidate(std::string_view name, std::string value);

    /// Stores a password scrambled (not encrypted: it only keeps it from the casual eye).
    void SetRegPassword(std::string_view name, std::string_view password);
    std::string GetRegPassword(std::string_view name);

    /// The names of all stored settings in alphabetical order.
    std::vector<std::string> StoredNames();

    /// The text that SetReg stores for a value: "True"/"False", plain decimal, "yyyy-mm-dd hh:mm:ss", text as it is.
    static std::string TextForm(const SettingValue& value);
};

} // namespace korvalin
