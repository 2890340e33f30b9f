#include "platform/linux/system/LinuxLocale.h"

#include "base/Text.h"

#include <algorithm>
#include <clocale>
#include <cstring>
#include <langinfo.h>
#include <memory>

namespace korvalin {
namespace {

struct LocaleFreer {
    void operator()(locale_t locale) const { freelocale(locale); }
};
using SystemLocale = std::unique_ptr<std::remove_pointer_t<locale_t>, LocaleFreer>;

constexpr std::string_view fieldLetters = "dmyhns";

// The pattern of one strftime field; nullptr for those that Locale has no letters for.
const char* FieldPattern(char field) {
    switch (field) {
    case 'd': return "dd";
    case 'e': return "d";
    case 'm': return "mm";
    case 'y': return "yy";
    case 'Y': return "yyyy";
    case 'H':
    case 'I': return "hh";
    case 'k':
    case 'l': return "h";
    case 'M': return "nn";
    case 'S': return "ss";
    case 'p':
    case 'P': return "AMPM";
    case 'T': return "hh:nn:ss";
    case 'R': return "hh:nn";
    case 'r': return "hh:nn:ss AMPM";
    case 'D': return "mm/dd/yy";
    case 'F': return "yyyy-mm-dd";
    case '%': return "%";
    case 'Z':
    case 'z': return "";
    default: return nullptr;
    }
}

// One category of the environment's locale; empty when it is not installed or the C locale, which knows
// nobody's habits. Asked for category by category, as one that is not installed makes newlocale refuse them
// all.
SystemLocale OpenCategory(int mask, int category) {
    SystemLocale locale(newlocale(mask, "", nullptr));
    if (!locale) return nullptr;
    const std::string_view name = nl_langinfo_l(_NL_LOCALE_NAME(category), locale.get());
    if (name.empty() || name == "C" || name == "POSIX" || name.starts_with("C.")) return nullptr;
    return locale;
}

std::string Text(nl_item item, const SystemLocale& locale) {
    return DecodeLine(nl_langinfo_l(item, locale.get()));
}

void TakeNumbers(Locale& result, const SystemLocale& system) {
    if (const std::string mark = Text(RADIXCHAR, system); !mark.empty()) result.DecimalMark = mark;
    result.GroupingMark = Text(THOUSEP, system);
}

void TakeDates(Locale& result, const SystemLocale& system) {
    result.ShortDate = PatternFromStrftime(Text(D_FMT, system)).value_or(result.ShortDate);
    result.Time = PatternFromStrftime(Text(T_FMT, system)).value_or(result.Time);
    // ALTMON is the name that stands alone; the MON of Slavic languages is the genitive that follows a day.
    for (int i = 0; i < 12; ++i)
        result.MonthNames[static_cast<std::size_t>(i)] = Text(ALTMON_1 + i, system);
    for (int i = 0; i < 12; ++i)
        result.ShortMonthNames[static_cast<std::size_t>(i)] = Text(ABMON_1 + i, system);
    for (int i = 0; i < 7; ++i)
        result.DayNames[static_cast<std::size_t>(i)] = Text(DAY_1 + i, system);
    for (int i = 0; i < 7; ++i)
        result.ShortDayNames[static_cast<std::size_t>(i)] = Text(ABDAY_1 + i, system);
}

} // namespace

std::optional<std::string> PatternFromStrftime(std::string_view format) {
    std::string pattern;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%') {
            if (fieldLetters.find(format[i]) != std::string_view::npos) return std::nullopt;
            pattern += format[i];
            continue;
        }
        const std::size_t field = format.find_first_not_of("-_0^#EO", i + 1);
        if (field == std::string_view::npos) return std::nullopt;
        const char* text = FieldPattern(format[field]);
        if (text == nullptr) return std::nullopt;
        // "%-d" is the field without its leading zero
        const bool unpadded = std::string_view(text).size() == 2 && format[i + 1] == '-';
        pattern += unpadded ? text + 1 : text;
        i = field;
    }
    const std::string_view trimmed = Trim(pattern);
    if (trimmed.empty()) return std::nullopt;
    return std::string(trimmed);
}

Collation SystemCollation() {
    std::shared_ptr<std::remove_pointer_t<locale_t>> locale = OpenCategory(LC_COLLATE_MASK, LC_COLLATE);
    if (!locale) return Locale().Collate;
    return [locale](const std::string& left, const std::string& right) {
        return strcoll_l(left.c_str(), right.c_str(), locale.get());
    };
}

Locale ReadSystemLocale() {
    Locale result;
    result.Collate = SystemCollation();
    if (const SystemLocale numbers = OpenCategory(LC_NUMERIC_MASK, LC_NUMERIC)) TakeNumbers(result, numbers);
    if (const SystemLocale dates = OpenCategory(LC_TIME_MASK, LC_TIME)) TakeDates(result, dates);
    return result;
}

} // namespace korvalin
