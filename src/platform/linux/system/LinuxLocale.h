#pragma once

#include "base/Locale.h"

#include <optional>
#include <string>
#include <string_view>

namespace korvalin {

/// The user's regional formats as the C library knows them (LC_NUMERIC, LC_TIME, LC_COLLATE of the
/// environment). What the system does not tell, the C locale included, keeps the defaults of Locale.
Locale ReadSystemLocale();

/// The order in which the environment's locale (LC_COLLATE) lists names; by code where it tells none.
Collation SystemCollation();

/// Translates a pattern of strftime ("%d.%m.%Y") into one of Locale's ("dd.mm.yyyy"). The time zone is left
/// out; nullopt for a pattern that Locale cannot express (names of months, letters between the fields).
std::optional<std::string> PatternFromStrftime(std::string_view format);

} // namespace korvalin
