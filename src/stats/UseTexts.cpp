#include "stats/UseTexts.h"

#include "lang/Language.h"

#include <fmt/format.h>

namespace korvalin {

std::string UseText(const AllowanceUse& use, const std::string& periodEnd, Language& language,
                    const AmountText& amount) {
    const auto text = [&](int number) { return language.Lng("modStats", number); };
    std::string used = text(60) + ": " + amount(use.Used);
    const std::string today = "   " + text(62) + ": " + amount(use.Today);
    if (!use.HasAllowance()) return used + today;
    used += fmt::format(" {} {} ({:.0f} %)", text(61), amount(use.Allowance), use.Percent());
    used += today + fmt::format("   {} {} {}: {}", text(63), text(64), periodEnd, amount(use.LeftPerDay()));
    if (use.HasForecast) used += fmt::format("   {}: {}", text(65), amount(use.Forecast()));
    return used;
}

std::string OutlookText(const AllowanceUse& use, Language& language, const AmountText& amount) {
    if (!use.HasAllowance()) return {};
    const auto text = [&](int number) { return language.Lng("modStats", number) + " "; };
    const std::string outlook = text(62) + amount(use.Today) + " " + text(63) + amount(use.LeftPerDay());
    return use.HasForecast ? outlook + " " + text(65) + amount(use.Forecast()) : outlook;
}

} // namespace korvalin
