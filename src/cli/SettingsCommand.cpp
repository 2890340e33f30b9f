#include "base/Text.h"
#include "cli/Commands.h"
#include "settings/Settings.h"

#include <fmt/format.h>

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

void PrintSetting(Settings& settings, const std::string& name) {
    const std::string text = Settings::TextForm(settings.GetReg(name));
    fmt::print("{}\n",
               isatty(STDOUT_FILENO) != 0 ? EscapeControls(text) : text); // a script wants it as it is
}

void StoreSetting(Settings& settings, const std::string& name, const std::string& value) {
    if (Trim(value).empty()) {
        settings.SetReg(name, std::string());
    } else {
        settings.SetReg(name, settings.GetRegValidate(name, value));
    }
    PrintSetting(settings, name);
}

} // namespace korvalin
