#include "base/Date.h"
#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "settings/SettingNames.h"
#include "settings/Settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string_view>
#include <unistd.h>

namespace korvalin {
namespace {

std::string_view KindName(const SettingValue& value) {
    struct Names {
        std::string_view operator()(bool) const { return "boolean"; }
        std::string_view operator()(std::int32_t) const { return "number"; }
        std::string_view operator()(Date) const { return "date"; }
        std::string_view operator()(const std::string&) const { return "text"; }
    };
    return std::visit(Names(), value);
}

bool IsStored(Settings& settings, const std::string& name) {
    const std::vector<std::string> names = settings.StoredNames();
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& stored) { return EqualsNoCase(stored, name); });
}

// What an older release has stored is still to be seen, and to be deleted.
bool IsKnown(Settings& settings, const std::string& name) {
    if (IsSettingName(name) || IsStored(settings, name)) return true;
    fmt::print(stderr, "No setting: {}. Did you mean {}?\n", EscapeControls(name),
               EscapeControls(NearestSettingName(name)));
    return false;
}

std::string Read(Settings& settings, const std::string& name) {
    return Settings::TextForm(settings.GetReg(name));
}

void Print(const std::string& text) {
    fmt::print("{}\n",
               isatty(STDOUT_FILENO) != 0 ? EscapeControls(text) : text); // a script wants it as it is
}

// Whether both say the same in another form: "true" and "True", "5.0" and "5", two forms of a date.
bool IsSame(std::string_view typed, std::string_view stored, const Locale& locale) {
    if (EqualsNoCase(Trim(typed), stored)) return true;
    const std::optional<double> number = ParseNumber(typed);
    if (number) return number == ParseNumber(stored);
    const std::optional<Date> date = ParseDate(Trim(typed), locale);
    return date && date == ParseDate(stored, locale);
}

int SayNotStored(const std::string& name) {
    fmt::print(stderr, "{} could not be stored.\n", EscapeControls(name));
    return EXIT_FAILURE;
}

int Delete(Settings& settings, const std::string& name) {
    settings.SetReg(name, std::string());
    if (IsStored(settings, name)) return SayNotStored(name);
    Print(Read(settings, name));
    return EXIT_SUCCESS;
}

} // namespace

void ListSettings(Settings& settings) {
    std::map<std::string, std::string> names; // by lower-case name, so each comes once
    for (const std::string_view name : SettingsTable::Names())
        names.emplace(ToLower(name), name);
    for (const std::string& name : settings.StoredNames())
        names.emplace(ToLower(name), name);
    for (const auto& [lower, name] : names) {
        const SettingValue value = settings.GetReg(name);
        fmt::print("{:<28} {:<8} {}\n", EscapeControls(name), KindName(value),
                   EscapeControls(Settings::TextForm(value)));
    }
}

int PrintSetting(Settings& settings, const std::string& name) {
    if (!IsKnown(settings, name)) return ExitUsage;
    Print(Read(settings, name));
    return EXIT_SUCCESS;
}

int StoreSetting(Settings& settings, const Locale& locale, const std::string& name,
                 const std::string& value) {
    if (!IsKnown(settings, name)) return ExitUsage;
    if (Trim(value).empty()) return Delete(settings, name);
    const SettingValue wanted = settings.GetRegValidate(name, value);
    settings.SetReg(name, wanted);
    const std::string stored = Read(settings, name);
    Print(stored);
    if (stored != Trim(Settings::TextForm(wanted))) return SayNotStored(name);
    if (IsSame(value, stored, locale)) return EXIT_SUCCESS;
    fmt::print(stderr, "{}: {} cannot be used and became {}\n", EscapeControls(name), EscapeControls(value),
               EscapeControls(stored));
    return EXIT_FAILURE;
}

} // namespace korvalin
