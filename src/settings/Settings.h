#pragma once

#include "platform/Registry.h"
#include "settings/Keys.h"
#include "settings/SettingValue.h"
#include "settings/SettingsTable.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

class Clock;
class Errors;
class Screen;
struct Locale;

/// Key path of all settings.
inline constexpr std::string_view SettingsKeyPath = "Software\\Korvalin";

/// The persistent options. There is no cache: a value that was written, also by another program instance, is
/// seen by the next read. Names are compared without regard to letter case.
class Settings {
  public:
    Settings(Registry& registry, Errors& errors, Screen& screen, Clock& clock, const Locale& locale);

    /// The setting with its default applied (and then stored), converted to its key's kind and put into its
    /// range.
    template <class Value, class Text>
    Value Get(const SettingKey<Value, Text>& key) {
        return As<Value>(GetReg(key.Name));
    }
    /// Stores a setting; an empty or blank text deletes it. Failures are ignored.
    template <class Value, class Text>
    void Set(const SettingKey<Value, Text>& key, const std::type_identity_t<Value>& value) {
        SetReg(key.Name, value);
    }
    /// Whether settings can be stored now: the store may be read-only, or the disk full.
    [[nodiscard]] bool CanStore();
    /// Has what is stored outlive a power loss; false when it does not even outlive this run.
    [[nodiscard]] bool Flush() { return registry_.RegFlush(); }
    /// Deletes a setting, which reads its default again.
    template <class Value, class Text>
    void Remove(const SettingKey<Value, Text>& key) {
        SetReg(key.Name, std::string());
    }
    /// The corrected form of a value as the user typed it; see GetRegValidate.
    template <class Value, class Text>
    Value Validate(const SettingKey<Value, Text>& key, std::string value) {
        return As<Value>(GetRegValidate(key.Name, std::move(value)));
    }

    // The same for names that come from outside, whose kind is known only here.

    /// `defaultOnly` reads nothing: the result is the default, which is stored as well.
    SettingValue GetReg(std::string_view name, bool defaultOnly = false);
    /// Stores a value in its text form; an empty text deletes it.
    void SetReg(std::string_view name, const SettingValue& value);
    /// The corrected form of a value as the user typed it or the store holds it. "" stands for a missing
    /// setting: its default is returned and stored. Nothing else is stored, so a damaged text stays as it is.
    SettingValue GetRegValidate(std::string_view name, std::string value);

    /// The default as text; "" when there is none or it depends on the screen.
    std::string_view DefaultText(std::string_view name) const;

    /// Stores a password scrambled (not encrypted: it only keeps it from the casual eye). A password
    /// with a byte that the scheme cannot hold is reported and not stored; an empty one deletes the setting.
    void SetRegPassword(SettingKey<std::string> key, std::string_view password);
    /// The password as UTF-8; "" when there is none or the stored text is damaged (which is reported).
    std::string GetRegPassword(SettingKey<std::string> key);

    /// The names of all stored settings in alphabetical order.
    std::vector<std::string> StoredNames();

    /// The text that is stored for a value: "True"/"False", plain decimal, "yyyy-mm-dd hh:mm:ss", text as
    /// it is.
    static std::string TextForm(const SettingValue& value);

  private:
    /// A name may belong to another kind than its key, as "x_TrayVol_FreeHours", a line's, does.
    template <class Value>
    Value As(SettingValue value) const {
        if (!std::holds_alternative<Value>(value)) value = Convert(KindOf<Value>, TextForm(value));
        return std::get<Value>(std::move(value));
    }
    SettingValue Convert(SettingKind kind, std::string text) const;
    std::optional<std::int32_t> ParseStoredNumber(std::string_view text) const;
    std::optional<Date> ParseStoredDate(std::string_view text) const;

    void TakeDefault(std::string_view name, const SettingRow& row, std::string& value);
    void KeepOnScreen(std::string_view lowerName, const SettingRow& row, SettingValue& value);
    void KeepPosition(const ScreenDefault& rule, std::int32_t& position);
    void KeepDate(std::string_view name, DateRule rule, SettingValue& value);

    std::optional<double> ScreenTwips(ScreenSide side);
    std::optional<double> FreeScreenTwips(const ScreenDefault& rule);

    Registry& registry_;
    SettingsTable table_;
    Errors& errors_;
    Screen& screen_;
    Clock& clock_;
    const Locale& locale_;
};

} // namespace korvalin
