// The figures of a billing period in words.
#pragma once

#include "stats/Forecast.h"

#include <functional>
#include <string>

namespace korvalin {

class Language;

/// How an amount of a measure is written.
using AmountText = std::function<std::string(double amount)>;

/// "Used: 3 GB of 10 GB (30 %)   Today: ...   Left per day until 12/31/2024: ...   Forecast: ...": without an
/// allowance only what is used, in the period and today.
std::string UseText(const AllowanceUse& use, const std::string& periodEnd, Language& language,
                    const AmountText& amount);

/// "Today ... Left per day ... Forecast ..." for a tooltip; empty without an allowance.
std::string OutlookText(const AllowanceUse& use, Language& language, const AmountText& amount);

} // namespace korvalin
