#include "platform/linux/LinuxLocale.h"

#include <langinfo.h>
#include <locale.h>

#include <map>

namespace korvalin {

std::string TranslateTimePattern(const std::string& pattern) {
    static const std::map<char, const char*> letters = {
        {'d', "dd"}, {'e', "d"},  {'m', "mm"}, {'y', "yyyy"}, {'Y', "yyyy"}, {'H', "hh"},       {'I', "hh"},
        {'M', "nn"}, {'S', "ss"}, {'p', "AMPM"}, {'%', "%"},  {'T', "hh:nn:ss"}, {'R', "hh:nn"}, {'r', "hh:nn:ss AMPM"},
        {'D', "mm/dd/yyyy"}, {'F', "yyyy-mm-dd"}};
    std::string result;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '%') {
            result += pattern[i];
            continue;
        }
        ++i;
        while (i < pattern.size() && (pattern[i] == '-' || pattern[i] == 'O' || pattern[i] == 'E')) ++i;
        const auto found = i < pattern.size() ? letters.find(pattern[i]) : letters.end();
        if (found == letters.end()) return {};
        result += found->second;
    }
    return result;
}

Locale ReadSystemLocale() {
    Locale result;
    locale_t system = newlocale(LC_ALL_MASK, "", nullptr);
    if (system == nullptr) return result;
    const auto text = [&](nl_item item) { return std::string(nl_langinfo_l(item, system)); };
    const auto take = [](std::string& field, const std::string& value) {
        if (!value.empty()) field = value;
    };
    take(result.DecimalMark, text(RADIXCHAR));
    take(result.GroupingMark, text(THOUSEP));
    if (result.GroupingMark == result.DecimalMark) result.GroupingMark = result.DecimalMark == "," ? "." : ",";
    // The C locale's American date would be read wrong by everybody else.
    if (text(D_FMT) != "%m/%d/%y") take(result.ShortDate, TranslateTimePattern(text(D_FMT)));
    take(result.Time, TranslateTimePattern(text(T_FMT)));
    for (int i = 0; i < 12; ++i) take(result.MonthNames.at(static_cast<std::size_t>(i)), text(MON_1 + i));
    for (int i = 0; i < 7; ++i) take(result.DayNames.at(static_cast<std::size_t>(i)), text(DAY_1 + i));
    freelocale(system);
    return result;
}

} // namespace korvalin
