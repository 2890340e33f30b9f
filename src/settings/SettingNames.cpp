#include "settings/SettingNames.h"

#include "base/NearestText.h"
#include "base/Text.h"
#include "settings/SettingsTable.h"

#include <algorithm>
#include <vector>

namespace korvalin {
namespace {

struct Pattern {
    std::string_view Before, After;
    bool OfNumber = false; // what stands in between
};

constexpr Pattern patterns[] = {
#define SETTING(...)
#define LINE_SETTING(kind, name, ...) {Keys::name.Before, Keys::name.After},
#include "settings/SettingRows.inc"
    {Keys::Alias.Before, Keys::Alias.After},
    {Keys::Phone.Before, Keys::Phone.After},
    {Keys::MON_Left.Before, Keys::MON_Left.After, true},
    {Keys::MON_Top.Before, Keys::MON_Top.After, true},
    {Keys::LineDLShow.Before, Keys::LineDLShow.After, true},
    {Keys::LineULShow.Before, Keys::LineULShow.After, true},
};

bool IsNumber(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool Matches(const Pattern& pattern, std::string_view name) {
    const std::size_t fixed = pattern.Before.size() + pattern.After.size();
    if (name.size() <= fixed || !StartsWithNoCase(name, pattern.Before) ||
        !EndsWithNoCase(name, pattern.After))
        return false;
    return !pattern.OfNumber || IsNumber(name.substr(pattern.Before.size(), name.size() - fixed));
}

std::vector<std::string_view> PlainNames() {
    std::vector<std::string_view> names = SettingsTable::Names();
    names.push_back(Keys::MON_CaptionHeight.Name);
    return names;
}

// The line's part of the name ends with the last underscore: what follows is typed wrong.
std::vector<std::string> Candidates(std::string_view name) {
    std::vector<std::string> names;
    for (const std::string_view plain : PlainNames())
        names.emplace_back(plain);
    const std::string line(name.substr(0, std::min(name.rfind('_'), name.size())));
    if (line.empty() || line.size() == name.size()) return names;
    for (const Pattern& pattern : patterns) {
        if (pattern.Before.empty()) names.push_back(line + std::string(pattern.After));
    }
    return names;
}

} // namespace

bool IsSettingName(std::string_view name) {
    const std::vector<std::string_view> plain = PlainNames();
    return std::any_of(plain.begin(), plain.end(),
                       [&](std::string_view known) { return EqualsNoCase(known, name); }) ||
           std::any_of(std::begin(patterns), std::end(patterns),
                       [&](const Pattern& pattern) { return Matches(pattern, name); });
}

std::string NearestSettingName(std::string_view name) {
    return NearestText(Candidates(name), name);
}

} // namespace korvalin
